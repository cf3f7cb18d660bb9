#pragma once
// A region: a planar area bounded by closed loops of straight and circular segments.
// The host keeps the loops as bulged polygons in a plane parallel to the world XY plane;
// where loops nest, the area alternates (even-odd), so an inner loop is a hole.
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API AcDbRegion : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRegion)

    // One closed loop: vertex i runs to vertex i + 1 with bulge i, the last back to the first.
    struct Loop {
        std::vector<AcGePoint2d> points;
        std::vector<double> bulges;  // one per vertex, or empty for straight edges only
    };

    AcDbRegion() = default;

    // The host's own way to build a region (the CAD makes them from curves): loops of
    // at least two vertices enclosing a non-zero area, at the elevation. eInvalidInput,
    // with the region unchanged, otherwise; eNotOpenForWrite for a resident region not
    // open for write.
    Acad::ErrorStatus setLoops(std::vector<Loop> loops, double elevation = 0);
    const std::vector<Loop>& loops() const { return loops_; }
    double elevation() const { return elevation_; }
    bool isNull() const { return loops_.empty(); }
    Adesk::UInt32 numChanges() const { return 0; }

    // Area properties in the coordinate system of origin and axes (which must be unit
    // length and perpendicular, lying in the region's plane): the perimeter, the area, the
    // centroid, the second moments about the axes (momInertia[0] about the x axis:
    // integral of y squared), the product of inertia, the principal moments and axes
    // about the centroid, the radii of gyration, and the extents. Arcs are exact.
    // eNullObjectPointer for an empty region, eInvalidInput for bad axes.
    Acad::ErrorStatus getAreaProp(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                  const AcGeVector3d& yAxis, double& perimeter, double& area,
                                  AcGePoint2d& centroid, double momInertia[2], double& prodInertia,
                                  double prinMoments[2], AcGeVector2d prinAxes[2],
                                  double radiiGyration[2], AcGePoint2d& extentsLow,
                                  AcGePoint2d& extentsHigh) const;
    Acad::ErrorStatus getPerimeter(double& perimeter) const;
    Acad::ErrorStatus getArea(double& area) const;

    // The plane of the loops: origin (0, 0, elevation), the world x and y axes.
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    std::vector<Loop> loops_;
    double elevation_ = 0;
};
