// "kplan import": GeoPackages made here with ogr2ogr become parcels whose records kplan
// list reads back; bad layers are refused with nothing written; and the sample goes
// DXF -> GeoPackage -> DXF with its records and outlines.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "tests/gis/GisRun.h"

namespace {

namespace fs = std::filesystem;

// A GeoPackage made by ogr2ogr from GeoJSON text; "" when ogr2ogr fails.
std::string makeGpkg(const std::string& name, const std::string& geojson) {
    std::string folder = testFolder() + "/import";
    fs::create_directories(folder);
    std::string source = folder + "/" + name + ".geojson", gpkg = folder + "/" + name + ".gpkg";
    std::ofstream(source) << geojson;
    fs::remove(gpkg);
    std::string command = "ogr2ogr -f GPKG " + shellPath(gpkg) + " " + shellPath(source) +
                          " -nln parcels -a_srs EPSG:4547 >/dev/null 2>&1";
    return std::system(command.c_str()) == 0 ? gpkg : std::string();
}

std::string collection(const std::string& features) {
    return R"({"type": "FeatureCollection", "features": [)" + features + "]}";
}

// A square of side metres at (x, y), with an optional square hole in its middle.
std::string square(double x, double y, double side, double hole = 0) {
    auto ring = [](double x0, double y0, double s) {
        auto p = [](double px, double py) {
            return "[" + std::to_string(px) + ", " + std::to_string(py) + "]";
        };
        return "[" + p(x0, y0) + ", " + p(x0 + s, y0) + ", " + p(x0 + s, y0 + s) + ", " +
               p(x0, y0 + s) + ", " + p(x0, y0) + "]";
    };
    std::string rings = ring(x, y, side);
    if (hole > 0) rings += ", " + ring(x + (side - hole) / 2, y + (side - hole) / 2, hole);
    return R"({"type": "Polygon", "coordinates": [)" + rings + "]}";
}

std::string feature(const std::string& properties, const std::string& geometry) {
    return R"({"type": "Feature", "properties": {)" + properties + R"(}, "geometry": )" + geometry +
           "}";
}

const Json* rowNumbered(const Json& rows, const std::string& number) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i]["number"].string() == number) return &rows[i];
    }
    return nullptr;
}

TEST(GisImportTest, PolygonsBecomeParcelsWithRecordsMatchedByKeyAliasLabelAndMap) {
    // Matched by key (FD_RJL), by the attribute file's alias (地块编号), by a record
    // label (总人口数), by --map (class); "owner" matches nothing.
    std::string gpkg =
        makeGpkg("plain", collection(feature(R"("地块编号": "N-1", "class": "R21", "FD_RJL": 2.5,
                                    "总人口数": 420, "owner": "city")",
                                             square(500000, 3500000, 100, 20)) +
                                     ", " +
                                     feature(R"("地块编号": "N-2", "class": "G1", "FD_RJL": 0.1,
                                    "总人口数": null, "owner": "park")",
                                             square(500200, 3500000, 50))));
    ASSERT_FALSE(gpkg.empty());
    std::string out = testFolder() + "/import/plain.dxf";
    Outcome run = kplan("import " + shellPath(gpkg) + " --into " + shellPath(emptyDrawing()) +
                        " -o " + shellPath(out) + " --map class=FS_DKXZ");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("2 planned parcels, 1 island"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("not imported (no key matches; --map FIELD=KEY): owner"),
              std::string::npos)
        << run.out;
    Json rows = listJson(out);
    ASSERT_EQ(rows.size(), 2u);
    const Json* first = rowNumbered(rows, "N-1");
    const Json* second = rowNumbered(rows, "N-2");
    ASSERT_TRUE(first != nullptr && second != nullptr);
    EXPECT_EQ((*first)["kind"].string(), "planned");
    EXPECT_EQ((*first)["generation"].number(), 3);
    EXPECT_EQ((*first)["class"].string(), "R21");
    EXPECT_EQ((*first)["far"].number(), 2.5);
    EXPECT_EQ((*first)["population"].number(), 420);
    // 100 m square less its 20 m hole, linked as an island: 0.96 ha.
    EXPECT_NEAR((*first)["area_ha"].number(), 0.96, 1e-9);
    EXPECT_EQ((*second)["class"].string(), "G1");
    EXPECT_EQ((*second)["far"].number(), 0.1);
    EXPECT_TRUE((*second)["population"].isNull());
    EXPECT_NEAR((*second)["area_ha"].number(), 0.25, 1e-9);

    // The same layer as current-status parcels.
    run = kplan("import " + shellPath(gpkg) + " --into " + shellPath(emptyDrawing()) + " -o " +
                shellPath(out) + " --map class=FS_DKXZ --kind current");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    rows = listJson(out);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0]["kind"].string(), "current status");
    EXPECT_NEAR(rowNumbered(rows, "N-1")->operator[]("area_ha").number(), 0.96, 1e-9);
}

TEST(GisImportTest, EachPartOfAMultipolygonIsAParcelWithTheFeaturesFields) {
    std::string two = R"({"type": "MultiPolygon", "coordinates": [
        [[[500000, 3500000], [500100, 3500000], [500100, 3500100], [500000, 3500000]]],
        [[[500200, 3500000], [500300, 3500000], [500300, 3500050], [500200, 3500050],
          [500200, 3500000]]]]})";
    std::string point = R"({"type": "Point", "coordinates": [500000, 3500000]})";
    std::string gpkg =
        makeGpkg("multi", collection(feature(R"("FS_DKBH": "M-1", "FS_DKXZ": "G1")", two) + ", " +
                                     feature(R"("FS_DKBH": "P-1")", point)));
    ASSERT_FALSE(gpkg.empty());
    std::string out = testFolder() + "/import/multi.dxf";
    Outcome run = kplan("import " + shellPath(gpkg) + " --into " + shellPath(emptyDrawing()) +
                        " -o " + shellPath(out));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("2 planned parcels, 0 islands"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("left out 1 feature without a polygon"), std::string::npos) << run.out;
    Json rows = listJson(out);
    ASSERT_EQ(rows.size(), 2u);
    double total = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i]["number"].string(), "M-1");
        EXPECT_EQ(rows[i]["class"].string(), "G1");
        total += rows[i]["area_ha"].number();
    }
    EXPECT_NEAR(total, 0.5 + 0.5, 1e-9);  // a 100 m right triangle and a 100 x 50 m rectangle
}

// Closed polylines of a drawing (layer, area) and its layers' colours, as ezdxf reads them.
Json outlineLayers(const std::string& dxf) {
    std::string out = testFolder() + "/outlines.json";
    std::string command = "/usr/bin/python3 '" + std::string(KPLAN_SOURCE_DIR) +
                          "/tests/gis/dxf_outline_layers.py' " + shellPath(dxf) + " >" +
                          shellPath(out);
    if (std::system(command.c_str()) != 0) return Json::parse("");
    return Json::parse(slurp(out));
}

TEST(GisImportTest, ParcelsGoOnTheBoundaryLayerOfTheirClass) {
    // The shipped class table names every class's layer: its planned boundary prefix "GH-"
    // + code, which current parcels take too (the table's name comes before the current
    // affixes "XZ-"), in the class's colour: R21 (255,255,0), G1 (0,255,0). A parcel without
    // a class stays on the drawing's current layer, "0".
    std::string gpkg = makeGpkg(
        "layers",
        collection(
            feature(R"("FS_DKBH": "L-1", "FS_DKXZ": "R21")", square(500000, 3500000, 100, 20)) +
            ", " + feature(R"("FS_DKBH": "L-2", "FS_DKXZ": "G1")", square(500200, 3500000, 50)) +
            ", " + feature(R"("FS_DKBH": "L-3")", square(500300, 3500000, 30))));
    ASSERT_FALSE(gpkg.empty());
    struct Case {
        const char* kind;
        const char* r21;
        const char* g1;
    } cases[] = {{"planned", "GH-R21", "GH-G1"}, {"current", "GH-R21", "GH-G1"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.kind);
        std::string out = testFolder() + "/import/layers-" + c.kind + ".dxf";
        Outcome run = kplan("import " + shellPath(gpkg) + " --into " + shellPath(emptyDrawing()) +
                            " -o " + shellPath(out) + " --kind " + c.kind);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_NE(run.out.find(std::string("drawing layers: ") + c.r21 + " " + c.g1),
                  std::string::npos)
            << run.out;
        Json drawing = outlineLayers(out);
        ASSERT_TRUE(drawing.ok());
        // Outline and island of L-1 (100 and 20 m squares), L-2, L-3, by area.
        std::map<long, std::string> layerByArea;
        const Json& outlines = drawing["outlines"];
        for (std::size_t i = 0; i < outlines.size(); ++i)
            layerByArea[std::lround(outlines[i]["area"].number())] = outlines[i]["layer"].string();
        std::map<long, std::string> expected = {
            {10000, c.r21}, {400, c.r21}, {2500, c.g1}, {900, "0"}};
        EXPECT_EQ(layerByArea, expected);
        const Json& r21 = drawing["layers"][c.r21]["rgb"];
        ASSERT_EQ(r21.size(), 3u);
        EXPECT_EQ(r21[0].number(), 255);
        EXPECT_EQ(r21[1].number(), 255);
        EXPECT_EQ(r21[2].number(), 0);
        const Json& g1 = drawing["layers"][c.g1]["rgb"];
        ASSERT_EQ(g1.size(), 3u);
        EXPECT_EQ(g1[0].number(), 0);
        EXPECT_EQ(g1[1].number(), 255);
        EXPECT_EQ(g1[2].number(), 0);
    }
}

TEST(GisImportTest, BadLayersAreRefusedAndNothingIsWritten) {
    std::string bowTie = R"({"type": "Polygon", "coordinates": [[[500000, 3500000],
        [500100, 3500100], [500100, 3500000], [500000, 3500100], [500000, 3500000]]]})";
    std::string point = R"({"type": "Point", "coordinates": [500000, 3500000]})";
    struct Case {
        std::string name, geojson, options, message;
    } cases[] = {
        {"points", collection(feature(R"("FS_DKBH": "P")", point)), "", "holds no polygons"},
        {"wrongtype", collection(feature(R"("FD_RJL": "high")", square(500000, 3500000, 10))), "",
         "field FD_RJL = \"high\" is not a number, as FD_RJL needs"},
        {"halfpeople", collection(feature(R"("FN_ZRKS": 12.5)", square(500000, 3500000, 10))), "",
         "is not a whole number, as FN_ZRKS needs"},
        {"selfcrossing", collection(feature(R"("FS_DKBH": "X")", bowTie)), "",
         "the polygon is not valid (a ring crosses itself"},
        {"badmap", collection(feature(R"("FS_DKBH": "M")", square(500000, 3500000, 10))),
         "--map nosuch=FS_DKXZ", "has no field nosuch"},
        {"nolayer", collection(feature(R"("FS_DKBH": "L")", square(500000, 3500000, 10))),
         "--layer nosuch", "no layer nosuch"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string gpkg = makeGpkg(c.name, c.geojson);
        ASSERT_FALSE(gpkg.empty());
        std::string out = testFolder() + "/import/" + c.name + ".dxf";
        Outcome run = kplan("import " + shellPath(gpkg) + " --into " + shellPath(emptyDrawing()) +
                            " -o " + shellPath(out) + " " + c.options);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
        EXPECT_FALSE(fs::exists(out));
    }
    // Longitude and latitude are not drawing units.
    std::string source = testFolder() + "/import/degrees.geojson";
    std::ofstream(source) << collection(feature(R"("FS_DKBH": "D")", square(114, 30, 0.01)));
    std::string out = testFolder() + "/import/degrees.dxf";
    Outcome run = kplan("import " + shellPath(source) + " --into " + shellPath(emptyDrawing()) +
                        " -o " + shellPath(out));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("is in longitude and latitude"), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(out));
}

TEST(GisImportTest, TheSampleGoesToAGeoPackageAndBackWithItsRecords) {
    std::string folder = testFolder() + "/roundtrip";
    fs::remove_all(folder);
    fs::create_directories(folder);
    std::string gpkg = folder + "/plan.gpkg", back = folder + "/back.dxf";
    Outcome run = kplan("export " + shellPath(samplePlan()) + " " + shellPath(gpkg));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    for (const char* layer : {"planned_parcels", "current_parcels"}) {
        SCOPED_TRACE(layer);
        bool current = std::string(layer) == "current_parcels";
        run = kplan("import " + shellPath(gpkg) + " --layer " + layer + " --into " +
                    shellPath(emptyDrawing()) + " -o " + shellPath(back) +
                    (current ? " --kind current" : ""));
        ASSERT_EQ(run.exitCode, 0) << run.err;
        Json before = listJson(samplePlan()), after = listJson(back);
        std::size_t compared = 0;
        for (std::size_t i = 0; i < before.size(); ++i) {
            const Json& row = before[i];
            if (row["kind"].string() != (current ? "current status" : "planned")) continue;
            SCOPED_TRACE(row["number"].string());
            const Json* again = rowNumbered(after, row["number"].string());
            ASSERT_NE(again, nullptr);
            EXPECT_EQ((*again)["generation"].number(), 3);  // older records come back current
            EXPECT_EQ((*again)["class"].string(), row["class"].string());
            EXPECT_EQ((*again)["class_name"].string(), row["class_name"].string());
            for (const char* column :
                 {"far", "green_ratio", "density", "height_limit", "population"}) {
                // Typed fields keep the number, not its spelling ("3.0" comes back "3").
                const std::string& was = row[column].string();
                const std::string& is = (*again)[column].string();
                if (was.empty()) {
                    EXPECT_EQ(is, "") << column;
                } else {
                    EXPECT_DOUBLE_EQ(std::stod(is), std::stod(was)) << column;
                }
            }
            // Chords within 1 cm of the arcs: well under 0.001 ha on these outlines.
            EXPECT_NEAR((*again)["area_ha"].number(), row["area_ha"].number(), 1e-3);
            ++compared;
        }
        EXPECT_EQ(compared, after.size());
        EXPECT_GT(compared, 0u);

        // Every field of every record, not only those kplan list shows: exported again,
        // the layer holds the same values under the same keys.
        std::string again = folder + "/again.gpkg";
        run = kplan("export " + shellPath(back) + " " + shellPath(again) + " --force");
        ASSERT_EQ(run.exitCode, 0) << run.err;
        Json firstDump = readWithGdal(gpkg);
        const Json& first = layerNamed(firstDump, layer);
        Json secondDump = readWithGdal(again);
        const Json& second = layerNamed(secondDump, layer);
        ASSERT_EQ(second["count"].number(), first["count"].number());
        std::map<std::string, const Json*> byNumber;
        for (std::size_t i = 0; i < second["features"].size(); ++i) {
            const Json& f = second["features"][i]["fields"];
            byNumber[f["FS_DKBH"].string()] = &f;
        }
        std::size_t fields = 0;
        for (std::size_t i = 0; i < first["features"].size(); ++i) {
            const Json& f = first["features"][i]["fields"];
            ASSERT_TRUE(byNumber.count(f["FS_DKBH"].string()));
            const Json& g = *byNumber[f["FS_DKBH"].string()];
            for (const std::string& key : f.keys()) {
                if (key.rfind("F", 0) != 0) continue;  // handle, generation, area_ha, ...
                SCOPED_TRACE(f["FS_DKBH"].string() + " " + key);
                EXPECT_EQ(g[key].type(), f[key].type());
                if (f[key].type() == Json::Type::Number) {
                    EXPECT_DOUBLE_EQ(g[key].number(), f[key].number());
                } else {
                    EXPECT_EQ(g[key].string(), f[key].string());
                }
                fields += !f[key].isNull();
            }
        }
        EXPECT_GT(fields, first["features"].size() * 3);
    }
}

TEST(GisImportTest, ArcsKeptAsArcsComeBackAsTheSameArcs) {
    std::string folder = testFolder() + "/curves";
    fs::remove_all(folder);
    fs::create_directories(folder);
    std::string gpkg = folder + "/plan.gpkg", back = folder + "/back.dxf";
    Outcome run = kplan("export " + shellPath(samplePlan()) + " " + shellPath(gpkg) + " --curves");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json dump = readWithGdal(gpkg);
    const Json& layer = layerNamed(dump, "planned_parcels");
    ASSERT_GT(layer["features"].size(), 0u);
    for (std::size_t i = 0; i < layer["features"].size(); ++i)
        EXPECT_EQ(layer["features"][i]["geometry"]["type"].string(), "CURVEPOLYGON");
    run = kplan("import " + shellPath(gpkg) + " --layer planned_parcels --into " +
                shellPath(emptyDrawing()) + " -o " + shellPath(back));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json before = listJson(samplePlan()), after = listJson(back);
    std::size_t compared = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i]["kind"].string() != "planned") continue;
        SCOPED_TRACE(before[i]["number"].string());
        const Json* again = rowNumbered(after, before[i]["number"].string());
        ASSERT_NE(again, nullptr);
        // Bulges from the arcs' three points: the same outline, not chords of it.
        EXPECT_NEAR((*again)["area_ha"].number(), before[i]["area_ha"].number(), 1e-9);
        ++compared;
    }
    EXPECT_EQ(compared, after.size());
}

}  // namespace
