#pragma once
// Integer and boolean types of the host's programming surface.
#include <cstdint>

namespace Adesk {
using Int8 = std::int8_t;
using Int16 = std::int16_t;
using Int32 = std::int32_t;
using Int64 = std::int64_t;
using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
using UInt64 = std::uint64_t;
using Boolean = bool;
// An object id as a number (AcDbObjectId::asOldId): pointer-sized, as in the host.
using IntDbId = std::intptr_t;
constexpr bool kTrue = true;
constexpr bool kFalse = false;
}  // namespace Adesk

#ifndef ACHAR_DEFINED
#define ACHAR_DEFINED
using ACHAR = wchar_t;
#endif
#ifndef ACRX_T
#define ACRX_T(x) L##x
#endif
