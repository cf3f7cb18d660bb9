// Host commands run from code: ZOOM moves the view of the working drawing, HATCH fills
// boundaries (DRAWORDER is tested with its callers in draw/); anything the
// host does not know is refused with a message, and every list built is released.
#include <gtest/gtest.h>

#include <cmath>

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbhatch.h"
#include "host/arx/peek.h"
#include "host/kova/KovaCad.h"
#include "tests/support/KplanTest.h"

namespace {

class CommandTest : public KplanTest {
  protected:
    AcDbDatabase::View view() const { return database()->view(); }
    void setView(double x, double y, double height, double aspect = 1.5) {
        database()->setView({x, y, height, aspect, true});
    }
};

TEST_F(CommandTest, ZoomWindowCentresAndFitsTheWindow) {
    struct Case {
        const char* what;
        ads_point a, b;
        double centerX, centerY, height;
    } cases[] = {
        // A tall window sets the height, a wide one the width (aspect 1.5).
        {"tall", {0, 0, 0}, {100, 300, 0}, 50, 150, 300},
        {"wide", {0, 0, 0}, {600, 100, 0}, 300, 50, 400},
        {"corners either way", {600, 100, 0}, {0, 0, 0}, 300, 50, 400},
        {"a line across", {10, 20, 0}, {40, 20, 0}, 25, 20, 20},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        setView(0, 0, 1000);
        EXPECT_EQ(acedCommand(RTSTR, L"._ZOOM", RTSTR, L"W", RTPOINT, c.a, RTPOINT, c.b, 0),
                  RTNORM);
        EXPECT_DOUBLE_EQ(view().centerX, c.centerX);
        EXPECT_DOUBLE_EQ(view().centerY, c.centerY);
        EXPECT_DOUBLE_EQ(view().height, c.height);
        EXPECT_DOUBLE_EQ(view().aspect, 1.5);
    }
}

TEST_F(CommandTest, ZoomExtentsShowsTheCurrentSpace) {
    setView(0, 0, 10);
    addRectangle(100, 100, 400, 200);
    addRectangle(-200, 150, -100, 500);
    ASSERT_EQ(acedCommand(RTSTR, L"_zoom", RTSTR, L"_E", RTNONE), RTNORM);
    EXPECT_DOUBLE_EQ(view().centerX, 100);
    EXPECT_DOUBLE_EQ(view().centerY, 300);
    EXPECT_DOUBLE_EQ(view().height, 400);
}

TEST_F(CommandTest, WhatTheHostDoesNotKnowIsRefused) {
    setView(5, 6, 70);
    ads_point a = {0, 0, 0}, b = {10, 10, 0};
    struct Case {
        const char* what;
        int result;
        const wchar_t* said;
    } cases[] = {
        {"unknown command", acedCommand(RTSTR, L"._FROBNICATE", 0),
         L"\nUnknown command \"._FROBNICATE\"."},
        {"zoom without option", acedCommand(RTSTR, L"ZOOM", 0),
         L"\nZOOM needs its option here: W with two corners, or E."},
        {"one corner", acedCommand(RTSTR, L"ZOOM", RTSTR, L"W", RTPOINT, a, 0),
         L"\nZOOM Window needs two corner points."},
        {"no size", acedCommand(RTSTR, L"ZOOM", RTSTR, L"W", RTPOINT, a, RTPOINT, a, 0),
         L"\nZoom window has no size."},
        {"other option", acedCommand(RTSTR, L"ZOOM", RTSTR, L"P", RTPOINT, a, RTPOINT, b, 0),
         L"\nInvalid option keyword for ZOOM: P"},
    };
    std::wstring expected;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.result, RTERROR);
        expected += c.said;
    }
    EXPECT_EQ(transcript(), expected);
    EXPECT_EQ(view().centerX, 5);
    EXPECT_EQ(view().height, 70);
    EXPECT_EQ(acedCmd(nullptr), RTERROR);
}

TEST_F(CommandTest, AViewTheHostCannotShowIsKeptSensible) {
    setView(1, 2, -5, 0);
    EXPECT_EQ(view().height, 1000);
    EXPECT_EQ(view().aspect, 1.5);
    EXPECT_TRUE(view().known);
}

}  // namespace

namespace {

// HATCH: a pattern, its scale and angle in degrees (or empty answers for 1 and 0), the
// boundary objects and the empty answer that ends the selection make one associative
// hatch in the current space; what it cannot fill is refused.
TEST_F(CommandTest, HatchFillsTheSelectedBoundariesWithThePatternAsked) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    AcDbObjectId island = addCircle(5, 5, 2);
    ads_name a, b, last;
    ASSERT_EQ(acdbGetAdsName(a, parcel), Acad::eOk);
    ASSERT_EQ(acdbGetAdsName(b, island), Acad::eOk);
    ASSERT_EQ(acedCommand(RTSTR, L"._HATCH", RTSTR, L"ansi31", RTREAL, 2.0, RTREAL, 45.0, RTENAME,
                          a, RTENAME, b, RTSTR, L"", RTNONE),
              RTNORM);
    ASSERT_EQ(kova::cad::GetLastEnt(last), 1);
    AcDbObjectId id;
    ASSERT_EQ(acdbGetObjectId(id, last), Acad::eOk);
    auto* hatch = arx::peek<AcDbHatch>(id);
    ASSERT_NE(hatch, nullptr);
    EXPECT_STREQ(hatch->patternName(), L"ANSI31");
    EXPECT_EQ(hatch->patternScale(), 2.0);
    EXPECT_NEAR(hatch->patternAngle(), M_PI / 4, 1e-15);
    EXPECT_TRUE(hatch->associative());
    EXPECT_EQ(hatch->numLoops(), 2);
    EXPECT_TRUE(arx::peekObject(island)->hasPersistentReactor(id));

    ASSERT_EQ(acedCommand(RTSTR, L"hatch", RTSTR, L"NET", RTSTR, L"", RTSTR, L"", RTENAME, a, RTSTR,
                          L"", RTNONE),
              RTNORM);
    kova::cad::GetLastEnt(last);
    acdbGetObjectId(id, last);
    EXPECT_EQ(arx::peek<AcDbHatch>(id)->patternScale(), 1.0) << "an empty answer takes 1";

    AcDbObjectId open = addPolyline({{0, 0}, {10, 0}, {10, 10}}, {}, false);
    ads_name o;
    acdbGetAdsName(o, open);
    struct Case {
        const char* what;
        int result;
        const wchar_t* said;
    } refused[] = {
        {"unknown pattern",
         acedCommand(RTSTR, L".hatch", RTSTR, L"NO_SUCH", RTENAME, a, RTSTR, L"", RTNONE),
         L"\nUnknown pattern name: NO_SUCH"},
        {"open boundary",
         acedCommand(RTSTR, L".hatch", RTSTR, L"solid", RTENAME, o, RTSTR, L"", RTNONE),
         L"\nValid hatch boundary not found."},
        {"no end of selection", acedCommand(RTSTR, L".hatch", RTSTR, L"solid", RTENAME, a, RTNONE),
         L"\nHATCH: select objects, then an empty answer to end the selection."},
    };
    for (const Case& c : refused) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.result, RTERROR);
        EXPECT_NE(transcript().find(c.said), std::wstring::npos) << transcript();
    }
    kova::cad::GetLastEnt(last);
    acdbGetObjectId(id, last);
    EXPECT_EQ(id, open) << "nothing was added";
}

}  // namespace
