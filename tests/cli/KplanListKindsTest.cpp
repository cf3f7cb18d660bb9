// "kplan list --kind" and the boundaries of "kplan info" on a drawing made here with the
// record classes: a unit holding two blocks, parcels in them, a building, hatches and red
// lines of two kinds, one of them in paper space.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKTCInfo.h"
#include "record/DYBJInfo.h"
#include "record/GHHXInfo.h"
#include "record/JFBJInfo.h"
#include "record/JZBJInfo.h"
#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"

namespace {

struct Made {
    std::string path, unit, blockA, blockB, parcelA, parcelB, hatch, building, road, land;
};

std::string handleOf(AcDbObjectId id) {
    ACHAR text[17] = {};
    id.handle().getIntoAsciiBuffer(text);
    return CString(text).ToUtf8();
}

AcDbObjectId rectangle(double x0, double y0, double x1, double y1, bool paper = false) {
    auto* pline = new AcDbPolyline();
    pline->addVertexAt(0, AcGePoint2d(x0, y0));
    pline->addVertexAt(1, AcGePoint2d(x1, y0));
    pline->addVertexAt(2, AcGePoint2d(x1, y1));
    pline->addVertexAt(3, AcGePoint2d(x0, y1));
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    if (!paper) return kova::ent::SafeAddToDb(entity);
    AcDbBlockTableRecord* space = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(space, acdbHostApplicationServices()->workingDatabase()->paperSpaceId(),
                       AcDb::kForWrite) == Acad::eOk) {
        space->appendAcDbEntity(id, entity);
        entity->close();
        space->close();
    }
    return id;
}

CStringArray list(std::initializer_list<const wchar_t*> items) {
    CStringArray out;
    for (const wchar_t* item : items)
        out.Add(item);
    return out;
}

const Made& drawing() {
    static const Made made = [] {
        Made m;
        AcApDocument* document = acDocManager->appendDocument();
        AcDbObjectId unit = rectangle(0, 0, 200, 100);
        CDYBJInfo(unit).SetData(list({L"单元编号", L"居住人口"}), list({L"U-1", L"300"}));
        AcDbObjectId a = rectangle(0, 0, 100, 100), b = rectangle(100, 0, 200, 100);
        CJFBJInfo(a).SetData(list({L"街坊编号", L"主导属性"}), list({L"U-1-A", L"居住"}));
        CJFBJInfo(b).SetData(L"街坊编号", L"U-1-B");
        AcDbObjectId pa = rectangle(10, 10, 60, 60), pb = rectangle(110, 10, 190, 90);
        CDKBJXDInfo(pa).SetData(list({dk::FS_DKBH, dk::FS_DKXZ}), list({L"A-01", L"R21"}));
        CDKBJXDInfo(pb).SetData(list({dk::FS_DKBH, dk::FS_DKXZ}), list({L"B-01", L"B1"}));
        auto* fill = new AcDbHatch();
        fill->setPattern(AcDbHatch::kPreDefined, L"SOLID");
        AcDbObjectIdArray loop;
        loop.append(pa);
        fill->appendLoop(AcDbHatch::kExternal, loop);
        AcDbEntity* entity = fill;
        AcDbObjectId hatch = kova::ent::SafeAddToDb(entity);
        CDKTCInfo(hatch).SetData(list({L"地块编号", L"地块类别"}), list({L"A-01", L"R21"}));
        AcDbObjectId building = rectangle(20, 20, 40, 30);
        CJZBJInfo(building).SetData(list({L"建筑编号", L"建筑层数"}), list({L"1#", L"6"}));
        auto* line = new AcDbPolyline();
        line->addVertexAt(0, AcGePoint2d(0, 100));
        line->addVertexAt(1, AcGePoint2d(200, 100));
        entity = line;
        AcDbObjectId road = kova::ent::SafeAddToDb(entity);
        CGHHXInfo(road).SetData(L"规划类型", L"1");
        AcDbObjectId land = rectangle(0, 0, 50, 50, true);
        CGHHXInfo(land).SetData(L"规划类型", L"2");
        m = {testFolder() + "/kinds.dxf",
             handleOf(unit),
             handleOf(a),
             handleOf(b),
             handleOf(pa),
             handleOf(pb),
             handleOf(hatch),
             handleOf(building),
             handleOf(road),
             handleOf(land)};
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), m.path, error)) << error;
        acDocManager->closeDocument(document);
        return m;
    }();
    return made;
}

Json listJson(const std::string& kind) {
    Outcome run = kplan("list '" + drawing().path + "' --format json --kind " + kind);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    Json rows = Json::parse(run.out);
    EXPECT_TRUE(rows.ok()) << run.out;
    return rows;
}

}  // namespace

TEST(KplanListKindsTest, EachKindListsItsRecordsWithTheirFields) {
    const Made& d = drawing();
    Json units = listJson("unit");
    ASSERT_EQ(units.size(), 1u);
    EXPECT_EQ(units[0]["handle"].string(), d.unit);
    EXPECT_EQ(units[0]["FS_DYBH"].string(), "U-1");
    EXPECT_EQ(units[0]["FDC_ZJRK"].number(), 300);
    EXPECT_DOUBLE_EQ(units[0]["area_ha"].number(), 2.0);
    EXPECT_EQ(units[0]["parcels"].number(), 2);
    EXPECT_EQ(units[0]["parcel_numbers"].string(), "A-01 B-01");

    Json blocks = listJson("block");
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(blocks[0]["FS_JFBH"].string(), "U-1-A");
    EXPECT_EQ(blocks[0]["FS_ZDGN"].string(), "居住");
    EXPECT_EQ(blocks[0]["parcel_numbers"].string(), "A-01");
    EXPECT_EQ(blocks[1]["parcel_numbers"].string(), "B-01");
    EXPECT_DOUBLE_EQ(blocks[1]["area_ha"].number(), 1.0);

    Json buildings = listJson("building");
    ASSERT_EQ(buildings.size(), 1u);
    EXPECT_EQ(buildings[0]["FS_JZBH"].string(), "1#");
    EXPECT_EQ(buildings[0]["FN_JZCS"].number(), 6);
    EXPECT_DOUBLE_EQ(buildings[0]["area_ha"].number(), 0.02);

    Json hatches = listJson("hatch");
    ASSERT_EQ(hatches.size(), 1u);
    EXPECT_EQ(hatches[0]["FS_DKBH"].string(), "A-01");
    EXPECT_EQ(hatches[0]["FS_DKXZ"].string(), "R21");
    EXPECT_EQ(hatches[0]["pattern"].string(), "SOLID");
    EXPECT_EQ(hatches[0]["parcel"].string(), d.parcelA);

    Json lines = listJson("redline");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]["handle"].string(), d.road);
    EXPECT_EQ(lines[0]["规划类型"].string(), "1");
    EXPECT_EQ(lines[0]["space"].string(), "model");
    EXPECT_EQ(lines[1]["规划类型"].string(), "2");
    EXPECT_EQ(lines[1]["space"].string(), "paper");

    // People read the aliases of the attribute files; columns nobody fills are left out.
    Outcome table = kplan("list '" + d.path + "' --kind unit");
    ASSERT_EQ(table.exitCode, 0) << table.err;
    EXPECT_EQ(table.out.substr(0, table.out.find('\n')),
              "handle  area_ha  parcels  单元编号  居住人口");
    EXPECT_NE(table.out.find("\n1 unit\n"), std::string::npos) << table.out;
}

TEST(KplanListKindsTest, InfoNamesTheBoundariesAndTheyBoundTheStatistics) {
    const Made& d = drawing();
    Outcome info = kplan("info '" + d.path + "'");
    ASSERT_EQ(info.exitCode, 0) << info.err;
    for (const std::string& line :
         {std::string("boundaries (--boundary HANDLE):\n"), "  unit " + d.unit + " U-1: 2.00 ha\n",
          "  block " + d.blockA + " U-1-A: 1.00 ha\n",
          "  block " + d.blockB + " U-1-B: 1.00 ha\n"}) {
        EXPECT_NE(info.out.find(line), std::string::npos) << "missing: " << line << info.out;
    }
    Outcome stats = kplan("stats '" + d.path + "' --format json --boundary " + d.blockA);
    ASSERT_EQ(stats.exitCode, 0) << stats.err;
    Json json = Json::parse(stats.out);
    EXPECT_EQ(json["parcels"].number(), 1);
    EXPECT_NEAR(json["totals"]["H"].number(), 0.25, 1e-9);

    Outcome narrowed = kplan("list '" + d.path + "' --kind unit --number U-1");
    EXPECT_EQ(narrowed.exitCode, 2);
    EXPECT_EQ(narrowed.err, "kplan: --class and --number narrow parcels only, not --kind unit\n");
    EXPECT_EQ(narrowed.out, "");
    Outcome unknown = kplan("list '" + d.path + "' --kind road");
    EXPECT_NE(unknown.exitCode, 0);
    EXPECT_NE(unknown.err.find("--kind"), std::string::npos);
}
