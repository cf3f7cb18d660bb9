#include "host/arx/dbxrecrd.h"

#include "host/arx/acutads.h"

ACRX_DEFINE_MEMBERS(AcDbXrecord, AcDbObject, L"XRECORD")

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** list, AcDbDatabase*) const {
    if (list == nullptr) return Acad::eInvalidInput;
    *list = acutValuesToRb(values_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& list, AcDbDatabase*) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    db::ValueList values;
    if (!acutRbToValues(&list, values)) return Acad::eInvalidResBuf;
    for (const db::Value& v : values) {
        // Xrecords carry data codes only; entity names and list markers do not belong.
        if (v.code < 1 || v.code >= 5000) {
            return Acad::eInvalidResBuf;
        }
    }
    values_ = std::move(values);
    return Acad::eOk;
}
