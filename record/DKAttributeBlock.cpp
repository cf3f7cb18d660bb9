#include "record/DKAttributeBlock.h"

#include <vector>

#include "host/arx/acutads.h"
#include "host/arx/dbblkref.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/XDataAccess.h"

namespace {

// A field of the parcel form, whether or not this record holds it.
bool isFormField(const CString& tag) {
    for (const wchar_t* key : dk::BASIC_FIELDS) {
        if (tag == key) return true;
    }
    for (const dk::LabelKey& field : dk::LABEL_KEYS) {
        if (tag == field.key || tag == field.label) return true;
    }
    return false;
}

// The live attributes of a block reference; false when the id is none.
bool attributesOf(AcDbObjectId blockRefId, std::vector<AcDbObjectId>& attributes) {
    AcDbBlockReference* ref = nullptr;
    if (blockRefId.isNull() || acdbOpenObject(ref, blockRefId, AcDb::kForRead) != Acad::eOk)
        return false;
    attributes = ref->attributeIds();
    ref->close();
    return true;
}

// Writes the record into the attributes; clearLost empties form fields the record lacks.
// The number of attributes written, or -1.
int fill(AcDbObjectId parcelId, AcDbObjectId blockRefId, bool clearLost) {
    if (CheckDKDataVer(parcelId) == 0) return -1;
    std::vector<AcDbObjectId> attributes;
    if (!attributesOf(blockRefId, attributes)) return -1;
    CDKBJXDInfo parcel(parcelId);
    int written = 0;
    for (AcDbObjectId id : attributes) {
        AcDbAttribute* attribute = nullptr;
        if (acdbOpenObject(attribute, id, AcDb::kForRead) != Acad::eOk) continue;
        CString tag = attribute->tagConst();
        ACHAR* text = attribute->textString();
        CString shown = text;
        acutDelString(text);
        attribute->close();
        tag.Trim();
        CString value;
        if (tag.IsEmpty()) continue;
        if (!parcel.GetData(tag, value)) {
            if (!clearLost || !isFormField(tag)) continue;
            value.Empty();
        }
        if (clearLost && value == shown) continue;
        if (acdbOpenObject(attribute, id, AcDb::kForWrite) != Acad::eOk) return -1;
        Acad::ErrorStatus es = attribute->setTextString(value);
        attribute->close();
        if (es != Acad::eOk) return -1;
        ++written;
    }
    return written;
}

}  // namespace

int FCopyDKToAttblk(AcDbObjectId parcelId, AcDbObjectId blockRefId) {
    return fill(parcelId, blockRefId, false);
}

int FUpdateDataOfAttrBlockRef(AcDbObjectId blockRefId, AcDbObjectId parcelId) {
    return fill(parcelId, blockRefId, true);
}
