#pragma once
// Curves: entities with a parameter running along them.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API AcDbCurve : public AcDbEntity {
  public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbCurve)

    virtual bool isClosed() const = 0;
    virtual bool isPeriodic() const { return false; }
    virtual Acad::ErrorStatus getStartParam(double& param) const = 0;
    virtual Acad::ErrorStatus getEndParam(double& param) const = 0;
    virtual Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const = 0;
    virtual Acad::ErrorStatus getDistAtParam(double param, double& dist) const = 0;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;
    // The enclosed area, as if the curve were closed by a straight segment.
    virtual Acad::ErrorStatus getArea(double& area) const = 0;
};

// The area and the length of a circular segment of a bulged chord: bulge is the
// tangent of a quarter of the included angle, positive counter-clockwise.
KPLAN_API double acgeBulgeSegmentArea(double chord, double bulge);
KPLAN_API double acgeBulgeArcLength(double chord, double bulge);
// The point at fraction t (0..1) of the arc from p to q with the given bulge.
KPLAN_API AcGePoint2d acgeBulgePointAt(const AcGePoint2d& p, const AcGePoint2d& q, double bulge,
                                       double t);
