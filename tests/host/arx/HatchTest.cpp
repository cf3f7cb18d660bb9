// Hatches: loops from vertices, from boundary objects and from edges; the pattern lines
// of predefined patterns; associativity that follows the boundary.
#include <cmath>
#include <filesystem>
#include <fstream>

#include "host/arx/dbents.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbpl.h"
#include "host/arx/peek.h"
#include "host/db/HatchPatternFile.h"
#include "host/db/TextCodec.h"
#include "tests/support/KplanTest.h"

namespace {

class HatchTest : public KplanTest {
  protected:
    AcDbObjectId hatchOver(AcDbObjectId boundary, bool associative) {
        auto* hatch = new AcDbHatch();
        hatch->setAssociative(associative);
        AcDbObjectIdArray ids;
        ids.append(boundary);
        EXPECT_EQ(hatch->appendLoop(AcDbHatch::kExternal, ids), Acad::eOk);
        AcDbObjectId id = addEntity(hatch);
        AcDbObject* obj = nullptr;
        EXPECT_EQ(acdbOpenObject(obj, boundary, AcDb::kForWrite), Acad::eOk);
        obj->addPersistentReactor(id);
        obj->close();
        return id;
    }
    std::vector<AcGePoint2d> loopVertices(AcDbObjectId hatch, int index = 0) {
        const AcDbHatch::Loop* loop = arx::peek<AcDbHatch>(hatch)->loopAt(index);
        return loop ? loop->vertices : std::vector<AcGePoint2d>();
    }
};

TEST_F(HatchTest, LoopsComeFromBoundaryObjectsExactly) {
    struct Case {
        const char* what;
        AcDbObjectId boundary;
        std::vector<AcGePoint2d> vertices;
        std::vector<double> bulges;
    } cases[] = {
        {"polyline with a bulge",
         addPolyline({{0, 0}, {10, 0}, {10, 5}}, {0, 0.5, 0}),
         {{0, 0}, {10, 0}, {10, 5}},
         {0, 0.5, 0}},
        {"circle as two half circles", addCircle(5, 5, 2), {{7, 5}, {3, 5}}, {1, 1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        AcDbObjectId id = hatchOver(c.boundary, true);
        AcGePoint2dArray vertices;
        AcGeDoubleArray bulges;
        Adesk::Int32 type = 0;
        ASSERT_EQ(arx::peek<AcDbHatch>(id)->getLoopAt(0, type, vertices, bulges), Acad::eOk);
        EXPECT_TRUE(type & AcDbHatch::kPolyline);
        EXPECT_TRUE(type & AcDbHatch::kExternal);
        ASSERT_EQ(vertices.length(), static_cast<int>(c.vertices.size()));
        for (int i = 0; i < vertices.length(); ++i) {
            EXPECT_EQ(vertices[i], c.vertices[static_cast<std::size_t>(i)]);
            EXPECT_EQ(bulges[i], c.bulges[static_cast<std::size_t>(i)]);
        }
        AcDbObjectIdArray sources;
        arx::peek<AcDbHatch>(id)->getAssocObjIdsAt(0, sources);
        ASSERT_EQ(sources.length(), 1);
        EXPECT_EQ(sources[0], c.boundary);
    }
}

TEST_F(HatchTest, AnAssociativeHatchFollowsItsBoundary) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId associative = hatchOver(parcel, true);
    AcDbObjectId fixed = hatchOver(parcel, false);
    AcDbPolyline* pline = nullptr;
    ASSERT_EQ(acdbOpenObject(pline, parcel, AcDb::kForWrite), Acad::eOk);
    pline->setPointAt(2, AcGePoint2d(20, 20));
    pline->close();
    EXPECT_EQ(loopVertices(associative)[2], AcGePoint2d(20, 20));
    EXPECT_EQ(loopVertices(fixed)[2], AcGePoint2d(10, 10)) << "a plain hatch stays";
}

TEST_F(HatchTest, PredefinedPatternsCarryTheirLinesScaledAndRotated) {
    auto* hatch = new AcDbHatch();
    ASSERT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, L"net"), Acad::eOk);
    ASSERT_EQ(hatch->numPatternDefinitions(), 2) << "NET: two families, case ignored";
    ASSERT_EQ(hatch->setPatternScale(4), Acad::eOk);
    ASSERT_EQ(hatch->setPatternAngle(M_PI / 2), Acad::eOk);
    double angle, bx, by, ox, oy;
    AcGeDoubleArray dashes;
    ASSERT_EQ(hatch->getPatternDefinitionAt(0, angle, bx, by, ox, oy, dashes), Acad::eOk);
    // 0°, offset (0, 0.125) at scale 1 becomes 90°, offset (-0.5, 0).
    EXPECT_NEAR(angle, M_PI / 2, 1e-12);
    EXPECT_NEAR(ox, -0.5, 1e-12);
    EXPECT_NEAR(oy, 0.0, 1e-12);
    EXPECT_EQ(dashes.length(), 0);

    struct Case {
        const ACHAR* name;
        int lines;
        bool solid;
    } cases[] = {{L"SOLID", 0, true},   {L"ANSI31", 1, false},  {L"ANSI37", 2, false},
                 {L"EARTH", 6, false},  {L"AR-SAND", 4, false}, {L"GRASS", 3, false},
                 {L"NO_SUCH", 0, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name, c.name + std::wcslen(c.name)));
        ASSERT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, c.name), Acad::eOk);
        EXPECT_EQ(hatch->numPatternDefinitions(), c.lines);
        EXPECT_EQ(hatch->isSolidFill(), c.solid);
    }
    EXPECT_EQ(hatch->setPatternScale(0), Acad::eInvalidInput);
    EXPECT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, L""), Acad::eInvalidInput);
    delete hatch;
}

TEST_F(HatchTest, EdgeLoopsOfLinesAndArcsReadAsVerticesAndBulges) {
    auto* hatch = new AcDbHatch();
    AcDbHatchEdge line;
    line.type = AcDbHatch::kLine;
    line.start = {0, 0};
    line.end = {10, 0};
    AcDbHatchEdge arc;
    arc.type = AcDbHatch::kCirArc;
    arc.center = {10, 5};
    arc.radius = 5;
    arc.startAngle = -M_PI / 2;
    arc.endAngle = M_PI / 2;
    ASSERT_EQ(hatch->appendLoop(AcDbHatch::kExternal, std::vector<AcDbHatchEdge>{line, arc}),
              Acad::eOk);
    AcGePoint2dArray vertices;
    AcGeDoubleArray bulges;
    Adesk::Int32 type = 0;
    ASSERT_EQ(hatch->getLoopAt(0, type, vertices, bulges), Acad::eOk);
    ASSERT_EQ(vertices.length(), 2);
    EXPECT_EQ(vertices[0], AcGePoint2d(0, 0));
    EXPECT_NEAR(vertices[1].x, 10, 1e-12);
    EXPECT_NEAR(vertices[1].y, 0, 1e-12);
    EXPECT_NEAR(bulges[1], 1.0, 1e-12) << "a half circle";
    EXPECT_EQ(hatch->appendLoop(AcDbHatch::kPolyline, std::vector<AcDbHatchEdge>{line}),
              Acad::eInvalidInput);
    AcDbExtents extents;
    ASSERT_EQ(hatch->getGeomExtents(extents), Acad::eOk);
    EXPECT_EQ(extents.maxPoint().x, 15);
    delete hatch;
}

}  // namespace

namespace {

// The pattern file follows the drawing's measurement; a broken one is said once and
// refuses the pattern instead of leaving a hatch without lines.
TEST_F(HatchTest, PatternsComeFromTheFileOfTheDrawingsMeasurement) {
    auto lineOf = [&](const ACHAR* name) {
        auto* hatch = new AcDbHatch();
        EXPECT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, name), Acad::eOk);
        AcDbHatchPatternLine line;
        if (hatch->numPatternDefinitions() > 0) line = hatch->patternLines()[0];
        delete hatch;
        return line;
    };
    // ANSI31: 45 degree lines 1/8 inch apart, or 3.175 mm.
    EXPECT_NEAR(lineOf(L"ANSI31").offset.length(), 0.125, 1e-9);
    ASSERT_EQ(database()->setMeasurement(1), Acad::eOk);
    EXPECT_NEAR(lineOf(L"ansi31").offset.length(), 3.175, 1e-8);
    EXPECT_EQ(database()->setMeasurement(2), Acad::eInvalidInput);
    EXPECT_EQ(acdbPredefinedHatchPattern(L"ANSI31", true)[0].offset, lineOf(L"ANSI31").offset);

    std::string folder = testing::TempDir() + "kplan-broken-patterns";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/kplaniso.pat") << "*ANSI31\n45, 0,0, 0,three\n";
    db::setHatchPatternFolder(folder);
    auto* hatch = new AcDbHatch();
    EXPECT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, L"ANSI31"), Acad::eFileNotFound);
    EXPECT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, L"NET"), Acad::eFileNotFound);
    EXPECT_STREQ(hatch->patternName(), L"SOLID") << "the hatch is left as it was";
    EXPECT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, L"solid"), Acad::eOk) << "needs no file";
    delete hatch;
    db::setHatchPatternFolder("");
    std::wstring said = db::utf8ToWide(folder + "/kplaniso.pat, line 2: \"three\" is no number");
    EXPECT_NE(transcript().find(said), std::wstring::npos) << transcript();
    EXPECT_EQ(transcript().find(said), transcript().rfind(said)) << "said once";
}

}  // namespace
