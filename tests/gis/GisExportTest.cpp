// "kplan export" on the bundled sample, read back with GDAL's own Python bindings and
// compared with what "kplan list" says the drawing holds.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "tests/gis/GisRun.h"

namespace {

namespace fs = std::filesystem;

std::string freshFolder(const std::string& name) {
    std::string folder = testFolder() + "/" + name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

// Rows of kplan list by handle.
std::map<std::string, const Json*> byHandle(const Json& rows) {
    std::map<std::string, const Json*> out;
    for (std::size_t i = 0; i < rows.size(); ++i)
        out[rows[i]["handle"].string()] = &rows[i];
    return out;
}

double asNumber(const std::string& text) {
    return text.empty() ? NAN : std::strtod(text.c_str(), nullptr);
}

const Json& fieldOf(const Json& layer, const std::string& name) {
    static const Json none;
    const Json& fields = layer["fields"];
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i]["name"].string() == name) return fields[i];
    }
    return none;
}

class GisExportTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        folder_ = freshFolder("export");
        gpkg_ = folder_ + "/plan.gpkg";
        run_ = kplan("export " + shellPath(samplePlan()) + " " + shellPath(gpkg_) +
                     " --crs EPSG:4547");
        dump_ = readWithGdal(gpkg_);
        parcels_ = listJson(samplePlan());
    }
    static std::string folder_, gpkg_;
    static Outcome run_;
    static Json dump_, parcels_;
};

std::string GisExportTest::folder_, GisExportTest::gpkg_;
Outcome GisExportTest::run_;
Json GisExportTest::dump_, GisExportTest::parcels_;

TEST_F(GisExportTest, EveryKindIsALayerWithTheFeaturesKplanListCounts) {
    ASSERT_EQ(run_.exitCode, 0) << run_.err;
    ASSERT_TRUE(dump_.ok());
    ASSERT_TRUE(parcels_.ok());
    std::map<std::string, std::size_t> parcelsByKind;
    for (std::size_t i = 0; i < parcels_.size(); ++i)
        ++parcelsByKind[parcels_[i]["kind"].string()];
    struct Expect {
        const char* layer;
        std::size_t count;
    } expected[] = {
        {"planned_parcels", parcelsByKind["planned"]},
        {"current_parcels", parcelsByKind["current status"]},
        {"units", listJson(samplePlan(), "unit").size()},
        {"blocks", listJson(samplePlan(), "block").size()},
        {"buildings", listJson(samplePlan(), "building").size()},
        {"red_lines", listJson(samplePlan(), "redline").size()},
        {"scope_lines", 1},  // the planning boundary kplan stats uses
    };
    for (const Expect& e : expected) {
        SCOPED_TRACE(e.layer);
        const Json& layer = layerNamed(dump_, e.layer);
        ASSERT_GT(e.count, 0u);
        EXPECT_EQ(layer["count"].number(), static_cast<double>(e.count));
        EXPECT_EQ(layer["epsg"].string(), "4547");
        // The index kplan writes itself: GDAL filters through it, SQLite finds it sound.
        EXPECT_EQ(layer["fast_spatial_filter"].number(), 1);
        EXPECT_EQ(layer["rtreecheck"].string(), "ok");
    }
    // The sample has no underground spaces: those layers are left out, and said so.
    EXPECT_TRUE(layerNamed(dump_, "underground_planned").isNull());
    EXPECT_NE(run_.out.find("not written (no records): underground_planned underground_current"),
              std::string::npos)
        << run_.out;
}

TEST_F(GisExportTest, FieldsAreTypedByKeyAndCarryTheAliasesOfTheAttributeFiles) {
    const Json& layer = layerNamed(dump_, "planned_parcels");
    struct Expect {
        const char* name;
        const char* type;
        const char* title;
    } expected[] = {
        {"handle", "String", "句柄"},         {"generation", "Integer64", "记录版本"},
        {"FS_DKBH", "String", "地块编号"},    {"FS_DKXZ", "String", "地块类别"},
        {"FD_RJL", "Real", "容积率"},         {"FD_YDMJ", "Real", "用地面积"},
        {"FN_ZRKS", "Integer64", "总人口数"}, {"FN_JDCW", "Integer64", "机动车位"},
        {"area_ha", "Real", "面积(公顷)"},
    };
    for (const Expect& e : expected) {
        SCOPED_TRACE(e.name);
        const Json& field = fieldOf(layer, e.name);
        EXPECT_EQ(field["type"].string(), e.type);
        EXPECT_EQ(field["title"].string(), e.title);
    }
    // Red lines keep the labels of their lists as field names.
    EXPECT_EQ(fieldOf(layerNamed(dump_, "red_lines"), "规划类型")["type"].string(), "String");
}

TEST_F(GisExportTest, ValuesHolesAndAreasAgreeWithKplanList) {
    const Json& layer = layerNamed(dump_, "planned_parcels");
    auto listed = byHandle(parcels_);
    const Json& features = layer["features"];
    ASSERT_GT(features.size(), 0u);
    int withHoles = 0, olderGenerations = 0;
    for (std::size_t i = 0; i < features.size(); ++i) {
        const Json& f = features[i]["fields"];
        const Json& g = features[i]["geometry"];
        SCOPED_TRACE(f["handle"].string());
        ASSERT_TRUE(listed.count(f["handle"].string()));
        const Json& row = *listed[f["handle"].string()];
        EXPECT_EQ(f["FS_DKBH"].string(), row["number"].string());
        EXPECT_EQ(f["FS_DKXZ"].string(), row["class"].string());
        EXPECT_EQ(f["class_name"].string(), row["class_name"].string());
        EXPECT_EQ(f["generation"].number(), row["generation"].number());
        olderGenerations += row["generation"].number() < 3;
        struct Pair {
            const char* field;
            const char* column;
        } numbers[] = {{"FD_RJL", "far"},
                       {"FD_LDL", "green_ratio"},
                       {"FD_JZMD", "density"},
                       {"FD_JZXG", "height_limit"},
                       {"FN_ZRKS", "population"}};
        for (const Pair& p : numbers) {
            // kplan list gives an indicator as a number when it reads as one, else as text.
            const Json& cell = row[p.column];
            double listedValue =
                cell.type() == Json::Type::Number ? cell.number() : asNumber(cell.string());
            if (std::isnan(listedValue)) {
                EXPECT_TRUE(f[p.field].isNull()) << p.field;
            } else {
                EXPECT_DOUBLE_EQ(f[p.field].number(), listedValue) << p.field;
            }
        }
        // Islands are holes: the polygon's area is the parcel's area without them. Arcs
        // are chords within 1 cm, which take less than 1 cm along the outline.
        EXPECT_EQ(g["valid"].number(), 1);
        double area = g["area"].number() / 10000, listedArea = row["area_ha"].number();
        EXPECT_LE(std::fabs(area - listedArea), g["perimeter"].number() * 0.01 / 10000);
        EXPECT_DOUBLE_EQ(f["area_ha"].number(), listedArea);
        if (g["rings"].number() > 1) {
            ++withHoles;
            EXPECT_LT(g["area"].number(), g["outer_area"].number());
        }
    }
    EXPECT_GE(withHoles, 1);
    EXPECT_GE(olderGenerations, 1);
}

TEST_F(GisExportTest, ParcelsCarryTheFillColourOfTheirClass) {
    // Read off the shipped "2011国标城乡用地类别.txt"; "B1/R2" takes B1's colour.
    const std::map<std::string, std::string> fills = {
        {"R21", "#FFFF00"}, {"B1", "#FF0000"},  {"B1/R2", "#FF0000"},
        {"G1", "#00FF00"},  {"E1", "#7FDFFF"},  {"M1", "#BF8C59"},
        {"E2", "#CCFF99"},  {"H14", "#FFDF9F"}, {"E13", "#99DFFF"},
    };
    std::map<std::string, int> seen;
    for (const char* name : {"planned_parcels", "current_parcels"}) {
        const Json& features = layerNamed(dump_, name)["features"];
        for (std::size_t i = 0; i < features.size(); ++i) {
            const Json& f = features[i]["fields"];
            auto fill = fills.find(f["FS_DKXZ"].string());
            if (fill == fills.end()) continue;
            SCOPED_TRACE(f["handle"].string() + " " + fill->first);
            EXPECT_EQ(f["class_colour"].string(), fill->second);
            ++seen[fill->first];
        }
    }
    EXPECT_EQ(seen.size(), fills.size()) << "every class of the table above is in the sample";
    EXPECT_EQ(fieldOf(layerNamed(dump_, "planned_parcels"), "class_colour")["title"].string(),
              "类别颜色");
}

TEST(GisExportFormats, OneLayerFormatsGetAFilePerLayer) {
    for (const char* ext : {".geojson", ".shp", ".fgb"}) {
        SCOPED_TRACE(ext);
        std::string folder = freshFolder(std::string("formats") + ext);
        Outcome run = kplan("export " + shellPath(samplePlan()) + " " +
                            shellPath(folder + "/plan" + ext) + " --crs EPSG:4547");
        ASSERT_EQ(run.exitCode, 0) << run.err;
        Json planned = readWithGdal(folder + "/plan_planned_parcels" + ext);
        ASSERT_EQ(planned["layers"].size(), 1u);
        const Json& layer = planned["layers"][0];
        EXPECT_EQ(layer["count"].number(), 59);  // as the GeoPackage and kplan list
        EXPECT_EQ(layer["epsg"].string(), "4547");
        // The shapefile shortens names to ten characters, but keeps the values.
        bool found = false;
        for (std::size_t i = 0; i < layer["features"].size(); ++i) {
            const Json& f = layer["features"][i]["fields"];
            if (f["FS_DKBH"].string() == "A-02") {
                found = true;
                EXPECT_DOUBLE_EQ(f["FD_RJL"].number(), 2.5);
                EXPECT_EQ(f["FS_DKXZ"].string(), "R21");
            }
        }
        EXPECT_TRUE(found);
        EXPECT_FALSE(fs::exists(folder + "/plan" + ext));
    }
}

TEST(GisExportFormats, BadRequestsWriteNothing) {
    std::string folder = freshFolder("bad");
    std::string existing = folder + "/kept.gpkg";
    { std::ofstream(existing) << "not a geopackage"; }
    struct Case {
        std::string args, message;
    } cases[] = {
        {shellPath(samplePlan()) + " " + shellPath(folder + "/a.gpkg") + " --crs EPSG:999999",
         "--crs EPSG:999999: not a coordinate system GDAL knows"},
        {shellPath(samplePlan()) + " " + shellPath(folder + "/a.gpkg") + " --crs CGCS2000-ish",
         "not a coordinate system GDAL knows"},
        {shellPath(samplePlan()) + " " + shellPath(folder + "/a.kml"), "unknown output format"},
        {shellPath(samplePlan()) + " " + shellPath(folder + "/a.geojson") + " --curves",
         "--curves needs a GeoPackage"},
        {shellPath(samplePlan()) + " " + shellPath(folder + "/a.geojson") + " --curves",
         "--curves needs a GeoPackage"},
        {shellPath(samplePlan()) + " " + shellPath(existing), "exists (--force replaces it)"},
        {shellPath(folder + "/missing.dxf") + " " + shellPath(folder + "/a.gpkg"), "missing.dxf"},
        {shellPath(emptyDrawing()) + " " + shellPath(folder + "/a.gpkg"), "no records to export"},
        {shellPath(samplePlan()) + " " + shellPath(folder + "/no/such/folder/a.gpkg"),
         "no/such/folder"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args);
        Outcome run = kplan("export " + c.args);
        EXPECT_NE(run.exitCode, 0);
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
        EXPECT_EQ(filesIn(folder), 1u);  // only the file that was there, unchanged
        EXPECT_EQ(slurp(existing), "not a geopackage");
    }
    // With -o the file is replaced by a complete GeoPackage.
    Outcome run =
        kplan("export " + shellPath(samplePlan()) + " " + shellPath(existing) + " --force");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(layerNamed(readWithGdal(existing), "planned_parcels")["count"].number(), 59);
    EXPECT_EQ(filesIn(folder), 1u);
}

}  // namespace
