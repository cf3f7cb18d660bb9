// "kplan stats" and "kplan list" run as processes on a drawing made here, whose figures are
// known by construction: rectangles of known size placed inside, across and outside two
// planning scope lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbpl.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "record/DYBJInfo.h"
#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"
#include "tests/support/Shapes.h"

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
    return addClosedRectangle(X0 + x0, Y0 + y0, X0 + x1, Y0 + y1);
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

// Whether a line of text, its runs of blanks taken as one, is a line of the output.
bool hasWords(const std::string& text, const std::string& words) {
    std::string line;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '\n') {
            if (line == words) return true;
            line.clear();
        } else if (text[i] != ' ' || (!line.empty() && line.back() != ' ')) {
            line += text[i];
        }
    }
    return false;
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
        // The keys of before keep their meaning; the balance tables come as new keys.
        EXPECT_EQ(json.keys(), (std::vector<std::string>{
                                   "balance", "boundary", "class_table", "class_table_file",
                                   "classes", "drawing", "major_classes", "parcels", "population",
                                   "schema", "standard", "tables", "totals", "warnings"}));
        EXPECT_EQ(json["schema"].number(), 2);
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
    // Within the 2 ha scope: R21 0.25 and half of B1 0.25 are H (25 %), E1 0.56 (28 %),
    // the 0.94 ha no planned parcel covers 47 %; the current-status R2 of 0.08 ha beside.
    for (const std::string& line : std::vector<std::string>{
             "范围线：" + drawing().scope + "，2.00 公顷",
             "规划地块：3（1 块与范围线相交）",
             "H 建设用地 0.08 4.00 0.50 25.00",
             "E 非建设用地 0.00 0.00 0.56 28.00",
             "范围内未划定地块 1.92 96.00 0.94 47.00",
             "城乡用地 2.00 100.00 2.00 100.00",
             // 0.25 ha for 140 people is 17.86 m² each; 0.08 ha for 7 is 114.29.
             "R 居住用地 * 0.08 100.00 114.29 0.25 50.00 17.86",
             "R2 其中：二类居住用地 0.08 100.00 114.29 0.25 50.00 17.86",
         }) {
        EXPECT_TRUE(hasWords(run.out, line)) << "missing: " << line << "\n" << run.out;
    }
    // Machines get the same figures unrounded, one row per value.
    Outcome csv = kplan("stats '" + drawing().path + "' --format csv");
    ASSERT_EQ(csv.exitCode, 0);
    EXPECT_EQ(csv.out.substr(0, csv.out.find(',')), "\xEF\xBB\xBFtable");
    EXPECT_NE(csv.out.find("\r\ntable,code,name,value\r\n"), std::string::npos);
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
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_EQ(bad.err.rfind("kplan: --param: X=maybe: unknown project parameter; known are", 0), 0u)
        << bad.err;
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
    EXPECT_EQ(rows[0]["far"].number(), 2.5);
    EXPECT_EQ(rows[0]["population"].number(), 100);
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
         "kplan: --format xml: expected table, csv, json, jsonl or xlsx\n"},
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

namespace {

// A scope line of 200 x 100 m (2 ha) with planned parcels R21 100 x 50 (0.5 ha), B1
// 100 x 50 (0.5 ha), G1 50 x 50 (0.25 ha) and E1 100 x 50 half outside (0.25 ha inside);
// 100 x 50 m (0.5 ha, 25 %) of the scope is no parcel's, as roads drawn as gaps are. One
// current-status R2 parcel covers the whole scope.
const std::string& balancedPlan() {
    static const std::string path = [] {
        AcApDocument* document = acDocManager->appendDocument();
        AcDbObjectId scope = rectangle(0, 0, 200, 100);
        ARX_DATA::CFGisXData::SetTo(scope, dk::FAPP_GHFWX, L"", L"规划范围线");
        planned(rectangle(0, 0, 100, 50), L"B-01", L"R21", L"100");
        planned(rectangle(100, 0, 200, 50), L"B-02", L"B1", L"0");
        planned(rectangle(0, 50, 50, 100), L"B-03", L"G1", L"0");
        planned(rectangle(150, 50, 250, 100), L"B-04", L"E1", L"0");
        AcDbObjectId status = rectangle(0, 0, 200, 100);
        ARX_DATA::CFSimpleXData::SetTo(status, dk::FAPP_XZDK, dk::MARK_XZDK);
        ARX_DATA::CFGisXData::SetTo(status, dk::FS_DKXZ, L"R2");
        ARX_DATA::CFGisXData::SetTo(status, dk::FN_ZRKS, L"400");
        // A planning unit over the left half: R21, G1 and 50 x 50 m of gap.
        CDYBJInfo(rectangle(0, 0, 100, 100)).SetData(L"单元编号", L"U-01");
        std::string made = testFolder() + "/balanced.dxf";
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), made, error)) << error;
        acDocManager->closeDocument(document);
        return made;
    }();
    return path;
}

TEST(KplanStatsTest, TheStandardsTablesBalanceWithTheScope) {
    Outcome run = kplan("stats '" + balancedPlan() + "'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // Current status first, as the standard's tables have it; the gap between the parcels
    // is a row of its own, and the shares are of the scope's 2 ha.
    for (const std::string& line : std::vector<std::string>{
             "城乡用地汇总表",
             "代码 名称 现状面积（公顷） 现状占城乡用地比例（%） 规划面积（公顷） "
             "规划占城乡用地比例（%）",
             "H 建设用地 2.00 100.00 1.25 62.50",
             "H1 城乡居民点建设用地 2.00 100.00 1.25 62.50",
             "H11 其中：城市建设用地 2.00 100.00 1.25 62.50",
             "H12 镇建设用地 0.00 0.00 0.00 0.00",
             "E 非建设用地 0.00 0.00 0.25 12.50",
             "E1 水域 0.00 0.00 0.25 12.50",
             "范围内未划定地块 0.00 0.00 0.50 25.00",
             "城乡用地 2.00 100.00 2.00 100.00",
             "城市建设用地平衡表",
             // R21 0.5 ha for 100 people, the current R2 2 ha for 400: 50 m² each.
             "R 居住用地 * 2.00 100.00 50.00 0.50 40.00 50.00",
             "A 公共管理与公共服务用地 * 0.00 0.00 0.00 0.00 0.00 0.00",
             "B 商业服务业设施用地 0.00 0.00 0.00 0.50 40.00 50.00",
             "B1 其中：商业用地 0.00 0.00 0.00 0.50 40.00 50.00",
             "G1 其中：公园绿地 0.00 0.00 0.00 0.25 20.00 25.00",
             "H11 城市建设用地 * 2.00 100.00 50.00 1.25 100.00 125.00",
             // Outside GB 50137-2011: 125 m² a person where 65 to 115 are allowed.
             "* H11 城市建设用地：规划人均 125.00 平方米/人，GB 50137-2011 表4.2.1：65.0–115.0 "
             "平方米/人",
         }) {
        EXPECT_TRUE(hasWords(run.out, line)) << "missing: " << line << "\n" << run.out;
    }
    // The order of the major classes is the standard's: R A B M W S U G.
    std::string order;
    for (const char* major : {"\nR ", "\nA ", "\nB ", "\nM ", "\nW ", "\nS ", "\nU ", "\nG "})
        order += run.out.find(major) == std::string::npos ? "-" : "+";
    EXPECT_EQ(order, "++++++++");
    std::size_t at = 0;
    for (const char* major : {"\nR ", "\nA ", "\nB ", "\nM ", "\nW ", "\nS ", "\nU ", "\nG "}) {
        std::size_t next = run.out.find(major, run.out.find("城市建设用地平衡表"));
        EXPECT_GT(next, at) << major;
        at = next;
    }
    // The population given replaces the plan's own; --status keeps current status alone.
    Outcome given = kplan("stats '" + balancedPlan() + "' --population 250 --format json");
    Json json = Json::parse(given.out);
    const Json& urban = json["tables"][1];
    EXPECT_EQ(urban["rows"][0]["code"].string(), "R");
    EXPECT_EQ(urban["columns"].size(), 6u);
    EXPECT_DOUBLE_EQ(urban["rows"][0]["values"][5].number(), 20.0);  // 0.5 ha for 250
    EXPECT_DOUBLE_EQ(urban["rows"][0]["values"][2].number(), 50.0);  // 2 ha for 400
    Outcome status = kplan("stats '" + balancedPlan() + "' --status --format json");
    Json current = Json::parse(status.out);
    ASSERT_EQ(current["tables"][1]["columns"].size(), 3u);
    EXPECT_EQ(current["tables"][1]["columns"][0]["scenario"].string(), "current");
    // Per planning unit: the tables within its outline, the whole plan's tables unchanged.
    Outcome byUnit = kplan("stats '" + balancedPlan() + "' --by unit --format json");
    ASSERT_EQ(byUnit.exitCode, 0) << byUnit.err;
    Json units = Json::parse(byUnit.out);
    EXPECT_EQ(units["tables"].size(), 2u);
    ASSERT_EQ(units["by"].size(), 1u);
    EXPECT_EQ(units["by"][0]["kind"].string(), "unit");
    EXPECT_EQ(units["by"][0]["number"].string(), "U-01");
    EXPECT_NEAR(units["by"][0]["balance"][1]["scope_ha"].number(), 1.0, 1e-9);
    const Json& unitRows = units["by"][0]["tables"][0]["rows"];
    // R21 0.5 + G1 0.25 of the unit's 1 ha are H; 0.25 ha are no parcel's; current status
    // R2 is clipped to the unit.
    EXPECT_EQ(unitRows[0]["code"].string(), "H");
    EXPECT_DOUBLE_EQ(unitRows[0]["values"][0].number(), 1.0);
    EXPECT_DOUBLE_EQ(unitRows[0]["values"][2].number(), 0.75);
    EXPECT_DOUBLE_EQ(unitRows[0]["values"][3].number(), 75.0);
    const Json& last = unitRows[unitRows.size() - 1];
    EXPECT_EQ(last["name"].string(), "城乡用地");
    EXPECT_DOUBLE_EQ(last["values"][2].number(), 1.0);
    const Json& unitCity = units["by"][0]["tables"][1]["rows"];
    EXPECT_DOUBLE_EQ(unitCity[0]["values"][5].number(), 50.0);  // R21 0.5 ha for 100
    Outcome csv = kplan("stats '" + balancedPlan() + "' --by unit --format csv");
    EXPECT_NE(csv.out.find("\r\nrural_urban@U-01,0,H,建设用地,1.00,100.00,0.75,75.00\r\n"),
              std::string::npos)
        << csv.out;
    Outcome text = kplan("stats '" + balancedPlan() + "' --by unit");
    EXPECT_NE(text.out.find("\n== 单元 U-01（"), std::string::npos) << text.out;
    EXPECT_NE(run.out.find("- 范围内未划定地块 0.5000 公顷，占范围 25.00%（单列一行）"),
              std::string::npos)
        << run.out;
}

}  // namespace

namespace {

// A scope line of 100 x 100 m (1 ha) covered by parcels, two of which overlap by 10 x 50 m
// (0.05 ha): R21 50 x 50 (0.25 ha), B1 60 x 50 (0.3 ha) over R21's right edge, Q1 (no
// class) 50 x 50, an empty code 20 x 50 (0.1 ha) and " r21 " 30 x 50 (0.15 ha).
struct OddPlan {
    std::string path, r21, b1, q1, empty, lower;
};

const OddPlan& oddPlan() {
    static const OddPlan made = [] {
        OddPlan p;
        AcApDocument* document = acDocManager->appendDocument();
        AcDbObjectId scope = rectangle(0, 0, 100, 100);
        ARX_DATA::CFGisXData::SetTo(scope, dk::FAPP_GHFWX, L"", L"规划范围线");
        auto parcel = [](double x0, double y0, double x1, double y1, const wchar_t* code) {
            AcDbObjectId id = rectangle(x0, y0, x1, y1);
            planned(id, L"C", code, L"0");
            return handleOf(id);
        };
        p.r21 = parcel(0, 0, 50, 50, L"R21");
        p.b1 = parcel(40, 0, 100, 50, L"B1");
        p.q1 = parcel(0, 50, 50, 100, L"Q1");
        p.empty = parcel(50, 50, 70, 100, L"");
        p.lower = parcel(70, 50, 100, 100, L" r21 ");
        p.path = testFolder() + "/odd.dxf";
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), p.path, error)) << error;
        acDocManager->closeDocument(document);
        return p;
    }();
    return made;
}

TEST(KplanStatsTest, OverlapsAndCodesOfNoClassAreRowsAndWarnings) {
    const OddPlan& p = oddPlan();
    Outcome run = kplan("stats '" + p.path + "' --format json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json json = Json::parse(run.out);
    ASSERT_TRUE(json.ok()) << run.out;
    const Json& rural = json["tables"][0];
    EXPECT_EQ(rural["key"].string(), "rural_urban");
    // H: R21 0.25 + r21 0.15 + B1 0.3; Q1 and the empty code 0.35 in no class; the
    // overlap taken off once; the rows add up to the scope's 1 ha.
    struct Expected {
        std::string name;
        double area, share;
    } rows[] = {{"建设用地", 0.70, 70.00},
                {"未识别用地代码", 0.35, 35.00},
                {"地块重叠（重复计入部分）", -0.05, -5.00},
                {"城乡用地", 1.00, 100.00}};
    for (const Expected& e : rows) {
        SCOPED_TRACE(e.name);
        bool found = false;
        for (std::size_t i = 0; i < rural["rows"].size(); ++i) {
            const Json& row = rural["rows"][i];
            if (row["name"].string() != e.name) continue;
            found = true;
            EXPECT_DOUBLE_EQ(row["values"][0].number(), e.area);
            EXPECT_DOUBLE_EQ(row["values"][1].number(), e.share);
        }
        EXPECT_TRUE(found);
    }
    // No row of an invented class: no "Q", "r" or blank major class.
    for (std::size_t t = 0; t < json["tables"].size(); ++t) {
        for (std::size_t i = 0; i < json["tables"][t]["rows"].size(); ++i) {
            const std::string& code = json["tables"][t]["rows"][i]["code"].string();
            EXPECT_TRUE(code != "Q" && code != "Q1" && code != "r" && code != " ") << code;
        }
    }
    std::vector<std::string> warnings;
    for (std::size_t i = 0; i < json["warnings"].size(); ++i) {
        const Json& w = json["warnings"][i];
        std::string handles;
        for (std::size_t k = 0; k < w["handles"].size(); ++k)
            handles += " " + w["handles"][k].string();
        warnings.push_back(w["kind"].string() + " " + w["code"].string() + ":" + handles);
    }
    EXPECT_EQ(warnings, (std::vector<std::string>{
                            "unknown_code Q1: " + p.q1, "empty_code : " + p.empty,
                            "code_case r21: " + p.lower, "overlap : " + p.r21 + " " + p.b1}));
    EXPECT_NEAR(json["balance"][0]["overlap_ha"].number(), 0.05, 1e-9);
    EXPECT_NEAR(json["balance"][0]["remainder_ha"].number(), 0, 1e-9);

    // The same in English, in square metres and in mu.
    Outcome en = kplan("stats '" + p.path + "' --lang en --units m2 --decimals 0");
    ASSERT_EQ(en.exitCode, 0) << en.err;
    for (const std::string& line : std::vector<std::string>{
             "Rural and urban land",
             "code name planned area (m2) planned % of rural and urban land",
             "H 建设用地 7000 70.00",
             "unrecognised class codes 3500 35.00",
             "parcel overlaps (counted twice) -500 -5.00",
             "rural and urban land 10000 100.00",
             "R2 of which: 二类居住用地 4000 57.14",
         }) {
        EXPECT_TRUE(hasWords(en.out, line)) << "missing: " << line << "\n" << en.out;
    }
    EXPECT_NE(en.out.find("- class code \"Q1\" is not in the class table, 0.2500 ha, in no "
                          "class; parcels " +
                          p.q1 + "\n"),
              std::string::npos)
        << en.out;
    Outcome mu = kplan("stats '" + p.path + "' --units mu");
    EXPECT_TRUE(hasWords(mu.out, "H 建设用地 10.50 70.00")) << mu.out;
    Outcome bad = kplan("stats '" + p.path + "' --units acre");
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_EQ(bad.err, "kplan: --units acre: expected hm2, m2, mu or km2\n");
    Outcome remainder = kplan("stats '" + p.path + "' --remainder Z9");
    EXPECT_EQ(remainder.exitCode, 2);
    EXPECT_EQ(remainder.err, "kplan: --remainder Z9: the class table has no such class\n");
    EXPECT_EQ(remainder.out, "");
}

}  // namespace

namespace {

// The workbook of a run against the JSON of the same run, read with openpyxl: "" when
// they agree, else one line per difference.
std::string compareXlsx(const std::string& args, const std::string& name) {
    std::string xlsx = testFolder() + "/" + name + ".xlsx",
                json = testFolder() + "/" + name + ".json";
    Outcome sheet = kplan("stats " + args + " --format xlsx -o '" + xlsx + "'");
    EXPECT_EQ(sheet.exitCode, 0) << sheet.err;
    EXPECT_EQ(sheet.out, "");
    Outcome run = kplan("stats " + args + " --format json");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    std::ofstream(json, std::ios::binary) << run.out;
    std::string out = testFolder() + "/check-xlsx.txt";
    std::string command = "/usr/bin/python3 '" + std::string(KPLAN_SOURCE_DIR) +
                          "/tests/cli/check_xlsx.py' '" + xlsx + "' '" + json + "' >'" + out +
                          "' 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return slurp(out);
}

TEST(KplanStatsTest, TheSpreadsheetHoldsTheFiguresOfTheJson) {
    EXPECT_EQ(compareXlsx("", "sample"), "");
    EXPECT_EQ(compareXlsx("'" + balancedPlan() + "'", "balanced"), "");
    EXPECT_EQ(compareXlsx("'" + oddPlan().path + "' --units m2 --decimals 0", "odd"), "");
    EXPECT_EQ(compareXlsx("'" + oddPlan().path + "' --table 1990国标城市用地类别.txt", "old"), "");

    // A spreadsheet goes to a file, and only a spreadsheet does.
    Outcome noFile = kplan("stats --format xlsx");
    EXPECT_EQ(noFile.exitCode, 2);
    EXPECT_EQ(noFile.err, "kplan: --format xlsx writes a file: name it with -o FILE\n");
    Outcome notXlsx = kplan("stats -o '" + testFolder() + "/x.csv' --format csv");
    EXPECT_EQ(notXlsx.exitCode, 2);
    std::string folder = testFolder() + "/no-such-folder/plan.xlsx";
    Outcome unwritable = kplan("stats --format xlsx -o '" + folder + "'");
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_NE(unwritable.err.find("\nkplan: " + folder + ": cannot write the file\n"),
              std::string::npos)
        << unwritable.err;
    EXPECT_FALSE(std::filesystem::exists(folder));
}

}  // namespace

namespace {

// The README shows the tables of the sample: they are what the program prints.
TEST(KplanStatsTest, TheReadmeShowsTheSampleAsPrinted) {
    std::string readme = slurp(std::string(KPLAN_SOURCE_DIR) + "/README.md");
    std::size_t from = readme.find("$ kplan stats\n");
    ASSERT_NE(from, std::string::npos);
    from = readme.find("城乡用地汇总表\n", from);
    std::size_t to = readme.find("kplan: ", from);
    ASSERT_NE(to, std::string::npos);
    std::string shown = readme.substr(from, to - from);
    Outcome run = kplan("stats");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out.substr(run.out.find("城乡用地汇总表\n")), shown);
    // The issue's figures: 82.07 ha of parcels in a scope of 107.55 ha, 25.48 ha between
    // the blocks; R 29.94 ha is 27.84 % of the land once the gaps count as roads.
    EXPECT_TRUE(hasWords(run.out, "H 建设用地 82.02 76.26")) << run.out;
    EXPECT_TRUE(hasWords(run.out, "E 非建设用地 0.05 0.04"));
    EXPECT_TRUE(hasWords(run.out, "范围内未划定地块 25.48 23.70"));
    EXPECT_TRUE(hasWords(run.out, "城乡用地 107.55 100.00"));
    Outcome roads = kplan("stats --remainder S1");
    EXPECT_TRUE(hasWords(roads.out, "R 居住用地 * 29.94 27.84 16.52")) << roads.out;
    EXPECT_TRUE(hasWords(roads.out, "S1 其中：城市道路用地 25.49 23.71 14.06"));
    std::size_t shownS1 = readme.find("$ kplan stats --remainder S1\n");
    ASSERT_NE(shownS1, std::string::npos);
    for (const char* code : {"\nS     ", "\nS1      ", "\nH11   "}) {
        std::size_t at = readme.find(code, shownS1);
        ASSERT_NE(at, std::string::npos) << code;
        std::string line = readme.substr(at, readme.find('\n', at + 1) - at + 1);
        EXPECT_NE(roads.out.find(line), std::string::npos) << line;
    }

    // Compound codes split by their mix ratio move land from B to R; the total stays.
    Outcome split = kplan("stats --mixed split --format json");
    Outcome first = kplan("stats --format json");
    Json a = Json::parse(split.out), b = Json::parse(first.out);
    // The tables stand on the library's totals: H of the table is FGetHArea to the
    // printed place (every code of the sample is in the class table).
    EXPECT_EQ(b["tables"][0]["rows"][0]["code"].string(), "H");
    EXPECT_NEAR(b["tables"][0]["rows"][0]["values"][0].number(), b["totals"]["H"].number(), 0.005);
    EXPECT_NEAR(b["tables"][1]["rows"][b["tables"][1]["rows"].size() - 1]["values"][0].number(),
                b["totals"]["H11"].number(), 0.005);
    const Json& splitRows = a["tables"][1]["rows"];
    const Json& firstRows = b["tables"][1]["rows"];
    double moved = splitRows[0]["values"][0].number() - firstRows[0]["values"][0].number();
    EXPECT_GT(moved, 1.0);
    EXPECT_EQ(splitRows[splitRows.size() - 1]["values"][0].number(),
              firstRows[firstRows.size() - 1]["values"][0].number());
}

}  // namespace

namespace {

// Whether text is well-formed UTF-8 (no stray bytes, no encoded surrogates).
bool wellFormedUtf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        auto c = static_cast<unsigned char>(text[i]);
        int extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
        if (extra < 0 || i + static_cast<std::size_t>(extra) >= text.size() + (extra == 0))
            return false;
        for (int k = 1; k <= extra; ++k) {
            if ((static_cast<unsigned char>(text[i + static_cast<std::size_t>(k)]) & 0xC0) != 0x80)
                return false;
        }
        if (c == 0xED && (static_cast<unsigned char>(text[i + 1]) & 0x20)) return false;
        i += static_cast<std::size_t>(extra) + 1;
    }
    return true;
}

// Parcels the tables cannot count: an open outline, an outline without area, a code
// that is no text (a lone UTF-16 surrogate); and the 1990 table's order.
TEST(KplanStatsTest, WhatCannotBeCountedIsNamedAndTheJsonStaysUtf8) {
    AcApDocument* document = acDocManager->appendDocument();
    AcDbObjectId scope = rectangle(0, 0, 100, 100);
    ARX_DATA::CFGisXData::SetTo(scope, dk::FAPP_GHFWX, L"", L"规划范围线");
    AcDbObjectId good = rectangle(0, 0, 50, 50);
    planned(good, L"D-01", L"R21", L"10");
    auto* open = new AcDbPolyline();
    open->addVertexAt(0, AcGePoint2d(X0 + 60, Y0 + 10));
    open->addVertexAt(1, AcGePoint2d(X0 + 90, Y0 + 10));
    open->addVertexAt(2, AcGePoint2d(X0 + 90, Y0 + 40));
    AcDbEntity* openEntity = open;
    AcDbObjectId openId = kova::ent::SafeAddToDb(openEntity);
    planned(openId, L"D-02", L"B1", L"0");
    AcDbObjectId flat = rectangle(60, 60, 90, 60);
    planned(flat, L"D-03", L"G1", L"0");
    AcDbObjectId odd = rectangle(0, 60, 50, 100);
    const wchar_t surrogate[] = {L'R', static_cast<wchar_t>(0xD800), 0};
    planned(odd, L"D-04", surrogate, L"0");
    const std::string openHandle = handleOf(openId), flatHandle = handleOf(flat),
                      oddHandle = handleOf(odd);
    std::string path = testFolder() + "/left-out-parcels.dxf";
    std::string error;
    ASSERT_TRUE(dxf::save(*document->database(), path, error)) << error;
    acDocManager->closeDocument(document);

    Outcome run = kplan("stats '" + path + "' --format json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(wellFormedUtf8(run.out));
    Json json = Json::parse(run.out);
    ASSERT_TRUE(json.ok()) << run.out;
    std::vector<std::string> kinds;
    for (std::size_t i = 0; i < json["warnings"].size(); ++i) {
        const Json& w = json["warnings"][i];
        std::string handles;
        for (std::size_t k = 0; k < w["handles"].size(); ++k)
            handles += " " + w["handles"][k].string();
        kinds.push_back(w["kind"].string() + handles);
    }
    auto has = [&](const std::string& line) {
        return std::find(kinds.begin(), kinds.end(), line) != kinds.end();
    };
    std::string all;
    for (const std::string& k : kinds)
        all += k + "\n";
    EXPECT_TRUE(has("left_out " + openHandle)) << all;
    EXPECT_TRUE(has("unknown_code " + oddHandle)) << all;
    // An outline without area lies in no scope; over the whole drawing it is named.
    Outcome whole = kplan("stats '" + path + "' --boundary none --format json");
    Json wholeJson = Json::parse(whole.out);
    bool zero = false;
    for (std::size_t i = 0; i < wholeJson["warnings"].size(); ++i) {
        const Json& w = wholeJson["warnings"][i];
        zero = zero || (w["kind"].string() == "zero_area" && w["handles"].size() == 1 &&
                        w["handles"][0].string() == flatHandle);
    }
    EXPECT_TRUE(zero) << whole.out;
    Outcome csv = kplan("stats '" + path + "' --format csv");
    EXPECT_TRUE(wellFormedUtf8(csv.out));

    // The city land table of GBJ 137-90 in its order, construction land before water.
    Outcome old = kplan("stats '" + path + "' --table 1990国标城市用地类别.txt --format json");
    Json table = Json::parse(old.out)["tables"][0];
    EXPECT_EQ(table["key"].string(), "urban_land");
    std::string order;
    for (std::size_t i = 0; i < table["rows"].size(); ++i) {
        const Json& row = table["rows"][i];
        if (row["level"].number() == 0)
            order +=
                (row["code"].string().empty() ? row["name"].string() : row["code"].string()) + " ";
    }
    EXPECT_EQ(order, "R C M W T S U G D 城市建设用地 E 未识别用地代码 范围内未划定地块 城市用地 ");
}

}  // namespace
