// "kplan stats" and "kplan list" run as processes on a drawing made here, whose figures are
// known by construction: rectangles of known size placed inside, across and outside two
// planning scope lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbpl.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"

namespace {

constexpr double X0 = 500000, Y0 = 3500000;

struct Drawn {
    std::string path, scope, innerScope, line;
};

std::string handleOf(AcDbObjectId id) {
    ACHAR text[17] = {};
    id.handle().getIntoAsciiBuffer(text);
    return CString(text).ToUtf8();
}

AcDbObjectId rectangle(double x0, double y0, double x1, double y1) {
    auto* pline = new AcDbPolyline();
    pline->addVertexAt(0, AcGePoint2d(X0 + x0, Y0 + y0));
    pline->addVertexAt(1, AcGePoint2d(X0 + x1, Y0 + y0));
    pline->addVertexAt(2, AcGePoint2d(X0 + x1, Y0 + y1));
    pline->addVertexAt(3, AcGePoint2d(X0 + x0, Y0 + y1));
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity);
}

void planned(AcDbObjectId id, const wchar_t* number, const wchar_t* cls, const wchar_t* people) {
    ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKBH, number, dk::FAPP_GHDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, cls, dk::FAPP_GHDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FN_ZRKS, people, dk::FAPP_GHDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FD_RJL, L"2.5", dk::FAPP_GHDK);
}

// The scope line 200 x 100 m (2 ha) and a smaller one 100 x 100 m over its left half.
// A: R21 50 x 50 inside both; B: B1 100 x 50, half inside the large one; C: G1 outside;
// D: E1 70 x 80, inside the large one, 30 m of its width inside the small one; a
// current-status R2 of 40 x 20 inside both; a plain line on a layer.
const Drawn& drawing() {
    static const Drawn made = [] {
        Drawn d;
        AcApDocument* document = acDocManager->appendDocument();
        AcDbObjectId scope = rectangle(0, 0, 200, 100);
        ARX_DATA::CFGisXData::SetTo(scope, dk::FAPP_GHFWX, L"", L"规划范围线");
        AcDbObjectId inner = rectangle(0, 0, 100, 100);
        ARX_DATA::CFGisXData::SetTo(inner, dk::FAPP_GHFWX, L"", L"规划范围线");
        planned(rectangle(10, 10, 60, 60), L"A-01", L"R21", L"100");
        planned(rectangle(150, 10, 250, 60), L"A-02", L"B1", L"40");
        planned(rectangle(300, 0, 350, 50), L"A-03", L"G1", L"1000");
        planned(rectangle(70, 10, 140, 90), L"A-04", L"E1", L"0");
        AcDbObjectId status = rectangle(10, 70, 50, 90);
        ARX_DATA::CFSimpleXData::SetTo(status, dk::FAPP_XZDK, dk::MARK_XZDK);
        ARX_DATA::CFGisXData::SetTo(status, dk::FS_DKXZ, L"R2");
        ARX_DATA::CFGisXData::SetTo(status, dk::FN_ZRKS, L"7");
        d.scope = handleOf(scope);
        d.innerScope = handleOf(inner);
        d.path = testFolder() + "/plan.dxf";
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), d.path, error)) << error;
        acDocManager->closeDocument(document);
        return d;
    }();
    return made;
}

Json statsJson(const std::string& options, Outcome& run) {
    run = kplan("stats '" + drawing().path + "' --format json " + options);
    Json json = Json::parse(run.out);
    EXPECT_TRUE(json.ok()) << run.out;
    return json;
}

TEST(KplanStatsTest, BalanceWithinTheScopeLineMatchesTheGeometry) {
    struct Expected {
        const char* what;
        std::string options;
        std::string boundary;  // "" for none
        double boundaryHa;
        int parcels;
        double h, e;
        std::vector<std::pair<std::string, double>> classes;
        int population;
    };
    const Expected cases[] = {
        // The larger scope line by default: A whole, half of B, D whole; C outside.
        {"auto",
         "",
         drawing().scope,
         2.0,
         3,
         0.25 + 0.25,
         0.56,
         {{"B1", 0.25}, {"E1", 0.56}, {"R21", 0.25}},
         140},
        {"named",
         "--boundary " + drawing().innerScope,
         drawing().innerScope,
         1.0,
         2,
         0.25,
         0.24,
         {{"E1", 0.24}, {"R21", 0.25}},
         100},
        {"lower-case handle",
         "--boundary " + std::string(1, char(std::tolower(drawing().innerScope[0]))) +
             drawing().innerScope.substr(1),
         drawing().innerScope,
         1.0,
         2,
         0.25,
         0.24,
         {{"E1", 0.24}, {"R21", 0.25}},
         100},
        {"none",
         "--boundary none",
         "",
         0,
         4,
         0.25 + 0.5 + 0.25,
         0.56,
         {{"B1", 0.5}, {"E1", 0.56}, {"G1", 0.25}, {"R21", 0.25}},
         1140},
        {"current status", "--status", drawing().scope, 2.0, 1, 0.08, 0, {{"R2", 0.08}}, 7},
    };
    for (const Expected& c : cases) {
        SCOPED_TRACE(c.what);
        Outcome run;
        Json json = statsJson(c.options, run);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(json.keys(), (std::vector<std::string>{"boundary", "class_table", "classes",
                                                         "drawing", "major_classes", "parcels",
                                                         "population", "standard", "totals"}));
        EXPECT_EQ(json["drawing"].string(), drawing().path);
        EXPECT_EQ(json["standard"].string(), "通用国标");
        EXPECT_EQ(json["class_table"].string(), "2011国标城乡用地类别.txt");
        if (c.boundary.empty()) {
            EXPECT_TRUE(json["boundary"].isNull());
        } else {
            EXPECT_EQ(json["boundary"]["handle"].string(), c.boundary);
            EXPECT_NEAR(json["boundary"]["area_ha"].number(), c.boundaryHa, 1e-9);
        }
        EXPECT_EQ(json["parcels"].number(), c.parcels);
        EXPECT_NEAR(json["totals"]["H"].number(), c.h, 1e-9);
        EXPECT_NEAR(json["totals"]["H1"].number(), c.h, 1e-9);
        EXPECT_NEAR(json["totals"]["H11"].number(), c.h, 1e-9);
        EXPECT_NEAR(json["totals"]["E"].number(), c.e, 1e-9);
        EXPECT_NEAR(json["totals"]["E1"].number(), c.e, 1e-9);
        for (const char* zero : {"H2", "H3", "H4", "H5", "H9", "E2", "E3"})
            EXPECT_EQ(json["totals"][zero].number(), 0) << zero;
        ASSERT_EQ(json["classes"].size(), c.classes.size());
        for (std::size_t i = 0; i < c.classes.size(); ++i) {
            EXPECT_EQ(json["classes"][i]["code"].string(), c.classes[i].first);
            EXPECT_NEAR(json["classes"][i]["area_ha"].number(), c.classes[i].second, 1e-9);
        }
        EXPECT_EQ(json["population"].number(), c.population);
    }
}

TEST(KplanStatsTest, TheTableNamesTheClassesAndSaysWhichScopeLine) {
    Outcome run = kplan("stats '" + drawing().path + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "kplan: 2 planning scope lines; using the largest, " + drawing().scope +
                           " (2.00 ha); --boundary HANDLE chooses another\n");
    for (const std::string& line : std::vector<std::string>{
             "boundary: " + drawing().scope + ", 2.00 ha\n",
             "planned parcels: 3 (1 crossing the boundary)\n",
             "H     建设用地                 0.50  100.00\n", "R21   住宅用地       0.25   23.58\n",
             "E1    水域                     0.56\n", "population: 140\n"}) {
        EXPECT_NE(run.out.find(line), std::string::npos) << "missing: " << line << run.out;
    }
    // Machines get the same figures unrounded, one row per value.
    Outcome csv = kplan("stats '" + drawing().path + "' --format csv");
    ASSERT_EQ(csv.exitCode, 0);
    EXPECT_EQ(csv.out.substr(0, csv.out.find('\n') + 1), "table,code,name,value\r\n");
    EXPECT_NE(csv.out.find("\r\ntotals,H,建设用地,0.5\r\n"), std::string::npos) << csv.out;
    EXPECT_NE(csv.out.find("\r\npopulation,,,140\r\n"), std::string::npos);
}

TEST(KplanStatsTest, AProjectParameterChangesTheAreasCounted) {
    // Without computed areas a parcel counts with its entered area: none is entered here,
    // so the computed one stands; without clipping, crossing parcels count whole.
    Outcome run;
    Json json = statsJson(
        "--param '有范围线统计出表时，与范围线相交地块自动裁剪计算面积[是(Y)/否(N)]=N'", run);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NEAR(json["totals"]["H"].number(), 0.75, 1e-9);
    Outcome bad = kplan("stats '" + drawing().path + "' --param 'X=maybe'");
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_EQ(bad.err, "kplan: --param X=maybe: expected NAME=Y or NAME=N\n");
}

TEST(KplanStatsTest, ListGivesOneRowPerParcel) {
    Outcome run = kplan("list '" + drawing().path + "' --format json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json rows = Json::parse(run.out);
    ASSERT_TRUE(rows.ok()) << run.out;
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[0]["number"].string(), "A-01");
    EXPECT_EQ(rows[0]["kind"].string(), "planned");
    EXPECT_EQ(rows[0]["generation"].number(), 3);
    EXPECT_EQ(rows[0]["class"].string(), "R21");
    EXPECT_EQ(rows[0]["class_name"].string(), "住宅用地");
    EXPECT_NEAR(rows[0]["area_ha"].number(), 0.25, 1e-9);
    EXPECT_EQ(rows[0]["far"].string(), "2.5");
    EXPECT_EQ(rows[0]["population"].string(), "100");
    EXPECT_EQ(rows[4]["kind"].string(), "current status");
    EXPECT_EQ(rows[4]["class"].string(), "R2");
    // The label point of a rectangle is its centre: A-01 spans 10..60, the current-status
    // parcel 10..50 by 70..90.
    EXPECT_DOUBLE_EQ(rows[0]["label_x"].number(), X0 + 35);
    EXPECT_DOUBLE_EQ(rows[0]["label_y"].number(), Y0 + 35);
    EXPECT_DOUBLE_EQ(rows[4]["label_x"].number(), X0 + 30);
    EXPECT_DOUBLE_EQ(rows[4]["label_y"].number(), Y0 + 80);

    // The label point comes last, so scripts reading the older columns by place still work;
    // the table rounds it to centimetres and aligns it right.
    Outcome csv = kplan("list '" + drawing().path + "' --format csv");
    ASSERT_EQ(csv.exitCode, 0) << csv.err;
    EXPECT_EQ(csv.out.substr(0, csv.out.find('\r')),
              "handle,generation,kind,number,class,class_name,area_ha,far,green_ratio,density,"
              "height_limit,population,label_x,label_y");
    Outcome table = kplan("list '" + drawing().path + "'");
    ASSERT_EQ(table.exitCode, 0) << table.err;
    std::string header = table.out.substr(0, table.out.find('\n'));
    EXPECT_EQ(header.substr(header.size() - 21), "  label_x     label_y") << table.out;
    EXPECT_NE(table.out.find("  100  500035.00  3500035.00\n"), std::string::npos) << table.out;

    struct Filter {
        std::string options;
        std::vector<std::string> numbersOrClasses;
    } filters[] = {
        {"--class R", {"R21", "R2"}},
        {"--class B1", {"B1"}},
        {"--number A-04", {"E1"}},
        {"--number A-04 --class R", {}},
    };
    for (const Filter& f : filters) {
        SCOPED_TRACE(f.options);
        Outcome filtered = kplan("list '" + drawing().path + "' --format json " + f.options);
        ASSERT_EQ(filtered.exitCode, 0) << filtered.err;
        Json list = Json::parse(filtered.out);
        ASSERT_EQ(list.size(), f.numbersOrClasses.size()) << filtered.out;
        for (std::size_t i = 0; i < list.size(); ++i)
            EXPECT_EQ(list[i]["class"].string(), f.numbersOrClasses[i]);
    }
}

TEST(KplanStatsTest, BadInputGetsOneMessage) {
    std::string notDxf = testFolder() + "/notes.dxf";
    std::ofstream(notDxf) << "这不是图纸\n";
    struct Case {
        const char* what;
        std::string args;
        int exitCode;
        std::string message;
    } cases[] = {
        {"missing drawing", "stats /nonexistent/plan.dxf", 1,
         "kplan: /nonexistent/plan.dxf: cannot open the file\n"},
        {"not a drawing", "stats '" + notDxf + "'", 1, "kplan: " + notDxf + ": line 1: "},
        {"unknown standard", "stats '" + drawing().path + "' --standard 火星标准", 1,
         "kplan: unknown standard \"火星标准\""},
        {"unknown class table", "list '" + drawing().path + "' --table 无此表.txt", 1,
         "kplan: unknown class table \"无此表.txt\""},
        {"unknown handle", "stats '" + drawing().path + "' --boundary FFFFF", 1,
         "kplan: " + drawing().path + ": no object with handle FFFFF"},
        {"not a handle", "stats '" + drawing().path + "' --boundary largest", 1,
         "kplan: " + drawing().path + ": no object with handle largest"},
        {"unknown format", "stats '" + drawing().path + "' --format xml", 2,
         "kplan: --format xml: expected table, csv or json\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Outcome run = kplan(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.err.substr(0, c.message.size()), c.message) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "");
    }
}

}  // namespace

namespace {

// The bundled sample: what the README shows a planner first.
TEST(KplanStatsTest, TheSamplePlanBalances) {
    Outcome run = kplan("stats --format json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json json = Json::parse(run.out);
    ASSERT_TRUE(json.ok()) << run.out;
    EXPECT_NE(json["drawing"].string().find("data/samples/sample-plan.dxf"), std::string::npos);
    ASSERT_FALSE(json["boundary"].isNull());
    EXPECT_GT(json["parcels"].number(), 40);
    EXPECT_GT(json["population"].number(), 0);
    // Two ways to the same land: the totals clip each crossing parcel on its own, the
    // tabulation by class clips them all in one pass.
    double construction = 0, other = 0;
    for (std::size_t i = 0; i < json["major_classes"].size(); ++i) {
        const Json& major = json["major_classes"][i];
        const std::string& code = major["code"].string();
        (code == "E" ? other : construction) += major["area_ha"].number();
    }
    EXPECT_GT(construction, 10);
    EXPECT_NEAR(json["totals"]["H"].number(), construction, 1e-6);
    EXPECT_NEAR(json["totals"]["E"].number(), other, 1e-6);
    // A compound class is named after both of its parts.
    bool compound = false;
    for (std::size_t i = 0; i < json["classes"].size(); ++i) {
        const Json& row = json["classes"][i];
        if (row["code"].string().find('/') != std::string::npos) {
            compound = true;
            EXPECT_NE(row["name"].string().find('/'), std::string::npos) << row["code"].string();
        }
    }
    EXPECT_TRUE(compound);

    Outcome list = kplan("list --format json");
    ASSERT_EQ(list.exitCode, 0) << list.err;
    Json rows = Json::parse(list.out);
    int generations[4] = {0, 0, 0, 0}, current = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ++generations[static_cast<int>(rows[i]["generation"].number()) & 3];
        current += rows[i]["kind"].string() == "current status";
    }
    EXPECT_GT(generations[3], 40);
    EXPECT_GT(generations[2], 0);
    EXPECT_GT(generations[1], 0);
    EXPECT_GT(current, 0);
}

}  // namespace
