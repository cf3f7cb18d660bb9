#pragma once
// The ellipse and the elliptic arc.
#include <numbers>

#include "host/arx/dbcurve.h"
#include "kplan/Export.h"

// Runs counter-clockwise about its normal from its start parameter to its end one; the
// point at parameter t is center + majorAxis * cos t + minorAxis * sin t. A whole
// ellipse runs from 0 to 2 pi. Angles (startAngle, endAngle) are measured from the major
// axis to the point, parameters are the eccentric anomaly; they agree at every quarter.
class KPLAN_API AcDbEllipse : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbEllipse)
    AcDbEllipse() = default;
    AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                const AcGeVector3d& majorAxis, double radiusRatio, double startAngle = 0,
                double endAngle = 2 * std::numbers::pi);

    AcGePoint3d center() const { return center_; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    AcGeVector3d normal() const { return normal_; }
    AcGeVector3d majorAxis() const { return major_; }
    // The normal crossed with the major axis, radiusRatio times as long.
    AcGeVector3d minorAxis() const;
    double radiusRatio() const { return ratio_; }
    Acad::ErrorStatus setRadiusRatio(double ratio);
    // All at once; the major axis must be perpendicular to the normal and the ratio in
    // (0, 1]. eInvalidInput otherwise, nothing changed.
    Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                          const AcGeVector3d& majorAxis, double radiusRatio, double startAngle = 0,
                          double endAngle = 2 * std::numbers::pi);

    // For loaders, which set the shape one part at a time and check it whole
    // (isValidShape) once read.
    Acad::ErrorStatus setMajorAxis(const AcGeVector3d& majorAxis);
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    bool isValidShape() const;

    double startAngle() const { return angleAtParam(start_); }
    double endAngle() const { return angleAtParam(end_); }
    Acad::ErrorStatus setStartAngle(double angle);
    Acad::ErrorStatus setEndAngle(double angle);
    double startParam() const { return start_; }
    double endParam() const { return end_; }
    Acad::ErrorStatus setStartParam(double param);
    Acad::ErrorStatus setEndParam(double param);
    double paramAtAngle(double angle) const;
    double angleAtParam(double param) const;

    bool isClosed() const override;
    bool isPeriodic() const override { return isClosed(); }
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    // pi a b for the whole ellipse; an arc is closed by its chord.
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

  private:
    void assign(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                double endAngle);
    // The end parameter of the arc, above the start one.
    double sweepEnd() const;

    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcGeVector3d major_ = AcGeVector3d::kXAxis;
    double ratio_ = 1, start_ = 0, end_ = 2 * std::numbers::pi;
};
