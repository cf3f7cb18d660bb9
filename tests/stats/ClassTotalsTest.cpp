// Totals by class: the twelve balance-table tests with their upper-casing asymmetry,
// which totals reset and which accumulate, the population fields, the single-class
// prefix and whole-code rules, the class list that counts a parcel twice, and the
// boundary forms.
#include "stats/ClassTotals.h"

#include <functional>
#include <string>

#include "tests/stats/StatsFixture.h"

namespace {

class ClassTotalsTest : public StatsTest {
  protected:
    // A 10 x 10 planned parcel (0.01 ha) of the class at the given column.
    AcDbObjectId parcel(const wchar_t* cls, double column = 0, double side = 10) {
        AcDbObjectId id = rect(column, 0, column + side, side);
        planned(id, {{dk::FS_DKXZ, cls}});
        return id;
    }
};

using ListTotal = int (*)(const AcDbObjectIdArray&, double&);
const std::pair<const char*, ListTotal> kTotals[] = {
    {"H", FGetHArea},   {"H1", FGetH1Area}, {"H11", FGetH11Area}, {"H2", FGetH2Area},
    {"H3", FGetH3Area}, {"H4", FGetH4Area}, {"H5", FGetH5Area},   {"H9", FGetH9Area},
    {"E", FGetEArea},   {"E1", FGetE1Area}, {"E2", FGetE2Area},   {"E3", FGetE3Area},
};

// Which of the twelve totals count a parcel of the code.
TEST_F(ClassTotalsTest, BalanceTableTests) {
    const std::pair<const wchar_t*, std::string> cases[] = {
        {L"H", "H"},
        {L"H1", "H H1"},
        {L"H11", "H H1 H11"},
        {L"H12", "H H1 H11"},
        {L"H14", "H H1 H11"},
        {L"H2", "H H2"},
        {L"H21", "H H2"},
        {L"H3", "H H3"},
        {L"H4", "H H4"},
        {L"H5", "H H5"},
        {L"H9", "H H9"},
        {L"R21", "H H1 H11"},
        {L" r2 ", "H H1 H11"},
        {L"a1", "H H1 H11"},
        {L"B", "H H1 H11"},
        {L"G1", "H H1 H11"},
        {L"M2", "H H1 H11"},
        {L"S3", "H H1 H11"},
        {L"U1", "H H1 H11"},
        {L"W", "H H1 H11"},
        {L"h", "H"},
        {L"h1", "H H1"},
        // The H2 to E3 tests do not upper-case, nor does the H1 test's own H2 check.
        {L"h2", "H H1 H11"},
        {L"E", "E"},
        {L"E1", "E E1"},
        {L"E2", "E E2"},
        {L"E3", "E E3"},
        {L"E9", "E"},
        {L" E13 ", "E E1"},
        {L"e1", ""},
        {L"C", ""},
        {L"D1", ""},
        {L"KB", ""},
        {L"T2", ""},
        {L"F", ""},
        {L"1", ""},
        {L"公园", ""},
        {L"", ""},
    };
    for (const auto& [code, expected] : cases) {
        AcDbObjectIdArray one = ids({parcel(code)});
        std::string counted;
        for (const auto& [name, total] : kTotals) {
            double area = 5;
            EXPECT_EQ(total(one, area), 1);
            if (area == 5) {
                ADD_FAILURE() << name << " did not reset";
            } else if (area > 0) {
                EXPECT_NEAR(area, 0.01, 1e-12);
                if (!counted.empty()) counted += ' ';
                counted += name;
            }
        }
        EXPECT_EQ(counted, expected) << CString(code).GetString();
        erase(one[0]);
    }
}

// Which totals reset their output and which add to it.
TEST_F(ClassTotalsTest, ResetOrAccumulate) {
    AcDbObjectId a = parcel(L"R21", 0, 10);  // 0.01 ha
    AcDbObjectId b = parcel(L"E1", 20, 20);  // 0.04 ha
    AcDbObjectId c = rect(50, 0, 80, 10);    // 0.03 ha, current status
    current(c, {{dk::FS_DKXZ, L"R21"}});
    AcDbObjectIdArray all = ids({a, b, c});
    struct Case {
        const char* name;
        std::function<void(double&)> total;
        double value;
        bool resets;
    };
    const Case cases[] = {
        {"GetDKIdsArea", [&](double& x) { GetDKIdsArea(all, x); }, 0.08, true},
        {"GetGHDKAllArea", [&](double& x) { GetGHDKAllArea(x); }, 0.05, false},
        {"GetXZDKAllArea", [&](double& x) { GetXZDKAllArea(x); }, 0.03, false},
        {"GetGHDKAllArea(ids)", [&](double& x) { GetGHDKAllArea(all, x); }, 0.05, false},
        {"GetXZDKAllArea(ids)", [&](double& x) { GetXZDKAllArea(all, x); }, 0.03, false},
        {"GetDKAreaByClass", [&](double& x) { GetDKAreaByClass(L"R", all, x); }, 0.04, false},
        {"GetDKAreaByCompareClass", [&](double& x) { GetDKAreaByCompareClass(L"E1", all, x); },
         0.04, false},
        {"GetDKAreaByClass(list)",
         [&](double& x) {
             CStringArray classes;
             classes.Add(L"R");
             GetDKAreaByClass(classes, x, 0);
         },
         0.01, false},
        {"FGetHArea", [&](double& x) { FGetHArea(all, x); }, 0.04, true},
        {"FGetEArea", [&](double& x) { FGetEArea(all, x); }, 0.04, true},
    };
    for (const Case& k : cases) {
        double area = 2;
        k.total(area);
        EXPECT_NEAR(area, k.resets ? k.value : 2 + k.value, 1e-12) << k.name;
        // Twice without resetting: an accumulating total doubles.
        area = 0;
        k.total(area);
        k.total(area);
        EXPECT_NEAR(area, k.resets ? k.value : 2 * k.value, 1e-12) << k.name;
    }
}

// The older totals read "地块坡度", the GIS ones "FN_ZRKS": on a current record both reach
// the same field, on a second-generation record they part.
TEST_F(ClassTotalsTest, PopulationFields) {
    AcDbObjectId a = rect(0, 0, 10, 10);
    planned(a, {{dk::FN_ZRKS, L"120"}});
    AcDbObjectId b = rect(20, 0, 30, 10);
    planned(b, {{dk::FN_ZRKS, L"35.9"}});  // the integer part
    AcDbObjectId c = rect(40, 0, 50, 10);
    current(c, {{dk::FN_ZRKS, L"30"}});
    AcDbObjectId old = rect(60, 0, 70, 10);
    secondGeneration(old, {{dk::LBL_ZRKS, L"50"}, {dk::LBL_DKPD, L"7"}});

    int n = 1000;
    GetGHDKAllRKS(n);
    EXPECT_EQ(n, 1155);
    n = 1000;
    GetGHDKAllRKSForGIS(n);
    EXPECT_EQ(n, 1155);
    n = 1000;
    GetXZDKAllRKS(n);
    EXPECT_EQ(n, 1030);
    n = 1000;
    GetXZDKAllRKSForGIS(n);
    EXPECT_EQ(n, 1030);
    // The list forms take their kind only; the second-generation parcel is a planned one
    // whose total population is "总人口数", not the "地块坡度" of the first generation.
    n = 0;
    GetGHDKAllRKSForGIS(ids({a, c, old}), n);
    EXPECT_EQ(n, 170);
    n = 0;
    GetXZDKAllRKSForGIS(ids({a, c, old}), n);
    EXPECT_EQ(n, 30);
    n = 5;
    GetGHDKAllRKSForGIS(AcDbObjectIdArray(), n);
    EXPECT_EQ(n, 5);
}

TEST_F(ClassTotalsTest, SingleClassByPrefixOrWholeCode) {
    AcDbObjectIdArray parcels = ids({parcel(L"R21", 0), parcel(L"R22", 20), parcel(L"R1", 40),
                                     parcel(L" r2 ", 60), parcel(L"R", 80), parcel(L" R2 ", 100)});
    struct Case {
        const wchar_t* cls;
        double prefix, whole;
    };
    const Case cases[] = {
        {L"R", 0.05, 0.01},  {L"R2", 0.03, 0.01}, {L" R2 ", 0.03, 0.01}, {L"R21", 0.01, 0.01},
        {L"r2", 0.01, 0.01}, {L"", 0, 0},         {L"  ", 0, 0},         {L"R211", 0, 0},
    };
    for (const Case& k : cases) {
        double area = 1;
        GetDKAreaByClass(k.cls, parcels, area);
        EXPECT_NEAR(area, 1 + k.prefix, 1e-12) << k.cls;
        area = 1;
        GetDKAreaByCompareClass(k.cls, parcels, area);
        EXPECT_NEAR(area, 1 + k.whole, 1e-12) << k.cls;
    }
}

TEST_F(ClassTotalsTest, ClassListCountsAParcelOncePerMatchingClass) {
    AcDbObjectId r21 = parcel(L"R21", 0);
    AcDbObjectId g1 = parcel(L"G1", 20);
    AcDbObjectId status = rect(40, 0, 60, 10);  // 0.02 ha
    current(status, {{dk::FS_DKXZ, L"R21"}});
    CStringArray classes;
    classes.Add(L"R");
    classes.Add(L"R2");
    classes.Add(L"G");
    double area = 1;
    GetDKAreaByClass(classes, area, 0);
    EXPECT_NEAR(area, 1 + 0.01 * 2 + 0.01, 1e-12);
    area = 0;
    GetDKAreaByClass(classes, area, 1);
    EXPECT_NEAR(area, 0.02 * 2, 1e-12);
    area = 0;
    GetDKAreaByClass(classes, ids({r21, status}), area, 0);
    EXPECT_NEAR(area, 0.02, 1e-12);
    area = 0;
    GetDKAreaByClass(classes, ids({g1, status}), area, 1);
    EXPECT_NEAR(area, 0.04, 1e-12);
}

// Within the square 0..100: "H" to "H11" take a listed crossing parcel's part inside and
// every other parcel's record area; "H2" to "E3" measure their class within the boundary.
TEST_F(ClassTotalsTest, BoundaryForms) {
    AcDbObjectId boundary = rect(0, 0, 100, 100);
    auto draw = [&](const wchar_t* cls, double x0, double y0, double x1, double y1) {
        AcDbObjectId id = rect(x0, y0, x1, y1);
        planned(id, {{dk::FS_DKXZ, cls}});
        return id;
    };
    AcDbObjectId inside = draw(L"R21", 10, 10, 30, 30);     // 0.04
    AcDbObjectId listed = draw(L"H11", 90, 10, 110, 30);    // 0.02 of 0.04 inside
    AcDbObjectId unlisted = draw(L"R22", 90, 40, 110, 60);  // across, not listed
    AcDbObjectId away = draw(L"M1", 300, 0, 320, 20);       // outside, not listed
    AcDbObjectId h2 = draw(L"H21", 90, 70, 110, 90);        // across
    AcDbObjectId h2away = draw(L"H2", 300, 40, 320, 60);    // outside
    AcDbObjectId e = draw(L"E1", 40, 40, 50, 50);           // 0.01
    AcDbObjectIdArray parcels = ids({inside, listed, unlisted, away, h2, h2away, e});
    AcDbObjectIdArray cut = ids({listed, h2});
    int drawn = entityCount();

    using BoundaryTotal =
        int (*)(AcDbObjectId, const AcDbObjectIdArray&, const AcDbObjectIdArray&, double&);
    const std::tuple<const char*, BoundaryTotal, double> cases[] = {
        {"H", FGetHArea, 0.04 + 0.02 + 0.04 + 0.04 + 0.02 + 0.04},
        {"H1", FGetH1Area, 0.04 + 0.02 + 0.04 + 0.04},
        {"H11", FGetH11Area, 0.04 + 0.02 + 0.04 + 0.04},
        {"H2", FGetH2Area, 0.02},
        {"H3", FGetH3Area, 0},
        {"E", FGetEArea, 0.01},
        {"E1", FGetE1Area, 0.01},
        {"E2", FGetE2Area, 0},
    };
    for (const auto& [name, total, expected] : cases) {
        double area = 3;
        EXPECT_EQ(total(boundary, parcels, cut, area), 1);
        EXPECT_NEAR(area, expected, 1e-9) << name;
    }
    EXPECT_EQ(entityCount(), drawn);
}

}  // namespace
