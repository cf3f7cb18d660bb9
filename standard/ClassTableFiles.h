#pragma once
// Where the class-table lookups find their tables, parsed through the shared cache.
#include <memory>

#include "host/mfc/CString.h"
#include "kplan/Export.h"
#include "standard/ParsedClassTable.h"

namespace classtable {

// Which table a lookup reads: the current one, or a national standard (of the current
// standard, else of "通用国标"; the Common ones always of "通用国标").
enum class Source { Current, OldNational, NewNational, CommonOldNational, CommonNewNational };

// "x.txt" becomes "x_地下.txt".
KPLAN_API CString UndergroundName(const CString& fileName);
// The parsed table, null when it does not exist or cannot be read; aboveGround 0 for the
// "_地下" one. The national tables come from the current standard, else from "通用国标".
KPLAN_API std::shared_ptr<const ParsedClassTable> Open(Source source, int aboveGround = 1);
// The entry of a code, else for a compound code that of its first code; null when none.
KPLAN_API const ParsedClassTable::Entry* FindOrFirst(const ParsedClassTable& table,
                                                     const CString& code);

}  // namespace classtable
