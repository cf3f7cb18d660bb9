#pragma once
// Block references (INSERT) with the attributes they own (ATTRIB, ended by a SEQEND), and
// the attribute definitions of blocks (ATTDEF), as typed entities.
#include "host/dxf/Codecs.h"
#include "host/dxf/FieldTable.h"

namespace dxf {

Codec insertCodec();
Codec attribCodec();
Codec attdefCodec();

// The fields of TEXT's first AcDbText part, which attributes and their definitions share.
Subclass textSubclass();

// The block an INSERT names in group 2, null when the drawing has no such block (the
// INSERT is then kept as read).
AcDbObjectId insertedBlock(const ParsedObject& parsed, const ReadContext& ctx);

}  // namespace dxf
