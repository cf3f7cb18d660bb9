// Rounded rows that add up to the rounded total, worked by hand.
#include <gtest/gtest.h>

#include "report/Rounding.h"

namespace kplan::report {
namespace {

TEST(RoundingTest, RowsAddUpToTheTotal) {
    struct Case {
        const char* what;
        std::vector<double> values;
        double total;
        int decimals;
        std::vector<double> expected;
    } cases[] = {
        // 33 + 33 + 33 cents leave one: it goes to the value that lost most.
        {"thirds", {0.333333, 0.333333, 0.333334}, 1.00, 2, {0.33, 0.33, 0.34}},
        // Equal losses: the earlier value takes the unit.
        {"equal shares", {100.0 / 3, 100.0 / 3, 100.0 / 3}, 100.00, 2, {33.34, 33.33, 33.33}},
        // Rounded alone they would give 45.21 + 13.70 + 27.40 + 13.70 = 100.01.
        {"shares of 7.3",
         {330 / 7.3, 100 / 7.3, 200 / 7.3, 100 / 7.3},
         100.00,
         2,
         {45.20, 13.70, 27.40, 13.70}},
        {"already exact", {0.25, 0.75}, 1.0, 2, {0.25, 0.75}},
        {"whole units", {2.4, 2.4, 5.2}, 10, 0, {3, 2, 5}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<double> rounded = roundToTotal(c.values, c.total, c.decimals);
        ASSERT_EQ(rounded.size(), c.expected.size());
        for (std::size_t i = 0; i < rounded.size(); ++i)
            EXPECT_DOUBLE_EQ(rounded[i], c.expected[i]) << i;
    }
}

TEST(RoundingTest, TableRowsAddUpWhereTheyDidBefore) {
    Table table;
    table.columns = {{Measure::Area, Scenario::Planned, 2}, {Measure::Share, Scenario::Planned, 2}};
    auto row = [](double area, double share, std::vector<int> parts = {}) {
        Row r;
        r.values = {area, share};
        r.parts = std::move(parts);
        return r;
    };
    // Three thirds of 1 ha, the last split into two halves; a total of them all.
    table.rows = {row(1.0 / 3, 100.0 / 3), row(1.0 / 3, 100.0 / 3), row(1.0 / 3, 100.0 / 3, {3, 4}),
                  row(1.0 / 6, 100.0 / 6), row(1.0 / 6, 100.0 / 6), row(1.0, 100.0, {0, 1, 2})};
    roundTable(table);
    const double area[] = {0.34, 0.33, 0.33, 0.17, 0.16, 1.00};
    const double share[] = {33.34, 33.33, 33.33, 16.67, 16.66, 100.00};
    for (std::size_t r = 0; r < table.rows.size(); ++r) {
        EXPECT_DOUBLE_EQ(table.rows[r].values[0], area[r]) << r;
        EXPECT_DOUBLE_EQ(table.rows[r].values[1], share[r]) << r;
    }
    // Blank stays blank.
    Table blank;
    blank.columns = {{Measure::Share, Scenario::Planned, 2}};
    Row r;
    r.values = {kBlank};
    blank.rows = {r};
    roundTable(blank);
    EXPECT_TRUE(isBlank(blank.rows[0].values[0]));
}

}  // namespace
}  // namespace kplan::report
