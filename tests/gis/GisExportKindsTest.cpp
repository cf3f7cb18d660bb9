// "kplan export" of a drawing made here with the record classes: underground spaces in
// their own layers, an arc outline flattened within 1 cm, and values a typed field cannot
// hold left empty with a warning.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "host/arx/acdocman.h"
#include "host/arx/dbpl.h"
#include "host/dxf/Dxf.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "tests/gis/GisRun.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadius = 50;

CStringArray list(std::initializer_list<const wchar_t*> items) {
    CStringArray out;
    for (const wchar_t* item : items)
        out.Add(item);
    return out;
}

AcDbObjectId addOutline(std::initializer_list<AcGePoint2d> points, double bulge) {
    auto* pline = new AcDbPolyline();
    unsigned int i = 0;
    for (const AcGePoint2d& p : points)
        pline->addVertexAt(i++, p, bulge);
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity);
}

// A planned parcel that is a circle of two half-circle arcs, with a floor-area ratio and
// a population that are not numbers and texts with blanks around them (ideographic spaces
// among them); two underground spaces.
std::string kindsDrawing() {
    static const std::string path = [] {
        AcApDocument* document = acDocManager->appendDocument();
        AcDbObjectId circle = addOutline({{500000, 3500000}, {500000 + 2 * kRadius, 3500000}}, 1.0);
        CDKBJXDInfo(circle).SetData(
            list({dk::FS_DKBH, dk::FD_RJL, dk::FN_ZRKS, dk::FD_LDL, dk::FS_BZ, dk::FS_DKXZ}),
            list({L"\u3000C-1\t ", L"high", L"12.5", L"35", L" 绿地 公园\u3000", L"\u2003\u3000"}));
        AcDbObjectId below = addOutline(
            {{500200, 3500000}, {500260, 3500000}, {500260, 3500040}, {500200, 3500040}}, 0);
        CDKBJXDInfo(below).SetDXKJData(list({dk::FS_DXKJBH, dk::FN_DXKJCS, dk::FD_DXJZMJ}),
                                       list({L"DX-1", L"2", L"4800.5"}), dk::FAPP_GHDK_DX, 1);
        AcDbObjectId old = addOutline(
            {{500300, 3500000}, {500330, 3500000}, {500330, 3500030}, {500300, 3500030}}, 0);
        CDKBJXDInfo(old).SetDXKJData(list({dk::FS_DXKJBH}), list({L"DX-0"}), dk::FAPP_XZDK_DX, 0);
        std::string file = testFolder() + "/gis-kinds.dxf";
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), file, error)) << error;
        acDocManager->closeDocument(document);
        return file;
    }();
    return path;
}

TEST(GisExportKindsTest, UndergroundArcsAndUnreadableValues) {
    std::string out = testFolder() + "/gis-kinds.gpkg";
    Outcome run = kplan("export " + shellPath(kindsDrawing()) + " " + shellPath(out) + " --force");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json dump = readWithGdal(out);

    // Underground spaces: one layer each, with their own keys typed.
    const Json& planned = layerNamed(dump, "underground_planned");
    ASSERT_EQ(planned["count"].number(), 1);
    const Json& space = planned["features"][0]["fields"];
    EXPECT_EQ(space["FS_DXKJBH"].string(), "DX-1");
    EXPECT_EQ(space["FN_DXKJCS"].number(), 2);
    EXPECT_DOUBLE_EQ(space["FD_DXJZMJ"].number(), 4800.5);
    EXPECT_DOUBLE_EQ(space["area_ha"].number(), 0.24);
    const Json& current = layerNamed(dump, "underground_current");
    ASSERT_EQ(current["count"].number(), 1);
    EXPECT_EQ(current["features"][0]["fields"]["FS_DXKJBH"].string(), "DX-0");

    // The circle: a regular polygon inscribed in it whose chords stand at most 1 cm off
    // the arc. n chords of a circle of radius r stand r (1 - cos(pi / n)) off it.
    const Json& parcels = layerNamed(dump, "planned_parcels");
    ASSERT_EQ(parcels["count"].number(), 1);
    const Json& circle = parcels["features"][0];
    double chords = circle["geometry"]["points"].number() - 1;
    EXPECT_LE(kRadius * (1 - std::cos(kPi / chords)), 0.01);
    EXPECT_GE(chords, std::ceil(kPi / std::acos(1 - 0.01 / kRadius)));
    EXPECT_LE(chords, 2 * std::ceil(kPi / std::acos(1 - 0.01 / kRadius)));
    double inscribed = chords / 2 * kRadius * kRadius * std::sin(2 * kPi / chords);
    EXPECT_NEAR(circle["geometry"]["area"].number(), inscribed, 1e-3);
    EXPECT_NEAR(circle["fields"]["area_ha"].number(), kPi * kRadius * kRadius / 10000, 1e-9);

    // "high" and "12.5" cannot be a real and a whole number: empty, and said so.
    const Json& fields = circle["fields"];
    EXPECT_TRUE(fields["FD_RJL"].isNull());
    EXPECT_TRUE(fields["FN_ZRKS"].isNull());
    EXPECT_DOUBLE_EQ(fields["FD_LDL"].number(), 35);
    // Texts lose the blanks around them, within they stay; nothing but blanks is no value.
    EXPECT_EQ(fields["FS_DKBH"].string(), "C-1");
    EXPECT_EQ(fields["FS_BZ"].string(), "绿地 公园");
    EXPECT_TRUE(fields["FS_DKXZ"].isNull());
    std::string handle = fields["handle"].string();
    EXPECT_NE(run.err.find("planned_parcels: " + handle + " FD_RJL = \"high\" is not a number"),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.err.find(handle + " FN_ZRKS = \"12.5\" is not a whole number"), std::string::npos)
        << run.err;

    // Kept as arcs, the circle comes back whole: two half circles, area pi r^2.
    run = kplan("export " + shellPath(kindsDrawing()) + " " + shellPath(out) + " --force --curves");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json curved = readWithGdal(out);
    const Json& arc = layerNamed(curved, "planned_parcels")["features"][0]["geometry"];
    EXPECT_EQ(arc["type"].string(), "CURVEPOLYGON");
    std::string back = testFolder() + "/gis-kinds-back.dxf";
    run = kplan("import " + shellPath(out) + " --layer planned_parcels --into " +
                shellPath(emptyDrawing()) + " -o " + shellPath(back));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json rows = listJson(back);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_NEAR(rows[0]["area_ha"].number(), kPi * kRadius * kRadius / 10000, 1e-12);
}

}  // namespace
