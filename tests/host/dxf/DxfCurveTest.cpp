// Ellipses and splines are typed entities in DXF: what is made with the programming
// surface is saved, read back the same, and read by ezdxf with the same points.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "host/arx/dbelipse.h"
#include "host/arx/dbspline.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbunknown.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "tests/host/dxf/DxfTestSupport.h"
#include "tests/support/GeArrays.h"
#include "tests/support/KplanTest.h"

namespace {

class DxfCurveTest : public KplanTest {};

std::string fmt(const AcGePoint3d& p) {
    char text[200];
    std::snprintf(text, sizeof text, "(%.9f, %.9f, %.9f)", p.x, p.y, p.z);
    return text;
}

TEST_F(DxfCurveTest, EllipsesAndSplinesSurviveTheFileAndEzdxfReadsTheSamePoints) {
    double w = std::sqrt(0.5);
    AcDbObjectId ellipse =
        addEntity(new AcDbEllipse({100, 50, 0}, AcGeVector3d::kZAxis, {0, 20, 0}, 0.25));
    AcDbObjectId arc = addEntity(
        new AcDbEllipse({0, 0, 0}, AcGeVector3d::kZAxis, {10, 0, 0}, 0.5, M_PI / 4, 3 * M_PI / 2));
    AcDbObjectId rational = addEntity(
        new AcDbSpline(2, true, false, false, points({{10, 0, 0}, {10, 10, 0}, {0, 10, 0}}),
                       numbers({0, 0, 0, 1, 1, 1}), numbers({1, w, 1})));
    AcDbObjectId fitted = addEntity(
        new AcDbSpline(points({{0, 0, 0}, {10, 10, 0}, {20, 0, 0}, {30, 10, 0}, {45, 5, 0}}),
                       {1, 0, 0}, {0, -1, 0}));
    std::string path = dxftest::makeTempFolder() + "/curves.dxf";
    std::string error, output;
    ASSERT_TRUE(dxf::save(*database(), path, error)) << error;

    auto loaded = dxf::load(path, error);
    ASSERT_TRUE(loaded) << error;
    auto again = [&](AcDbObjectId id) { return AcDbObjectId(loaded->find(id.handle().value())); };
    auto* e = arx::peek<AcDbEllipse>(again(arc));
    ASSERT_NE(e, nullptr);
    EXPECT_DOUBLE_EQ(e->startParam(), arx::peek<AcDbEllipse>(arc)->startParam());
    EXPECT_DOUBLE_EQ(e->endParam(), 3 * M_PI / 2);
    EXPECT_EQ(e->majorAxis(), AcGeVector3d(10, 0, 0));
    auto* r = arx::peek<AcDbSpline>(again(rational));
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->data().weights, arx::peek<AcDbSpline>(rational)->data().weights);
    EXPECT_TRUE(r->isRational());
    auto* f = arx::peek<AcDbSpline>(again(fitted));
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->data().fitPoints, arx::peek<AcDbSpline>(fitted)->data().fitPoints);
    EXPECT_EQ(f->data().controlPoints, arx::peek<AcDbSpline>(fitted)->data().controlPoints);
    EXPECT_EQ(dxftest::saveText(*loaded), dxftest::readFile(path)) << "a second save differs";

    ASSERT_EQ(dxftest::runPython("list_curves.py", {path}, output), 0) << output;
    // ezdxf's own points: the ellipse at parameter pi/3, the splines in mid-range.
    auto pointAt = [](AcDbObjectId id, double param) {
        AcGePoint3d p;
        arx::peek<AcDbCurve>(id)->getPointAtParam(param, p);
        return p;
    };
    std::string expected =
        "ELLIPSE (100.000000000, 50.000000000, 0.000000000) (0.000000000, 20.000000000, "
        "0.000000000) 0.250000000 0.000000000 6.283185307 " +
        fmt(pointAt(ellipse, M_PI / 3)) + "\n";
    char line[400];
    std::snprintf(line, sizeof line,
                  "ELLIPSE (0.000000000, 0.000000000, 0.000000000) (10.000000000, 0.000000000, "
                  "0.000000000) 0.500000000 %.9f %.9f ",
                  arx::peek<AcDbEllipse>(arc)->startParam(), 3 * M_PI / 2);
    expected += line + fmt(pointAt(arc, M_PI / 3)) + "\n";
    expected += "SPLINE 2 12 3 0 3 " + fmt(pointAt(rational, 0.5)) + "\n";
    expected += "SPLINE 3 8 7 5 0 " + fmt(pointAt(fitted, 0.5)) + "\n";
    EXPECT_EQ(output, expected);
}

// ezdxf writes a spline by its fit points alone; kplan reads it as a curve and writes it
// back the same way.
TEST_F(DxfCurveTest, ASplineOfFitPointsAloneIsACurveAndIsWrittenBackAsRead) {
    std::string text = dxftest::readFile(dxftest::ezdxfDrawings() + "/full_r2010.dxf");
    std::string error;
    auto loaded = dxftest::loadText(text, error);
    ASSERT_TRUE(loaded) << error;
    int splines = 0, ellipses = 0;
    for (AcDbObjectId id : arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId())->entityIds()) {
        if (auto* s = arx::peek<AcDbSpline>(id)) {
            ++splines;
            ASSERT_TRUE(s->hasFitData());
            AcGePoint3d p;
            EXPECT_EQ(s->getPointAtParam(1.0 / 3, p), Acad::eOk);
            EXPECT_TRUE(p.isEqualTo({10, 10, 0}, AcGeTol()));  // equal chords
        }
        if (arx::peek<AcDbEllipse>(id)) ++ellipses;
    }
    EXPECT_EQ(splines, 1);
    EXPECT_EQ(ellipses, 1);
}

}  // namespace

namespace {

// Replaces the first text after `after` that equals `from`; the text unchanged when missing.
std::string replaceAfter(std::string text, const std::string& after, const std::string& from,
                         const std::string& to) {
    std::size_t at = text.find(after);
    if (at == std::string::npos) return text;
    at = text.find(from, at);
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

// What the host cannot take as an ellipse or a spline stays in the file as it was.
TEST_F(DxfCurveTest, CurvesTheHostCannotDrawAreKeptAsRead) {
    double w = std::sqrt(0.5);
    addEntity(new AcDbEllipse({0, 0, 0}, AcGeVector3d::kZAxis, {10, 0, 0}, 0.25));
    addEntity(new AcDbSpline(2, true, false, false, points({{10, 0, 0}, {10, 10, 0}, {0, 10, 0}}),
                             numbers({0, 0, 0, 1, 1, 1}), numbers({1, w, 1})));
    std::string saved = dxftest::saveText(*database());
    struct Case {
        const char* what;
        std::string text;
    } cases[] = {
        {"an ellipse ratio above 1",
         replaceAfter(saved, "AcDbEllipse", "\n 40\n0.25\n", "\n 40\n1.5\n")},
        {"a major axis off the plane",
         replaceAfter(saved, "AcDbEllipse", "\n 31\n0.0\n", "\n 31\n3.0\n")},
        {"a control point count that is not there",
         replaceAfter(saved, "AcDbSpline", "\n 73\n3\n", "\n 73\n4\n")},
        {"knots that go back", replaceAfter(saved, "AcDbSpline", "\n 40\n1.0\n", "\n 40\n-1.0\n")},
        // Three control points make no cubic, whatever the knots say.
        {"a degree above the control points",
         replaceAfter(replaceAfter(replaceAfter(saved, "AcDbSpline", "\n 71\n2\n", "\n 71\n3\n"),
                                   "AcDbSpline", "\n 72\n6\n", "\n 72\n7\n"),
                      "AcDbSpline", "\n 40\n0.0\n", "\n 40\n0.0\n 40\n0.0\n")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_NE(c.text, saved) << "the test's edit found nothing to change";
        std::string error;
        auto loaded = dxftest::loadText(c.text, error);
        ASSERT_TRUE(loaded) << error;
        int kept = 0;
        for (AcDbObjectId id : arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId())->entityIds())
            kept += arx::peek<AcDbUnknownEntity>(id) ? 1 : 0;
        EXPECT_EQ(kept, 1);
        EXPECT_EQ(dxftest::firstDifference(dxftest::normalizedTags(c.text),
                                           dxftest::normalizedTags(dxftest::saveText(*loaded))),
                  "");
    }
}

}  // namespace
