// The balance tables from parcels of known area: the rows, their order and figures
// worked by hand, the remainder, codes no class holds.
#include <gtest/gtest.h>

#include "report/Balance.h"

namespace kplan::report {
namespace {

// Part of the 2011 table, in its order: H and E first, the city classes after.
ClassHierarchy classes2011() {
    return ClassHierarchy({{"H", "建设用地"},          {"H1", "城乡居民点建设用地"},
                           {"H11", "城市建设用地"},    {"H12", "镇建设用地"},
                           {"H13", "乡建设用地"},      {"H14", "村庄建设用地"},
                           {"H2", "区域交通设施用地"}, {"H9", "其他建设用地"},
                           {"E", "非建设用地"},        {"E1", "水域"},
                           {"E2", "农林用地"},         {"E9", "其他非建设用地"},
                           {"R", "居住用地"},          {"R2", "二类居住用地"},
                           {"R21", "住宅用地"},        {"A", "公共管理与公共服务用地"},
                           {"A3", "教育科研用地"},     {"S", "道路与交通设施用地"},
                           {"S1", "城市道路用地"},     {"G", "绿地与广场用地"},
                           {"G1", "公园绿地"}});
}

Measured plan() {
    Measured m;
    m.scoped = true;
    m.scopeHectares = 10;
    m.population = 1000;
    m.parcels = {{"A1", "R21", "", 3.0}, {"A2", " r21 ", "", 0.3}, {"A3", "A3", "", 1.0},
                 {"A4", "S1", "", 2.0},  {"A5", "G1", "", 1.0},    {"A6", "H12", "", 0.5},
                 {"A7", "E9", "", 0.5},  {"A8", "Q1", "", 0.2},    {"A9", "", "", 0.1}};
    return m;
}

struct Expected {
    std::string code, name;
    int level;
    bool among;
    double area, share;
};

void expectRows(const Table& table, const std::vector<Expected>& rows) {
    ASSERT_EQ(table.rows.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        const Row& row = table.rows[i];
        EXPECT_EQ(row.code, rows[i].code);
        EXPECT_EQ(row.name, rows[i].name);
        EXPECT_EQ(row.level, rows[i].level);
        EXPECT_EQ(row.among, rows[i].among);
        EXPECT_DOUBLE_EQ(row.values[0], rows[i].area);
        if (isBlank(rows[i].share)) {
            EXPECT_TRUE(isBlank(row.values[1]));
        } else {
            EXPECT_DOUBLE_EQ(row.values[1], rows[i].share);
        }
    }
}

TEST(BalanceTest, TheTwoTablesOf2011Balance) {
    Report report;
    std::string error;
    ASSERT_TRUE(buildReport(classes2011(), {plan()}, {}, report, error)) << error;
    ASSERT_EQ(report.tables.size(), 2u);
    const Table& rural = report.tables[0];
    EXPECT_EQ(rural.key, "rural_urban");
    EXPECT_EQ(rural.title, "城乡用地汇总表");
    // City land R 3.3 + A 1 + S 2 + G 1 = 7.3 is H11; H12 0.5 more makes H1 and H. The
    // scope's 10 ha less the parcels' 8.6 ha is land without parcels.
    expectRows(rural, {{"H", "建设用地", 0, false, 7.8, 78.0},
                       {"H1", "城乡居民点建设用地", 1, false, 7.8, 78.0},
                       {"H11", "城市建设用地", 2, true, 7.3, 73.0},
                       {"H12", "镇建设用地", 2, true, 0.5, 5.0},
                       {"H13", "乡建设用地", 2, true, 0, 0},
                       {"H14", "村庄建设用地", 2, true, 0, 0},
                       {"H2", "区域交通设施用地", 1, false, 0, 0},
                       {"H9", "其他建设用地", 1, false, 0, 0},
                       {"E", "非建设用地", 0, false, 0.5, 5.0},
                       {"E1", "水域", 1, false, 0, 0},
                       {"E2", "农林用地", 1, false, 0, 0},
                       {"E9", "其他非建设用地", 1, false, 0.5, 5.0},
                       {"", "未识别用地代码", 0, false, 0.3, 3.0},
                       {"", "范围内未划定地块", 0, false, 1.4, 14.0},
                       {"", "城乡用地", 0, false, 10.0, 100.0}});
    EXPECT_TRUE(rural.rows.back().total);

    const Table& urban = report.tables[1];
    EXPECT_EQ(urban.key, "urban_construction");
    // Shares of 7.3 ha rounded alone give 100.01; rounded together 100.00. Per person:
    // 3.3 ha for 1000 people is 33 m².
    expectRows(urban, {{"R", "居住用地", 0, false, 3.3, 45.20},
                       {"R2", "二类居住用地", 1, true, 3.3, 45.20},
                       {"A", "公共管理与公共服务用地", 0, false, 1.0, 13.70},
                       {"A3", "教育科研用地", 1, true, 1.0, 13.70},
                       {"S", "道路与交通设施用地", 0, false, 2.0, 27.40},
                       {"S1", "城市道路用地", 1, true, 2.0, 27.40},
                       {"G", "绿地与广场用地", 0, false, 1.0, 13.70},
                       {"G1", "公园绿地", 1, true, 1.0, 13.70},
                       {"H11", "城市建设用地", 0, false, 7.3, 100.0}});
    ASSERT_EQ(urban.columns.size(), 3u);
    EXPECT_EQ(urban.columns[2].measure, Measure::PerPerson);
    EXPECT_DOUBLE_EQ(urban.rows[0].values[2], 33.0);
    EXPECT_DOUBLE_EQ(urban.rows.back().values[2], 73.0);

    // GB 50137-2011 table 4.4.1: R 45.20 %, A 13.70 % and S 27.40 % of the urban
    // construction land lie above their ranges; the per-person figures (R 33, A 10, S 20,
    // G 10, G1 10, all 73 m²) lie within theirs.
    std::vector<std::string> flagged;
    for (const Row& row : urban.rows) {
        if (row.outOfRange) flagged.push_back(row.code);
    }
    EXPECT_EQ(flagged, (std::vector<std::string>{"R", "A", "S"}));
    ASSERT_EQ(urban.notes.size(), 3u);
    EXPECT_EQ(urban.notes[0],
              "R 居住用地：规划占城市建设用地比例 45.20%，GB 50137-2011 表4.4.1：25.0–40.0%");
    EXPECT_TRUE(rural.notes.empty());

    // Every unknown case is a warning with its parcels; nothing invents a class.
    std::vector<std::string> kinds;
    for (const Warning& w : report.warnings)
        kinds.push_back(w.kind + ":" + w.code);
    EXPECT_EQ(kinds, (std::vector<std::string>{"code_case:r21", "unknown_code:Q1",
                                               "empty_code:", "remainder:"}));
    EXPECT_EQ(report.warnings[1].handles, std::vector<std::string>{"A8"});
    EXPECT_DOUBLE_EQ(report.warnings[3].percent, 14.0);
    EXPECT_EQ(describe(report.warnings[1], false),
              "用地代码“Q1”不在用地类别表中，0.2000 公顷，未计入任何类别；地块 A8");
    EXPECT_EQ(describe(report.warnings[3], true),
              "land in the scope without parcels: 1.4000 ha, 14.00 % of the scope (a row of its "
              "own)");
}

TEST(BalanceTest, TheRemainderGoesWhereTheOptionsSay) {
    BalanceOptions options;
    options.remainderCode = "s1";
    options.unit = AreaUnit::SquareMetre;
    options.decimals = 0;
    Report report;
    std::string error;
    ASSERT_TRUE(buildReport(classes2011(), {plan()}, options, report, error)) << error;
    const Table& urban = report.tables[1];
    // Roads drawn as gaps: S1 holds its 2 ha and the 1.4 ha between the parcels.
    EXPECT_EQ(urban.rows[4].code, "S");
    EXPECT_DOUBLE_EQ(urban.rows[4].values[0], 34000);
    EXPECT_DOUBLE_EQ(urban.rows.back().values[0], 87000);
    for (const Row& row : report.tables[0].rows)
        EXPECT_NE(row.name, "范围内未划定地块");
    EXPECT_DOUBLE_EQ(report.tables[0].rows.back().values[0], 100000);

    options.remainderCode = "X9";
    EXPECT_FALSE(buildReport(classes2011(), {plan()}, options, report, error));
    EXPECT_EQ(error, "--remainder X9: the class table has no such class");
}

TEST(BalanceTest, CurrentAndPlannedSideBySideAndMixedCodesSplit) {
    Measured current;
    current.scenario = Scenario::Current;
    current.parcels = {{"C1", "E2", "", 4.0}};
    Measured planned;
    planned.population = 500;
    planned.parcels = {{"P1", "R21/A3", "3:1", 4.0}, {"P2", "R21/G1", "", 2.0}};
    BalanceOptions options;
    options.mixed = MixedCodes::Split;
    Report report;
    std::string error;
    ASSERT_TRUE(buildReport(classes2011(), {current, planned}, options, report, error));
    const Table& urban = report.tables[1];
    // Columns: area and share of each, per person of each.
    ASSERT_EQ(urban.columns.size(), 6u);
    EXPECT_EQ(urban.columns[0].scenario, Scenario::Current);
    EXPECT_EQ(urban.columns[3].scenario, Scenario::Planned);
    // 3:1 of 4 ha is R 3, A 1; 2 ha without a ratio is split evenly, R 1, G 1.
    EXPECT_EQ(urban.rows[0].code, "R");
    EXPECT_DOUBLE_EQ(urban.rows[0].values[0], 0);
    EXPECT_DOUBLE_EQ(urban.rows[0].values[3], 4.0);
    EXPECT_DOUBLE_EQ(urban.rows[0].values[5], 80.0);  // 4 ha for 500 people
    EXPECT_TRUE(isBlank(urban.rows[0].values[2]));    // no current-status population
    EXPECT_DOUBLE_EQ(urban.rows.back().values[3], 6.0);
    const Table& rural = report.tables[0];
    EXPECT_EQ(rural.rows[8].code, "E");
    EXPECT_DOUBLE_EQ(rural.rows[8].values[0], 4.0);
    EXPECT_DOUBLE_EQ(rural.rows[8].values[1], 100.0);
    ASSERT_EQ(report.warnings.size(), 1u);
    EXPECT_EQ(report.warnings[0].kind, "mixed_ratio");
    EXPECT_EQ(report.warnings[0].handles, std::vector<std::string>{"P2"});

    // The first code by default, as the library counts.
    ASSERT_TRUE(buildReport(classes2011(), {current, planned}, {}, report, error));
    EXPECT_DOUBLE_EQ(report.tables[1].rows[0].values[3], 6.0);
    EXPECT_TRUE(report.warnings.empty());
}

TEST(BalanceTest, OtherStandardsGetTheirOwnTable) {
    ClassHierarchy old({{"R", "居住用地"},
                        {"R2", "二类居住用地"},
                        {"C", "公共设施用地"},
                        {"M", "工业用地"},
                        {"T", "对外交通用地"},
                        {"D", "特殊用地"},
                        {"E", "水域和其他用地"},
                        {"E1", "水域"}});
    Measured m;
    m.parcels = {
        {"1", "R2", "", 2.0}, {"2", "C", "", 1.0}, {"3", "T", "", 1.0}, {"4", "E1", "", 6.0}};
    Report report;
    std::string error;
    ASSERT_TRUE(buildReport(old, {m}, {}, report, error));
    ASSERT_EQ(report.tables.size(), 1u);
    EXPECT_EQ(report.tables[0].key, "urban_land");
    // Shares are of the construction land (4 ha); water and other land has none.
    expectRows(report.tables[0], {{"R", "居住用地", 0, false, 2.0, 50.0},
                                  {"R2", "二类居住用地", 1, true, 2.0, 50.0},
                                  {"C", "公共设施用地", 0, false, 1.0, 25.0},
                                  {"M", "工业用地", 0, false, 0, 0},
                                  {"T", "对外交通用地", 0, false, 1.0, 25.0},
                                  {"D", "特殊用地", 0, false, 0, 0},
                                  {"", "城市建设用地", 0, false, 4.0, 100.0},
                                  {"E", "水域和其他用地", 0, false, 6.0, kBlank},
                                  {"", "城市用地", 0, false, 10.0, kBlank}});

    // A table of no national standard: its major classes from the codes alone.
    ClassHierarchy other({{"X", "甲类"}, {"X1", "甲一"}, {"Y", "乙类"}});
    m.parcels = {{"1", "X1", "", 1.0}, {"2", "Y", "", 3.0}};
    ASSERT_TRUE(buildReport(other, {m}, {}, report, error));
    EXPECT_EQ(report.tables[0].key, "land_use");
    expectRows(report.tables[0], {{"X", "甲类", 0, false, 1.0, 25.0},
                                  {"X1", "甲一", 1, true, 1.0, 25.0},
                                  {"Y", "乙类", 0, false, 3.0, 75.0},
                                  {"", "合计", 0, false, 4.0, 100.0}});
}

}  // namespace
}  // namespace kplan::report
