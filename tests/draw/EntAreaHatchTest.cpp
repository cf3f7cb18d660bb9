// Temporary fills: made through the host's HATCH command with echo off, coloured, hidden,
// shown and erased together with the boundaries handed over.
#include "draw/EntAreaHatch.h"

#include <gtest/gtest.h>

#include "host/arx/dbhatch.h"
#include "host/arx/peek.h"
#include "host/db/CommandLine.h"
#include "host/kova/KovaCad.h"
#include "tests/support/KplanTest.h"

namespace {

class EntAreaHatchTest : public KplanTest {};

TEST_F(EntAreaHatchTest, AreaHatchFillsTheBoundaryWithTheColourGivenAndKeepsItOnTheList) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    int echo = -1;
    ASSERT_EQ(kova::cad::SetSysVar(L"CMDECHO", 1), 1);
    CFEntAreaHatch fills;
    EXPECT_EQ(fills.colorIndex(), 1);
    ASSERT_EQ(fills.AreaHatch(parcel, 3, 1, 1), 1);
    ASSERT_EQ(fills.hatches().length(), 2);
    EXPECT_EQ(fills.hatches()[0], parcel) << "the boundary first, as asked";
    const AcDbHatch* hatch = arx::peek<AcDbHatch>(fills.hatches()[1]);
    ASSERT_NE(hatch, nullptr);
    EXPECT_TRUE(hatch->isSolidFill());
    EXPECT_EQ(hatch->colorIndex(), 3);
    EXPECT_EQ(fills.colorIndex(), 3);
    EXPECT_EQ(hatch->numLoops(), 1);
    ASSERT_EQ(db::commandLine().commands().size(), 1u);
    EXPECT_EQ(db::commandLine().commands()[0],
              L".hatch solid <entity " + parcel.handle().text() + L"> \"\"");
    ASSERT_EQ(kova::cad::GetSysVar(L"CMDECHO", echo), 1);
    EXPECT_EQ(echo, 1) << "the echo is put back";

    // The one-argument form: colour 1.
    AcDbObjectId other = addCircle(50, 50, 5);
    ASSERT_EQ(fills.AreaHatch(other), 1);
    EXPECT_EQ(arx::peek<AcDbHatch>(fills.hatches()[2])->colorIndex(), 1);
    fills.SetHatchColor(5);
    EXPECT_EQ(arx::peek<AcDbHatch>(fills.hatches()[2])->colorIndex(), 1)
        << "a fill made keeps its colour";
}

TEST_F(EntAreaHatchTest, WhatCannotBeFilledGivesZeroButAKeptBoundaryStaysListed) {
    AcDbObjectId open = addPolyline({{0, 0}, {10, 0}, {10, 10}}, {}, false);
    CFEntAreaHatch fills;
    EXPECT_EQ(fills.AreaHatch(open, 2, 0, 1), 0) << "not enabled";
    EXPECT_EQ(fills.AreaHatch(AcDbObjectId(), 2, 1, 0), 0);
    EXPECT_EQ(fills.AreaHatch(open, 2, 1, 0), 0) << "the host finds no boundary";
    EXPECT_NE(transcript().find(L"Valid hatch boundary not found."), std::wstring::npos);
    ASSERT_EQ(fills.hatches().length(), 1);
    EXPECT_EQ(fills.hatches()[0], open);
}

TEST_F(EntAreaHatchTest, HideShowAndClearActOnEveryListedEntityAndCopiesShareNone) {
    AcDbObjectId parcel = addRectangle(0, 0, 10, 10);
    CFEntAreaHatch fills;
    ASSERT_EQ(fills.AreaHatch(parcel, 3, 1, 1), 1);
    CFEntAreaHatch copy = fills;
    copy.SetHatchColor(6);
    EXPECT_EQ(fills.colorIndex(), 3);
    AcDbObjectId hatch = fills.hatches()[1];

    EXPECT_EQ(fills.HideHatch(1), 1);
    EXPECT_EQ(arx::peek<AcDbEntity>(parcel)->visibility(), AcDb::kInvisible);
    EXPECT_EQ(arx::peek<AcDbEntity>(hatch)->visibility(), AcDb::kInvisible);
    EXPECT_EQ(fills.HideHatch(0), 1);
    EXPECT_EQ(arx::peek<AcDbEntity>(hatch)->visibility(), AcDb::kVisible);

    EXPECT_EQ(fills.ClearHatch(), 1);
    EXPECT_TRUE(parcel.isErased());
    EXPECT_TRUE(hatch.isErased());
    EXPECT_EQ(fills.hatches().length(), 2) << "the list is kept";
    EXPECT_EQ(fills.ClearHatch(), 0) << "the same ids again: nothing left to erase";
    EXPECT_EQ(copy.ClearHatch(), 0);
    EXPECT_EQ(CFEntAreaHatch().HideHatch(1), 0);
}

}  // namespace
