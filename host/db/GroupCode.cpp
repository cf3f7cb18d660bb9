#include "host/db/GroupCode.h"

namespace db {

ValueKind kindOfGroupCode(int code) {
    if (code >= 0 && code <= 4) return ValueKind::String;
    if (code == 5) return ValueKind::Handle;
    if (code >= 6 && code <= 9) return ValueKind::String;
    if (code >= 10 && code <= 18) return ValueKind::Point;
    if (code >= 20 && code <= 39) return ValueKind::Real;  // stray y/z or thickness
    if (code >= 40 && code <= 59) return ValueKind::Real;
    if (code >= 60 && code <= 79) return ValueKind::Int16;
    if (code >= 90 && code <= 99) return ValueKind::Int32;
    if (code == 100 || code == 101 || code == 102) return ValueKind::String;
    if (code == 105) return ValueKind::Handle;
    if (code >= 110 && code <= 112) return ValueKind::Point;
    if (code >= 113 && code <= 149) return ValueKind::Real;
    if (code >= 160 && code <= 169) return ValueKind::Int64;
    if (code >= 170 && code <= 179) return ValueKind::Int16;
    if (code >= 210 && code <= 210) return ValueKind::Point;
    if (code >= 211 && code <= 239) return ValueKind::Real;
    if (code >= 270 && code <= 289) return ValueKind::Int16;
    if (code >= 290 && code <= 299) return ValueKind::Bool;
    if (code >= 300 && code <= 309) return ValueKind::String;
    if (code >= 310 && code <= 319) return ValueKind::Binary;
    if (code >= 320 && code <= 369) return ValueKind::ObjectRef;
    if (code >= 370 && code <= 389) return ValueKind::Int16;
    if (code >= 390 && code <= 399) return ValueKind::ObjectRef;
    if (code >= 400 && code <= 409) return ValueKind::Int16;
    if (code >= 410 && code <= 419) return ValueKind::String;
    if (code >= 420 && code <= 429) return ValueKind::Int32;
    if (code >= 430 && code <= 439) return ValueKind::String;
    if (code >= 440 && code <= 449) return ValueKind::Int32;
    if (code >= 450 && code <= 459) return ValueKind::Int32;
    if (code >= 460 && code <= 469) return ValueKind::Real;
    if (code >= 470 && code <= 479) return ValueKind::String;
    if (code == 480 || code == 481) return ValueKind::ObjectRef;
    if (code == 999) return ValueKind::String;
    if (code >= 1000 && code <= 1003) return ValueKind::String;
    if (code == 1004) return ValueKind::Binary;
    if (code == 1005) return ValueKind::Handle;
    if (code >= 1006 && code <= 1009) return ValueKind::String;
    if (code >= 1010 && code <= 1013) return ValueKind::Point;
    if (code >= 1014 && code <= 1059) return ValueKind::Real;
    if (code >= 1060 && code <= 1070) return ValueKind::Int16;
    if (code == 1071) return ValueKind::Int32;
    return ValueKind::None;
}

}  // namespace db
