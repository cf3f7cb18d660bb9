#pragma once
// The lightweight polyline: 2D vertices with a bulge and widths per segment.
#include <utility>
#include <vector>

#include "host/arx/dbcurve.h"
#include "kplan/Export.h"

class KPLAN_API AcDbPolyline : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPolyline)
    AcDbPolyline() = default;
    explicit AcDbPolyline(unsigned int reserve) { points_.reserve(reserve); }

    unsigned int numVerts() const { return static_cast<unsigned int>(points_.size()); }
    Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge = 0.,
                                  double startWidth = -1., double endWidth = -1.);
    Acad::ErrorStatus removeVertexAt(unsigned int index);
    Acad::ErrorStatus reset(bool reuse, unsigned int count);
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& point) const;
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& point) const;
    Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& point);
    Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
    Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
    Acad::ErrorStatus getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
    Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
    bool isOnlyLines() const;
    // Every vertex's point and bulge, in order.
    void collect(std::vector<AcGePoint2d>& points, std::vector<double>& bulges) const;

    bool isClosed() const override { return closed_; }
    void setClosed(bool closed);
    double elevation() const { return elevation_; }
    void setElevation(double elevation);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    Acad::ErrorStatus getConstantWidth(double& width) const;
    Acad::ErrorStatus setConstantWidth(double width);
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness);
    bool hasPlinegen() const { return plinegen_; }
    void setPlinegen(bool on);

    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    unsigned int segmentCount() const;
    double bulge(std::size_t i) const { return bulges_.empty() ? 0.0 : bulges_[i]; }
    // Most polylines have no arcs and no widths: those are kept only once a vertex
    // needs them, which halves the memory of a drawing of parcels.
    void needBulges();
    void needWidths();
    std::vector<AcGePoint2d> points_;
    std::vector<double> bulges_;                     // empty: all 0
    std::vector<std::pair<double, double>> widths_;  // empty: all constantWidth_
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double elevation_ = 0, thickness_ = 0, constantWidth_ = 0;
    bool closed_ = false, plinegen_ = false;
};
