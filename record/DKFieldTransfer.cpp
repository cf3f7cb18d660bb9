#include "record/DKFieldTransfer.h"

#include "host/arx/acutads.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaError.h"
#include "host/mfc/CStringArray.h"
#include "record/DKBJInfo.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/XDataAccess.h"

namespace {

const wchar_t* oldName(const dk::OldLabels& entry, int generation) {
    return generation == 1 ? entry.first : entry.second;
}

bool keyOfOldName(const CString& name, int generation, CString& key) {
    for (const dk::OldLabels& entry : dk::OLD_LABELS) {
        if (name == oldName(entry, generation)) {
            key = entry.key;
            return true;
        }
    }
    return false;
}

bool keyOfLabel(const CString& name, CString& key) {
    for (const dk::LabelKey& entry : dk::LABEL_KEYS) {
        if (name == entry.label) {
            key = entry.key;
            return true;
        }
    }
    return false;
}

// The label/value list of a first-generation parcel as stored, then the simple items its
// reader routes some labels to.
void firstGenerationFields(AcDbObjectId id, CStringArray& names, CStringArray& values) {
    AcDbObject* obj = nullptr;
    if (acdbOpenAcDbObject(obj, id, AcDb::kForRead) == Acad::eOk) {
        resbuf* list = obj->xData(dk::APP_DKBJ);
        obj->close();
        const resbuf* rb = list ? list->rbnext : nullptr;  // past the 1001
        while (rb && rb->rbnext && rb->restype == 1000 && rb->rbnext->restype == 1000) {
            names.Add(rb->resval.rstring);
            values.Add(rb->rbnext->resval.rstring);
            rb = rb->rbnext->rbnext;
        }
        acutRelRb(list);
    }
    CDKBJInfo legacy(id);
    for (const wchar_t* label : dk::LEGACY_FIELDS) {
        int index = -1;
        for (int i = 0; i < names.GetSize(); ++i) {
            if (names[i] == label) index = i;
        }
        CString value;
        if (!legacy.GetData(label, value)) continue;
        if (index >= 0) {
            values[index] = value;
        } else {
            names.Add(label);
            values.Add(value);
        }
    }
}

void secondGenerationFields(AcDbObjectId id, CStringArray& names, CStringArray& values) {
    CStringArray apps, fields, fieldValues;
    ARX_DATA::CFGisXData::GetAllXDatas(id, apps, fields, fieldValues);
    for (int i = 0; i < apps.GetSize(); ++i) {
        if (apps[i] != dk::APP_DKSX) continue;
        names.Add(fields[i]);
        values.Add(fieldValues[i]);
    }
}

int transfer(AcDbObjectId id) {
    if (!id.isValid() || id.isErased()) return -1;
    CStringArray apps;
    ARX_DATA::CFSimpleXData::GetAllAppNames(id, apps);
    int generation = 0;
    for (const CString& app : apps) {
        if (app == dk::APP_DKSX) generation = 2;
        if (app == dk::APP_DKBJ && generation == 0) generation = 1;
    }
    if (generation == 0) return -1;
    CStringArray names, values;
    if (generation == 2) {
        secondGenerationFields(id, names, values);
    } else {
        firstGenerationFields(id, names, values);
    }
    bool current = CheckDKDataVer(id) == 3;
    CDKBJXDInfo parcel(id);
    CStringArray keys, moved;
    for (int i = 0; i < names.GetSize(); ++i) {
        if (values[i].IsEmpty()) continue;
        CString key;
        FTransDKDataTypeToGisType(names[i], key, generation);
        CString existing;
        if (current && parcel.GetAttrib(key, existing)) continue;
        bool listed = false;
        for (const CString& k : keys)
            listed = listed || k == key;
        if (listed) continue;
        keys.Add(key);
        moved.Add(values[i]);
    }
    if (keys.IsEmpty()) return 0;
    return parcel.SetData(keys, moved) ? static_cast<int>(keys.GetSize()) : -1;
}

}  // namespace

int FTransDKDataTypeToGisType(const CString& name, CString& key, int generation) {
    CString trimmed = name;
    trimmed.Trim();
    if ((generation == 1 || generation == 2) && keyOfOldName(trimmed, generation, key)) return 1;
    if (keyOfLabel(trimmed, key)) return 1;
    if (keyOfOldName(trimmed, 1, key) || keyOfOldName(trimmed, 2, key)) return 1;
    key = trimmed;
    return 0;
}

int FTransDKDataTypeToGisType(AcDbObjectId id) {
    return kova::Guarded(L"FTransDKDataTypeToGisType", -1, [&] { return transfer(id); });
}
