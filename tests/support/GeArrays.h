#pragma once
// Point and number arrays of the host's geometry written inline in a test.
#include <initializer_list>

#include "host/arx/gepnt3d.h"

inline AcGePoint3dArray points(std::initializer_list<AcGePoint3d> list) {
    AcGePoint3dArray out;
    for (const AcGePoint3d& p : list)
        out.append(p);
    return out;
}

inline AcGeDoubleArray numbers(std::initializer_list<double> list) {
    AcGeDoubleArray out;
    for (double v : list)
        out.append(v);
    return out;
}
