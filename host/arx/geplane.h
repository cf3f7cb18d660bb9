#pragma once
// Planes of the host's geometry library.
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

namespace AcDb {
enum Planarity { kNonPlanar = 0, kPlanar = 1, kLinear = 2 };
}  // namespace AcDb

// A bounded or unbounded planar surface given by an origin and two axes.
class KPLAN_API AcGePlanarEnt {
  public:
    AcGePlanarEnt() = default;
    AcGePlanarEnt(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis)
        : origin_(origin), u_(uAxis), v_(vAxis) {}
    virtual ~AcGePlanarEnt() = default;

    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& axis1, AcGeVector3d& axis2) const {
        origin = origin_;
        axis1 = u_;
        axis2 = v_;
    }
    AcGePoint3d pointOnPlane() const { return origin_; }
    AcGeVector3d normal() const { return u_.crossProduct(v_).normal(); }

  protected:
    AcGePoint3d origin_;
    AcGeVector3d u_ = AcGeVector3d::kXAxis;
    AcGeVector3d v_ = AcGeVector3d::kYAxis;
};

// The unbounded plane; by default the XY plane of the world.
class KPLAN_API AcGePlane : public AcGePlanarEnt {
  public:
    AcGePlane() = default;
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis)
        : AcGePlanarEnt(origin, uAxis, vAxis) {}
    void set(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
        origin_ = origin;
        u_ = uAxis;
        v_ = vAxis;
    }
};
