// The packed GeoPackage R-tree: SQLite's own check passes at every depth, the boxes are
// the ones SQLite's inserts store, window queries find what a scan finds, and GDAL reads
// the index and keeps it right through later edits.
#include "gis/GpkgSpatialIndex.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "gis/GisSession.h"
#include "tests/gis/GisRun.h"

namespace {

namespace fs = std::filesystem;

struct Db {
    explicit Db(const std::string& path) { sqlite3_open(path.c_str(), &db); }
    ~Db() { sqlite3_close(db); }
    Db(const Db&) = delete;
    Db& operator=(const Db&) = delete;

    bool run(const std::string& sql) const {
        return sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    // The rows of a query, each column as text.
    std::vector<std::vector<std::string>> rows(const std::string& sql) const {
        std::vector<std::vector<std::string>> out;
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
            ADD_FAILURE() << sql << ": " << sqlite3_errmsg(db);
            return out;
        }
        while (sqlite3_step(statement) == SQLITE_ROW) {
            std::vector<std::string> row;
            for (int c = 0; c < sqlite3_column_count(statement); ++c) {
                const unsigned char* text = sqlite3_column_text(statement, c);
                row.emplace_back(text ? reinterpret_cast<const char*>(text) : "");
            }
            out.push_back(std::move(row));
        }
        sqlite3_finalize(statement);
        return out;
    }
    std::string one(const std::string& sql) const {
        auto all = rows(sql);
        return all.empty() || all[0].empty() ? std::string() : all[0][0];
    }
    sqlite3* db = nullptr;
};

std::string freshFile(const std::string& name) {
    std::string path = testFolder() + "/" + name;
    fs::remove(path);
    return path;
}

// Boxes scattered over a few kilometres at Gauss-Kruger magnitudes, whose coordinates a
// 32-bit float cannot hold exactly.
std::vector<gis::IndexEntry> scattered(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(0, 3000), size(0.5, 60);
    std::vector<gis::IndexEntry> out;
    for (int i = 0; i < count; ++i) {
        double x = 500000.123 + place(random), y = 3000000.456 + place(random);
        out.push_back({i + 1, x, x + size(random), y, y + size(random)});
    }
    return out;
}

struct Box {
    double minX, maxX, minY, maxY;
    bool meets(const Box& o) const {
        return minX <= o.maxX && o.minX <= maxX && minY <= o.maxY && o.minY <= maxY;
    }
};

std::vector<Box> windows(unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(-100, 3100), size(1, 800);
    std::vector<Box> out;
    for (int i = 0; i < 25; ++i) {
        double x = 500000 + place(random), y = 3000000 + place(random);
        out.push_back({x, x + size(random), y, y + size(random)});
    }
    return out;
}

TEST(GpkgSpatialIndexTest, TreesOfEveryDepthPassSqlitesCheckAndHoldSqlitesOwnBoxes) {
    // Nodes hold (page size - 64 - 4) / 24 cells, at most 51: 51 at 4096 bytes, 18 at 512.
    // Depths worked by hand: 52 boxes are 2 leaves under the root; 3000 are 59 leaves under
    // 2 nodes; 6000 at 18 a node are 334 leaves, 19, 2, then the root.
    struct Case {
        int pageSize, count, depth;
    } cases[] = {
        {4096, 0, 0}, {4096, 1, 0}, {4096, 51, 0}, {4096, 52, 1}, {4096, 3000, 2},
        {512, 18, 0}, {512, 19, 1}, {512, 324, 1}, {512, 325, 2}, {512, 6000, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.pageSize) + " bytes, " + std::to_string(c.count) + " boxes");
        std::string path = freshFile("packed.sqlite");
        {
            Db db(path);
            ASSERT_TRUE(db.run("PRAGMA page_size=" + std::to_string(c.pageSize)));
            ASSERT_TRUE(db.run("CREATE TABLE \"t\" (fid INTEGER PRIMARY KEY, geom BLOB)"));
        }
        std::vector<gis::IndexEntry> entries = scattered(c.count, 7u + c.count);
        std::string error;
        ASSERT_TRUE(gis::writeSpatialIndexes(path, {{"t", "geom", "fid", entries}}, error))
            << error;
        Db db(path);
        EXPECT_EQ(db.one("SELECT rtreecheck('rtree_t_geom')"), "ok");
        EXPECT_EQ(std::stoi(db.one("SELECT count(*) FROM rtree_t_geom")), c.count);
        EXPECT_EQ(std::stoi(db.one("SELECT hex(substr(data, 1, 2)) FROM rtree_t_geom_node "
                                   "WHERE nodeno = 1"),
                            nullptr, 16),
                  c.depth);
        // No node but the root less than half full.
        const int capacity = c.pageSize == 4096 ? 51 : 18;
        for (const auto& row : db.rows("SELECT nodeno, hex(substr(data, 3, 2)) FROM "
                                       "rtree_t_geom_node WHERE nodeno != 1")) {
            int cells = std::stoi(row[1], nullptr, 16);
            EXPECT_GE(cells, capacity / 2) << "node " << row[0];
            EXPECT_LE(cells, capacity) << "node " << row[0];
        }
        // SQLite inserting the same boxes stores the same floats.
        ASSERT_TRUE(db.run("CREATE VIRTUAL TABLE own USING rtree(id, minx, maxx, miny, maxy)"));
        ASSERT_TRUE(db.run("BEGIN"));
        for (const gis::IndexEntry& e : entries) {
            char insert[256];
            std::snprintf(insert, sizeof insert,
                          "INSERT INTO own VALUES (%lld, %.17g, %.17g, "
                          "%.17g, %.17g)",
                          e.fid, e.minX, e.maxX, e.minY, e.maxY);
            ASSERT_TRUE(db.run(insert));
        }
        ASSERT_TRUE(db.run("COMMIT"));
        EXPECT_EQ(std::stoi(db.one("SELECT count(*) FROM rtree_t_geom a JOIN own b USING (id) "
                                   "WHERE a.minx = b.minx AND a.maxx = b.maxx AND a.miny = "
                                   "b.miny AND a.maxy = b.maxy")),
                  c.count);
        // The tree's answers to windows are what a scan of its boxes finds.
        std::map<long long, Box> stored;
        for (const auto& row : db.rows("SELECT id, minx, maxx, miny, maxy FROM rtree_t_geom"))
            stored[std::stoll(row[0])] = {std::stod(row[1]), std::stod(row[2]), std::stod(row[3]),
                                          std::stod(row[4])};
        for (const Box& w : windows(11)) {
            std::set<long long> scan, found;
            for (const auto& [id, box] : stored) {
                if (box.meets(w)) scan.insert(id);
            }
            char query[256];
            std::snprintf(query, sizeof query,
                          "SELECT id FROM rtree_t_geom WHERE minx <= %.17g "
                          "AND maxx >= %.17g AND miny <= %.17g AND maxy >= %.17g",
                          w.maxX, w.minX, w.maxY, w.minY);
            for (const auto& row : db.rows(query))
                found.insert(std::stoll(row[0]));
            EXPECT_EQ(found, scan);
        }
    }
}

// Rectangles as GDAL writes them in a GeoPackage without index, the index added after.
class GdalIndexTest : public ::testing::Test {
  protected:
    void SetUp() override {
        path_ = freshFile("rectangles.gpkg");
        std::mt19937 random(5);
        std::uniform_real_distribution<double> place(0, 3000), size(0.5, 60);
        auto* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
        ASSERT_NE(driver, nullptr);
        std::unique_ptr<GDALDataset> ds(
            driver->Create(path_.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
        ASSERT_TRUE(ds);
        char** options = CSLSetNameValue(nullptr, "SPATIAL_INDEX", "NO");
        OGRLayer* layer = ds->CreateLayer("parcels", nullptr, wkbPolygon, options);
        CSLDestroy(options);
        ASSERT_NE(layer, nullptr);
        gis::LayerIndex index{"parcels", layer->GetGeometryColumn(), layer->GetFIDColumn(), {}};
        for (int i = 0; i < 3000; ++i) {
            double x = 500000.123 + place(random), y = 3000000.456 + place(random);
            Box box{x, x + size(random), y, y + size(random)};
            OGRFeature feature(layer->GetLayerDefn());
            // A feature without geometry and one with an empty polygon have no box.
            if (i == 100) feature.SetGeometryDirectly(new OGRPolygon());
            if (i != 99 && i != 100) feature.SetGeometryDirectly(rectangle(box));
            ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
            if (i == 99 || i == 100) continue;
            boxes_[feature.GetFID()] = box;
            index.entries.push_back({feature.GetFID(), box.minX, box.maxX, box.minY, box.maxY});
        }
        ds.reset();
        std::string error;
        ASSERT_TRUE(gis::writeSpatialIndexes(path_, {index}, error)) << error;
    }

    static OGRPolygon* rectangle(const Box& b) {
        auto* ring = new OGRLinearRing();
        ring->addPoint(b.minX, b.minY);
        ring->addPoint(b.maxX, b.minY);
        ring->addPoint(b.maxX, b.maxY);
        ring->addPoint(b.minX, b.maxY);
        ring->closeRings();
        auto* polygon = new OGRPolygon();
        polygon->addRingDirectly(ring);
        return polygon;
    }

    // Every window read through GDAL's spatial filter gives what comparing the known
    // rectangles gives.
    void expectFiltersMatch(GDALDataset& ds) {
        OGRLayer* layer = ds.GetLayerByName("parcels");
        ASSERT_NE(layer, nullptr);
        EXPECT_TRUE(layer->TestCapability(OLCFastSpatialFilter));
        for (const Box& w : windows(3)) {
            std::set<GIntBig> expected, read;
            for (const auto& [fid, box] : boxes_) {
                if (box.meets(w)) expected.insert(fid);
            }
            layer->SetSpatialFilterRect(w.minX, w.minY, w.maxX, w.maxY);
            layer->ResetReading();
            while (OGRFeature* feature = layer->GetNextFeature()) {
                read.insert(feature->GetFID());
                OGRFeature::DestroyFeature(feature);
            }
            EXPECT_EQ(read, expected);
        }
        layer->SetSpatialFilter(nullptr);
    }

    std::string path_;
    std::map<GIntBig, Box> boxes_;
    gis::Session session_;
};

TEST_F(GdalIndexTest, GdalFiltersThroughTheIndexAndItsTriggersKeepItThroughEdits) {
    {
        std::unique_ptr<GDALDataset> ds(GDALDataset::Open(path_.c_str(), GDAL_OF_VECTOR));
        ASSERT_TRUE(ds);
        expectFiltersMatch(*ds);
    }
    {
        std::unique_ptr<GDALDataset> ds(
            GDALDataset::Open(path_.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE));
        ASSERT_TRUE(ds);
        OGRLayer* layer = ds->GetLayerByName("parcels");
        ASSERT_NE(layer, nullptr);
        // Added, moved, emptied and deleted features, as an editor changes them.
        Box added{501000, 501020, 3001000, 3001030}, moved{502500, 502510, 3000200, 3000205};
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetGeometryDirectly(rectangle(added));
        ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
        boxes_[feature.GetFID()] = added;
        std::unique_ptr<OGRFeature> edited(layer->GetFeature(10));
        ASSERT_TRUE(edited);
        edited->SetGeometryDirectly(rectangle(moved));
        ASSERT_EQ(layer->SetFeature(edited.get()), OGRERR_NONE);
        boxes_[10] = moved;
        edited.reset(layer->GetFeature(20));
        ASSERT_TRUE(edited);
        edited->SetGeometryDirectly(nullptr);
        ASSERT_EQ(layer->SetFeature(edited.get()), OGRERR_NONE);
        boxes_.erase(20);
        ASSERT_EQ(layer->DeleteFeature(30), OGRERR_NONE);
        boxes_.erase(30);
        expectFiltersMatch(*ds);
    }
    Db db(path_);
    EXPECT_EQ(db.one("SELECT rtreecheck('rtree_parcels_geom')"), "ok");
    EXPECT_EQ(std::stoul(db.one("SELECT count(*) FROM rtree_parcels_geom")), boxes_.size());
    EXPECT_EQ(db.one("SELECT scope FROM gpkg_extensions WHERE table_name = 'parcels' AND "
                     "column_name = 'geom' AND extension_name = 'gpkg_rtree_index'"),
              "write-only");
}

TEST(GpkgSpatialIndexTest, ExportedIndexesHoldTheBoxesOfGdalsOwnIndex) {
    // GDAL rebuilds each index of a copy from the geometries (arcs kept, with --curves).
    gis::Session session;
    for (const char* options : {"", " --curves"}) {
        SCOPED_TRACE(options);
        std::string ours = freshFile("ours.gpkg"), gdals = freshFile("gdals.gpkg");
        Outcome run = kplan("export " + shellPath(samplePlan()) + " " + shellPath(ours) + options);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        fs::copy_file(ours, gdals);
        const char* layers[] = {"planned_parcels", "current_parcels", "blocks", "red_lines"};
        {
            std::unique_ptr<GDALDataset> ds(
                GDALDataset::Open(gdals.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE));
            ASSERT_TRUE(ds);
            for (const char* layer : layers) {
                for (const char* call : {"DisableSpatialIndex", "CreateSpatialIndex"}) {
                    std::string sql = std::string("SELECT ") + call + "('" + layer + "', 'geom')";
                    ds->ReleaseResultSet(ds->ExecuteSQL(sql.c_str(), nullptr, nullptr));
                }
            }
        }
        Db db(ours);
        ASSERT_TRUE(db.run("ATTACH '" + gdals + "' AS gdal"));
        for (const std::string layer : layers) {
            SCOPED_TRACE(layer);
            std::string rtree = "rtree_" + layer + "_geom";
            std::string count = db.one("SELECT count(*) FROM gdal." + rtree);
            ASSERT_NE(count, "0");
            EXPECT_EQ(db.one("SELECT count(*) FROM " + rtree), count);
            EXPECT_EQ(db.one("SELECT count(*) FROM " + rtree + " a JOIN gdal." + rtree +
                             " b USING (id) WHERE a.minx = b.minx AND a.maxx = b.maxx AND "
                             "a.miny = b.miny AND a.maxy = b.maxy"),
                      count);
        }
    }
}

TEST(GpkgSpatialIndexTest, AFileThatCannotTakeTheIndexIsReportedAndLeftAsItWas) {
    std::string error;
    EXPECT_FALSE(
        gis::writeSpatialIndexes(freshFile("none.gpkg"), {{"t", "geom", "fid", {}}}, error));
    EXPECT_FALSE(fs::exists(testFolder() + "/none.gpkg"));
    EXPECT_NE(error.find("cannot write the spatial index"), std::string::npos) << error;
    // The second layer's index cannot be made (its table has one already): the first is
    // not left behind.
    std::string path = freshFile("twice.sqlite");
    {
        Db db(path);
        ASSERT_TRUE(db.run("CREATE TABLE a (fid INTEGER PRIMARY KEY, geom BLOB)"));
        ASSERT_TRUE(db.run("CREATE TABLE b (fid INTEGER PRIMARY KEY, geom BLOB)"));
        ASSERT_TRUE(db.run("CREATE VIRTUAL TABLE rtree_b_geom USING rtree(id, a, b, c, d)"));
    }
    error.clear();
    EXPECT_FALSE(gis::writeSpatialIndexes(
        path, {{"a", "geom", "fid", scattered(10, 1)}, {"b", "geom", "fid", {}}}, error));
    EXPECT_NE(error.find("rtree_b_geom"), std::string::npos) << error;
    Db db(path);
    EXPECT_EQ(db.one("SELECT count(*) FROM sqlite_master WHERE name LIKE 'rtree_a%'"), "0");
}

}  // namespace
