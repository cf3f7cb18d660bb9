// The tables of several plans added up: areas as printed summed, shares and the area a
// person worked again from the sums, rows only some plans have kept in place.
#include <gtest/gtest.h>

#include "report/Balance.h"
#include "report/CombinedReport.h"

namespace kplan::report {
namespace {

ClassHierarchy classes() {
    return ClassHierarchy({{"H", "建设用地"},
                           {"H1", "城乡居民点建设用地"},
                           {"H11", "城市建设用地"},
                           {"E", "非建设用地"},
                           {"E1", "水域"},
                           {"R", "居住用地"},
                           {"R2", "二类居住用地"},
                           {"A", "公共管理与公共服务用地"},
                           {"A3", "教育科研用地"},
                           {"G", "绿地与广场用地"},
                           {"G1", "公园绿地"}});
}

Report plan(std::vector<ParcelArea> parcels, long population, double scope,
            std::vector<ParcelArea> current = {}) {
    std::vector<Measured> measured;
    if (!current.empty()) {
        Measured status;
        status.scenario = Scenario::Current;
        status.parcels = current;
        status.scoped = true;
        status.scopeHectares = scope;
        measured.push_back(status);
    }
    Measured m;
    m.parcels = parcels;
    m.scoped = true;
    m.scopeHectares = scope;
    m.population = population;
    measured.push_back(m);
    Report report;
    std::string error;
    EXPECT_TRUE(buildReport(classes(), measured, {}, report, error)) << error;
    return report;
}

const Table& urban(const Report& report) {
    for (const Table& t : report.tables)
        if (t.key == "urban_construction") return t;
    ADD_FAILURE() << "no urban_construction table";
    return report.tables.front();
}

const Row* rowOf(const Table& table, const std::string& code, const std::string& name = "") {
    for (const Row& row : table.rows)
        if (row.code == code && (name.empty() || row.name == name)) return &row;
    return nullptr;
}

TEST(CombinedReportTest, AreasAddUpAndSharesAreWorkedAgainFromTheSums) {
    // Plan 1: R2 1.005 ha (printed 1.01), A3 0.333 (0.33); 100 people; scope 2 ha.
    // Plan 2: R2 3 ha, G1 0.5 ha (a row plan 1 lacks); 300 people; scope 4 ha.
    Report one = plan({{"1", "R2", "", 1.005}, {"2", "A3", "", 0.333}}, 100, 2);
    Report two = plan({{"3", "R2", "", 3.0}, {"4", "G1", "", 0.5}}, 300, 4);
    Report combined = combineReports({&one, &two});
    ASSERT_EQ(combined.tables.size(), 2u);
    const Table& city = urban(combined);
    // R 1.01 + 3.00 = 4.01; A 0.33; G 0.50; H11 1.34 + 3.50 = 4.84 (the printed totals).
    struct Want {
        const char* code;
        double area, share, perPerson;
    };
    // Shares of 4.84: 4.01 -> 82.85, 0.33 -> 6.82, 0.50 -> 10.33; a person of 400:
    // 40100 m2 -> 100.25, 3300 -> 8.25, 5000 -> 12.5, 48400 -> 121.
    for (const Want& want : {Want{"R", 4.01, 82.85, 100.25}, Want{"A", 0.33, 6.82, 8.25},
                             Want{"G", 0.50, 10.33, 12.5}, Want{"H11", 4.84, 100, 121}}) {
        SCOPED_TRACE(want.code);
        const Row* row = rowOf(city, want.code);
        ASSERT_NE(row, nullptr);
        ASSERT_EQ(row->values.size(), 3u);
        EXPECT_NEAR(row->values[0], want.area, 1e-9);
        EXPECT_NEAR(row->values[1], want.share, 1e-9);
        EXPECT_NEAR(row->values[2], want.perPerson, 1e-9);
    }
    // The classes in the standard's order, G after A although plan 1 has no G.
    std::vector<std::string> codes;
    for (const Row& row : city.rows)
        codes.push_back(row.code);
    EXPECT_EQ(codes, (std::vector<std::string>{"R", "R2", "A", "A3", "G", "G1", "H11"}));
    EXPECT_TRUE(city.notes.empty());
    // The balance lines add up: scope 6 ha, 400 people.
    ASSERT_EQ(combined.balance.size(), 1u);
    EXPECT_DOUBLE_EQ(combined.balance[0].scopeHectares, 6);
    EXPECT_EQ(combined.balance[0].population, 400);
    // The order of the plans changes nothing but rows that only some have.
    Report reversed = combineReports({&two, &one});
    for (const Row& row : city.rows) {
        const Row* other = rowOf(urban(reversed), row.code, row.name);
        ASSERT_NE(other, nullptr) << row.code;
        EXPECT_EQ(other->values, row.values) << row.code;
    }
}

TEST(CombinedReportTest, CurrentStatusOfSomePlansIsAColumnOfItsOwn) {
    Report plain = plan({{"1", "R2", "", 2.0}}, 0, 2);
    Report withStatus = plan({{"2", "R2", "", 1.0}}, 0, 1, {{"3", "G1", "", 1.0}});
    Report combined = combineReports({&plain, &withStatus});
    const Table& city = urban(combined);
    // 现状 area, share, a person; then the same of 规划.
    ASSERT_EQ(city.columns.size(), 6u);
    EXPECT_EQ(city.columns[0].scenario, Scenario::Current);
    EXPECT_EQ(city.columns[3].scenario, Scenario::Planned);
    EXPECT_EQ(city.columns[5].measure, Measure::PerPerson);
    const Row* r = rowOf(city, "R");
    const Row* g = rowOf(city, "G");
    ASSERT_NE(r, nullptr);
    ASSERT_NE(g, nullptr);
    // Current status: G 1 ha of 1 ha; the plan: R 3 ha of 3 ha.
    EXPECT_NEAR(g->values[0], 1.0, 1e-9);
    EXPECT_NEAR(g->values[1], 100.0, 1e-9);
    EXPECT_NEAR(r->values[3], 3.0, 1e-9);
    EXPECT_NEAR(r->values[4], 100.0, 1e-9);
    EXPECT_NEAR(r->values[0], 0.0, 1e-9);
    // Nobody lives in either plan: no figure a person.
    EXPECT_TRUE(isBlank(r->values[5]));
    ASSERT_EQ(combined.balance.size(), 2u);
    EXPECT_EQ(combined.balance[0].scenario, Scenario::Current);
}

}  // namespace
}  // namespace kplan::report
