#pragma once
// The classes the reader types: for each DXF name, how its body becomes an object of
// the host and how that object is written back.
#include <string_view>

#include "host/dxf/DxfModel.h"

namespace dxf {

struct Codec {
    std::string_view dxfName;
    AcRxClass* (*cls)();
    // The object made from the body, or null when the body does not fit the class
    // (it is then kept as tags).
    AcDbObject* (*read)(const ParsedObject& parsed, ReadContext& ctx, ObjectRecord& record);
    void (*write)(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record);
    // True when the record of a just-read object says nothing the writer would not
    // do anyway (so it need not be kept).
    bool (*isCanonical)(const AcDbObject& obj, const WriteContext& ctx, const ObjectRecord& record);
};

// Codecs of entities and of objects (table records included), by DXF name.
const Codec* entityCodec(std::string_view dxfName);
const Codec* objectCodec(std::string_view dxfName);
// The codec of an object's class, null for the kept ones.
const Codec* codecOf(const AcDbObject& obj);

// Symbol tables the host models, by table name ("LAYER", ...), and their heads.
const Codec* tableCodec(std::string_view tableName);

}  // namespace dxf
