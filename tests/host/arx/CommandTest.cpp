// Host commands run from code: ZOOM moves the view of the working drawing; anything the
// host does not know is refused with a message, and every list built is released.
#include <gtest/gtest.h>

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
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
