#include "host/arx/dbattr.h"

#include "host/arx/acutads.h"

ACRX_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, L"ATTDEF")
ACRX_DEFINE_MEMBERS(AcDbAttribute, AcDbText, L"ATTRIB")

ACHAR* AcDbAttributeTag::tag() const {
    return acutNewString(tag_.c_str());
}

Acad::ErrorStatus AcDbAttributeTag::setTag(const ACHAR* tag) {
    if (!tagWritable()) return Acad::eNotOpenForWrite;
    tag_ = tag ? tag : L"";
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeTag::setFlag(int bit, bool on) {
    return setFlags(on ? (flags_ | bit) : (flags_ & ~bit));
}

Acad::ErrorStatus AcDbAttributeTag::setFlags(int flags) {
    if (!tagWritable()) return Acad::eNotOpenForWrite;
    flags_ = flags;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeTag::setFieldLength(Adesk::UInt16 length) {
    if (!tagWritable()) return Acad::eNotOpenForWrite;
    fieldLength_ = length;
    return Acad::eOk;
}

AcDbAttributeDefinition::AcDbAttributeDefinition(const AcGePoint3d& position, const ACHAR* text,
                                                 const ACHAR* tag, const ACHAR* prompt,
                                                 AcDbObjectId style)
    : AcDbText(position, text, style), prompt_(prompt ? prompt : L"") {
    tag_ = tag ? tag : L"";
}

ACHAR* AcDbAttributeDefinition::prompt() const {
    return acutNewString(prompt_.c_str());
}

Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const ACHAR* prompt) {
    if (!tagWritable()) return Acad::eNotOpenForWrite;
    prompt_ = prompt ? prompt : L"";
    return Acad::eOk;
}

AcDbAttribute::AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                             AcDbObjectId style)
    : AcDbText(position, text, style) {
    tag_ = tag ? tag : L"";
}
