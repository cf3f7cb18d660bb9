// The static queries of CDKBJXDInfo: scans of the current space, point, number and class
// queries, the class lists and the oldest planning-data format.
#include <string_view>

#include "host/arx/acutads.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbxrecrd.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaRegion.h"
#include "host/kova/KovaStatusBar.h"
#include "host/kova/fgdutil.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKScan.h"
#include "record/XDataAccess.h"

namespace {

constexpr const wchar_t* kNumberProgress = L"正在获取有编号地块，请稍候...";

bool live(AcDbObjectId id) {
    return id.isValid() && !id.isErased();
}

int scan(const wchar_t* apps, AcDbObjectIdArray& ids) {
    return dk::SelectParcels(dk::TYPES_PARCEL, apps, true, ids);
}

CString trimmed(CString text) {
    text.Trim();
    return text;
}

// A parcel number: "FS_DKBH", or "地块编号" when that read fails; trimmed.
CString numberOf(const CDKBJXDInfo& parcel) {
    CString number;
    if (!parcel.GetData(dk::FS_DKBH, number)) parcel.GetData(dk::LBL_DKBH, number);
    return trimmed(number);
}

// A parcel class, trimmed: the key first for the queries, the label first for the lists
// (both reach the same field of a current record).
CString classOf(const CDKBJXDInfo& parcel, bool labelFirst = false) {
    const wchar_t* first = labelFirst ? dk::LBL_DKLB : dk::FS_DKXZ;
    const wchar_t* second = labelFirst ? dk::FS_DKXZ : dk::LBL_DKLB;
    CString cls;
    if (!parcel.GetData(first, cls)) parcel.GetData(second, cls);
    return trimmed(cls);
}

bool isOfKind(const CDKBJXDInfo& parcel, int planned) {
    return planned ? parcel.IsDkbj() != 0 : parcel.IsXZDkbj() != 0;
}

enum class Cut { Full, Large, Mid };

CString cutOf(const CString& cls, Cut cut) {
    switch (cut) {
        case Cut::Large:
            return dk::LargeClass(cls);
        case Cut::Mid:
            return dk::MidClass(cls);
        default:
            return cls;
    }
}

int classList(const AcDbObjectIdArray& candidates, int planned, Cut cut, CStringArray& classes) {
    for (AcDbObjectId id : candidates) {
        CDKBJXDInfo parcel(id);
        if (!live(id) || !isOfKind(parcel, planned)) continue;
        CString cls = classOf(parcel, true);
        if (!cls.IsEmpty()) dk::AppendNewString(classes, cutOf(cls, cut));
    }
    return static_cast<int>(classes.GetSize());
}

int plannedList(Cut cut, CStringArray& classes) {
    AcDbObjectIdArray ids;
    CDKBJXDInfo::GetDkbj(ids);
    return classList(ids, 1, cut, classes);
}

int currentList(Cut cut, CStringArray& classes) {
    AcDbObjectIdArray ids;
    CDKBJXDInfo::GetAllXZYD(ids);
    return classList(ids, 0, cut, classes);
}

template <typename Match>
int byClass(const AcDbObjectIdArray& candidates, int planned, AcDbObjectIdArray& ids,
            Match matches) {
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        CDKBJXDInfo parcel(id);
        if (live(id) && isOfKind(parcel, planned) && matches(classOf(parcel))) out.add(id, true);
    }
    return ids.length();
}

// The xrecord under a key of a dictionary, as a list the caller releases; null when
// the key is missing or names something else.
resbuf* xrecordList(AcDbObjectId dictId, const wchar_t* key) {
    AcDbDictionary* dict = nullptr;
    if (dictId.isNull() || acdbOpenObject(dict, dictId, AcDb::kForRead) != Acad::eOk) {
        return nullptr;
    }
    AcDbObjectId entry;
    bool found = dict->getAt(key, entry) == Acad::eOk;
    dict->close();
    AcDbXrecord* xrec = nullptr;
    if (!found || acdbOpenObject(xrec, entry, AcDb::kForRead) != Acad::eOk) return nullptr;
    resbuf* list = nullptr;
    xrec->rbChain(&list);
    xrec->close();
    return list;
}

AcDbObjectId subDictionary(AcDbObjectId dictId, const wchar_t* key) {
    AcDbDictionary* dict = nullptr;
    if (dictId.isNull() || acdbOpenObject(dict, dictId, AcDb::kForRead) != Acad::eOk) return {};
    AcDbObjectId entry;
    if (dict->getAt(key, entry) != Acad::eOk) entry = AcDbObjectId();
    dict->close();
    return entry;
}

// The key of the parcel's entry in "QM_DKXX", from its link list.
bool qmRecordKey(AcDbObjectId id, CString& key) {
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) return false;
    AcDbObjectId ext = obj->extensionDictionary();
    obj->close();
    resbuf* links = xrecordList(subDictionary(ext, dk::QM_ENTLINK), dk::QM_LINKLIST);
    bool found = kova::dat::GetRbString(links, dk::QM_TYPE_GHYD, key) && !key.IsEmpty();
    acutRelRb(links);
    return found;
}

}  // namespace

// ---------------------------------------------------------------------- drawing scans

int CDKBJXDInfo::GetDkbj(AcDbObjectIdArray& ids) {
    return scan(dk::LIST_GHDK, ids);
}

int CDKBJXDInfo::GetCurGHTypeDkbj(AcDbObjectIdArray& ids) {
    switch (FReadCurGHType()) {
        case 1:
            return scan(dk::FAPP_GHDK_FG, ids);
        case 2:
            return scan(dk::FAPP_GHDK_ZG, ids);
        case 3:
            return scan(dk::FAPP_GHDK_TX, ids);
        default:
            // A landscape plan (4) has no query of its own and searches "FAPP_GHDK".
            return scan(dk::FAPP_GHDK, ids);
    }
}

int CDKBJXDInfo::GetAllDkbj(AcDbObjectIdArray& ids) {
    return scan(dk::LIST_GHXZDK, ids);
}

int CDKBJXDInfo::GetAllXZYD(AcDbObjectIdArray& ids) {
    return scan(dk::FAPP_XZDK, ids);
}

int CDKBJXDInfo::GetDXKJ(AcDbObjectIdArray& ids, int planned) {
    return scan(planned ? dk::FAPP_GHDK_DX : dk::FAPP_XZDK_DX, ids);
}

int CDKBJXDInfo::GetHaveBHDkbj(AcDbObjectIdArray& ids, int planned) {
    AcDbObjectIdArray selected;
    scan(planned ? dk::LIST_GHDK : dk::FAPP_XZDK, selected);
    ids.removeAll();
    KovaCad::CStatusBarControl bar;
    bar.start(kNumberProgress, selected.length());
    for (AcDbObjectId id : selected) {
        CString number;
        CDKBJXDInfo(id).GetData(dk::FS_DKBH, number);
        if (!trimmed(number).IsEmpty()) ids.append(id);
        bar.step();
    }
    bar.end();
    return ids.length();
}

// ---------------------------------------------------------------------- point queries

int CDKBJXDInfo::GetDkbj(const AcGePoint3d& point, AcDbObjectId& id) {
    AcDbObjectIdArray ids;
    GetDkbj(ids);
    return kova::ent::GetRegionEdgeId(point, ids, id);
}

int CDKBJXDInfo::GetDkbj(const AcDbObjectIdArray& candidates, const AcGePoint3d& point,
                         AcDbObjectId& id) {
    return kova::ent::GetRegionEdgeId(point, candidates, id);
}

int CDKBJXDInfo::GetXZYDBj(const AcGePoint3d& point, AcDbObjectId& id) {
    AcDbObjectIdArray ids;
    GetAllXZYD(ids);
    return kova::ent::GetRegionEdgeId(point, ids, id);
}

int CDKBJXDInfo::GetDXKJ(const AcGePoint3d& point, AcDbObjectId& id, int planned) {
    AcDbObjectIdArray ids;
    GetDXKJ(ids, planned);
    return kova::ent::GetRegionEdgeId(point, ids, id);
}

int CDKBJXDInfo::GetDXKJ(const AcDbObjectIdArray& candidates, const AcGePoint3d& point,
                         AcDbObjectId& id) {
    return kova::ent::GetRegionEdgeId(point, candidates, id);
}

// ---------------------------------------------------------------------- by number

int CDKBJXDInfo::GetDkbj(const wchar_t* number, AcDbObjectId& id) {
    if (number == nullptr) return 0;
    AcDbObjectIdArray ids;
    GetDkbj(ids);
    for (AcDbObjectId candidate : ids) {
        if (numberOf(CDKBJXDInfo(candidate)) == number) {
            id = candidate;
            return 1;
        }
    }
    return 0;
}

int CDKBJXDInfo::GetDkbjByBH(const wchar_t* number, AcDbObjectIdArray& ids) {
    if (number == nullptr) return ids.length();
    AcDbObjectIdArray candidates;
    GetDkbj(candidates);
    return GetDkbjByBH(CString(number), candidates, ids);
}

int CDKBJXDInfo::GetDkbjByBH(const CString& number, const AcDbObjectIdArray& candidates,
                             AcDbObjectIdArray& ids) {
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        if (live(id) && numberOf(CDKBJXDInfo(id)) == number) out.add(id, true);
    }
    return ids.length();
}

int CDKBJXDInfo::GetDXKJByBH(const CString& number, const AcDbObjectIdArray& candidates,
                             AcDbObjectIdArray& ids) {
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        CString value;
        if (live(id) && CDKBJXDInfo(id).GetData(dk::FS_DXKJBH, value) && trimmed(value) == number) {
            out.add(id, true);
        }
    }
    return ids.length();
}

int CDKBJXDInfo::GetDXKJByField(const CString& key, const CString& value, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    scan(dk::LIST_DXDK, candidates);
    CString wanted = trimmed(value);
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        CString stored;
        if (CDKBJXDInfo(id).GetData(key, stored) && trimmed(stored) == wanted) out.add(id, true);
    }
    return ids.length();
}

int CDKBJXDInfo::GetAllDxkjBH(CStringArray& numbers, int planned) {
    AcDbObjectIdArray ids;
    GetDXKJ(ids, planned);
    for (AcDbObjectId id : ids) {
        CString value;
        CDKBJXDInfo(id).GetData(dk::FS_DXKJBH, value);
        value.Trim();
        if (!value.IsEmpty()) dk::AppendNewString(numbers, value);
    }
    return static_cast<int>(numbers.GetSize());
}

// ---------------------------------------------------------------------- by class

int CDKBJXDInfo::GetDkbjByClass(const CString& cls, const AcDbObjectIdArray& candidates,
                                AcDbObjectIdArray& ids, int planned) {
    return byClass(candidates, planned, ids,
                   [&](const CString& value) { return dk::ClassBeginsWith(value, cls); });
}

int CDKBJXDInfo::GetDkbjByClass(const CString& cls, const AcDbObjectIdArray& candidates,
                                AcDbObjectIdArray& ids) {
    return GetDkbjByClass(cls, candidates, ids, 1);
}

int CDKBJXDInfo::GetDkbjByClass(const CString& cls, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    GetDkbj(candidates);
    return GetDkbjByClass(cls, candidates, ids, 1);
}

int CDKBJXDInfo::GetDkbjByClassCompare(const CString& cls, const AcDbObjectIdArray& candidates,
                                       AcDbObjectIdArray& ids, int planned) {
    return byClass(candidates, planned, ids,
                   [&](const CString& value) { return !cls.IsEmpty() && value == cls; });
}

int CDKBJXDInfo::GetDkbjByClassCompare(const CString& cls, const AcDbObjectIdArray& candidates,
                                       AcDbObjectIdArray& ids) {
    return GetDkbjByClassCompare(cls, candidates, ids, 1);
}

int CDKBJXDInfo::GetDkbjByClassCompare(const CString& cls, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    GetDkbj(candidates);
    return GetDkbjByClassCompare(cls, candidates, ids, 1);
}

int CDKBJXDInfo::GetXZYDByClass(const CString& cls, AcDbObjectIdArray& ids) {
    AcDbObjectIdArray candidates;
    GetAllXZYD(candidates);
    return GetDkbjByClass(cls, candidates, ids, 0);
}

int CDKBJXDInfo::GetXZYDByClass(const CString& cls, const AcDbObjectIdArray& candidates,
                                AcDbObjectIdArray& ids) {
    return GetDkbjByClass(cls, candidates, ids, 0);
}

int CDKBJXDInfo::GetDkbjTrimClass(const CString& classes, AcDbObjectIdArray& ids, int planned) {
    CString wanted = trimmed(classes);
    AcDbObjectIdArray candidates;
    if (planned) {
        GetDkbj(candidates);
    } else {
        GetAllXZYD(candidates);
    }
    CStringArray pieces;
    fgdutil::Str2StrArr(wanted, pieces, L",");
    dk::IdAppender out(ids);
    for (AcDbObjectId id : candidates) {
        CString cls = classOf(CDKBJXDInfo(id));
        if (!cls.IsEmpty() && fgdutil::StrArrFindStr(pieces, dk::LargeClass(cls))) {
            out.add(id, true);
        }
    }
    return ids.length();
}

int CDKBJXDInfo::GetAllDkbjClass(CStringArray& classes) {
    return plannedList(Cut::Full, classes);
}

int CDKBJXDInfo::GetAllDkbjClass(const AcDbObjectIdArray& candidates, CStringArray& classes) {
    return classList(candidates, 1, Cut::Full, classes);
}

int CDKBJXDInfo::GetAllDkbjLargeClass(CStringArray& classes) {
    return plannedList(Cut::Large, classes);
}

int CDKBJXDInfo::GetAllDkbjLargeClass(const AcDbObjectIdArray& candidates, CStringArray& classes) {
    return classList(candidates, 1, Cut::Large, classes);
}

int CDKBJXDInfo::GetAllDkbjMidClass(CStringArray& classes) {
    return plannedList(Cut::Mid, classes);
}

int CDKBJXDInfo::GetAllDkbjMidClass(const AcDbObjectIdArray& candidates, CStringArray& classes) {
    return classList(candidates, 1, Cut::Mid, classes);
}

int CDKBJXDInfo::GetAllXZDkbjClass(CStringArray& classes) {
    return currentList(Cut::Full, classes);
}

int CDKBJXDInfo::GetAllXZDkbjClass(const AcDbObjectIdArray& candidates, CStringArray& classes) {
    return classList(candidates, 0, Cut::Full, classes);
}

int CDKBJXDInfo::GetAllXZDkbjLargeClass(CStringArray& classes) {
    return currentList(Cut::Large, classes);
}

int CDKBJXDInfo::GetAllXZDkbjLargeClass(const AcDbObjectIdArray& candidates,
                                        CStringArray& classes) {
    return classList(candidates, 0, Cut::Large, classes);
}

int CDKBJXDInfo::GetAllXZDkbjMidClass(CStringArray& classes) {
    return currentList(Cut::Mid, classes);
}

int CDKBJXDInfo::GetAllXZDkbjMidClass(const AcDbObjectIdArray& candidates, CStringArray& classes) {
    return classList(candidates, 0, Cut::Mid, classes);
}

int CDKBJXDInfo::GetAllDxkjClass(CStringArray& classes, int planned) {
    AcDbObjectIdArray ids;
    GetDXKJ(ids, planned);
    for (AcDbObjectId id : ids) {
        CDKBJXDInfo space(id);
        CString use;
        space.GetData(dk::FS_DXKJXZ, use);
        use.Trim();
        if (use.IsEmpty()) use = classOf(space, true);
        if (!use.IsEmpty()) dk::AppendNewString(classes, use);
    }
    return static_cast<int>(classes.GetSize());
}

// ---------------------------------------------------------------------- oldest format

int CDKBJXDInfo::GetQm99PlotInfo(AcDbObjectId id, CStringArray& values, double& area,
                                 AcDbObjectIdArray& islands) {
    values.RemoveAll();
    islands.removeAll();
    area = 0;
    CString key;
    if (!live(id) || !qmRecordKey(id, key)) return 0;
    resbuf* record = nullptr;
    if (!kova::dat::ReadNamedObjDict(dk::QM_DKXX, key, record, id.database())) {
        acutRelRb(record);
        return 0;
    }
    for (const wchar_t* field : dk::QM_FIELDS) {
        CString value;
        kova::dat::GetRbString(record, field, value);
        if (value.IsEmpty() && std::wstring_view(field) == dk::QM_YDLB) {
            kova::dat::GetRbString(record, dk::QM_LBL_DKXZ, value);
        }
        values.Add(value);
    }
    acutRelRb(record);
    CDKBJXDInfo parcel(id);
    parcel.GetCalcArea(area);
    parcel.GetIsland(islands);
    return 1;
}
