#pragma once
// The spline: a NURBS curve given by its control points, knots and weights, and
// optionally by the fit points it was made to pass through.
#include <vector>

#include "host/arx/dbcurve.h"
#include "kplan/Export.h"

class KPLAN_API AcDbSpline : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSpline)
    AcDbSpline() = default;
    // From NURBS data: knots are one more than the control points and the degree;
    // weights, one per control point, only for a rational spline. A spline whose data
    // do not fit together is left empty (no control points).
    AcDbSpline(int degree, bool rational, bool closed, bool periodic,
               const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
               const AcGeDoubleArray& weights, double controlPtTol = 0, double knotTol = 0);
    // Through fit points: the control points of the spline of degree order - 1 that
    // interpolates them at their chord-length parameters, leaving the first and last
    // one in the given directions (zero tangents: left free). Fewer points than the
    // order lower the degree.
    AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
               const AcGeVector3d& endTangent, int order = 4, double fitTolerance = 0);
    AcDbSpline(const AcGePoint3dArray& fitPoints, int order = 4, double fitTolerance = 0);

    int degree() const { return d_.degree; }
    bool isRational() const { return d_.rational; }
    bool isPlanar() const { return d_.planar; }
    int numControlPoints() const { return static_cast<int>(d_.controlPoints.size()); }
    int numFitPoints() const { return static_cast<int>(d_.fitPoints.size()); }
    bool hasFitData() const { return !d_.fitPoints.empty(); }
    Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d& point) const;
    Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d& point) const;
    double weightAt(int index) const;
    AcGeVector3d normal() const { return d_.normal; }

    Acad::ErrorStatus getNurbsData(int& degree, bool& rational, bool& closed, bool& periodic,
                                   AcGePoint3dArray& controlPoints, AcGeDoubleArray& knots,
                                   AcGeDoubleArray& weights, double& controlPtTol,
                                   double& knotTol) const;
    // eNotApplicable for a spline without fit data.
    Acad::ErrorStatus getFitData(AcGePoint3dArray& fitPoints, int& degree, double& fitTolerance,
                                 bool& tangentsExist, AcGeVector3d& startTangent,
                                 AcGeVector3d& endTangent) const;
    Acad::ErrorStatus setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                   const AcGePoint3dArray& controlPoints,
                                   const AcGeDoubleArray& knots, const AcGeDoubleArray& weights,
                                   double controlPtTol = 0, double knotTol = 0);
    Acad::ErrorStatus setFitData(const AcGePoint3dArray& fitPoints, int order, double fitTolerance,
                                 const AcGeVector3d& startTangent, const AcGeVector3d& endTangent);
    Acad::ErrorStatus purgeFitData();

    bool isClosed() const override;
    bool isPeriodic() const override { return d_.periodic; }
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    // Measured along a fine polygon of the curve.
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;

    // Points along the curve, segments per knot span, for outlines and measures.
    std::vector<AcGePoint3d> samplePoints(int perSpan = 32) const;

    // For loaders: the state as the file stores it, unchecked.
    struct Data {
        int degree = 3;
        bool rational = false, closed = false, periodic = false, planar = false, linear = false;
        AcGeVector3d normal = AcGeVector3d::kZAxis;
        std::vector<AcGePoint3d> controlPoints, fitPoints;
        std::vector<double> knots, weights;
        double controlTolerance = 1e-10, knotTolerance = 1e-10, fitTolerance = 1e-10;
        bool hasStartTangent = false, hasEndTangent = false;
        AcGeVector3d startTangent, endTangent;
    };
    const Data& data() const { return d_; }
    void restore(const Data& data) { d_ = data; }

  private:
    void interpolate(int order, const AcGeVector3d& startTangent, const AcGeVector3d& endTangent);
    void updatePlane();

    Data d_;
};
