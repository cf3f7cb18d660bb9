#pragma once
// Scale factors along the three axes.

#include "kplan/Export.h"
class KPLAN_API AcGeScale3d {
  public:
    double sx = 1, sy = 1, sz = 1;
    AcGeScale3d() = default;
    explicit AcGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
    AcGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}
    double operator[](int i) const { return i == 0 ? sx : (i == 1 ? sy : sz); }
    bool operator==(const AcGeScale3d&) const = default;
};
