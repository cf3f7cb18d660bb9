#pragma once
// Plain value types of the command-line and result-buffer interfaces.
#include <cstdint>

#include "host/arx/adesk.h"
#include "kplan/Export.h"

using ads_real = double;
using ads_point = ads_real[3];
using ads_pointp = ads_real*;
using ads_name = std::int64_t[2];
using ads_namep = std::int64_t*;
using ads_matrix = ads_real[4][4];

enum { X = 0, Y = 1, Z = 2 };

inline void ads_name_set(const ads_name from, ads_name to) {
    to[0] = from[0];
    to[1] = from[1];
}
inline void ads_name_clear(ads_name name) {
    name[0] = name[1] = 0;
}
inline bool ads_name_nil(const ads_name name) {
    return name[0] == 0 && name[1] == 0;
}
inline bool ads_name_equal(const ads_name a, const ads_name b) {
    return a[0] == b[0] && a[1] == b[1];
}
inline void ads_point_set(const ads_point from, ads_point to) {
    to[0] = from[0];
    to[1] = from[1];
    to[2] = from[2];
}

struct KPLAN_API ads_binary {
    short clen;
    char* buf;
};

union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    short rint;
    ACHAR* rstring;
    std::int32_t rlong;
    std::int64_t mnInt64;
    std::int64_t mnLongPtr;
    ads_name rlname;
    ads_binary rbinary;
    unsigned char ihandle[8];
};

struct KPLAN_API resbuf {
    resbuf* rbnext;
    short restype;
    ads_u_val resval;
};
