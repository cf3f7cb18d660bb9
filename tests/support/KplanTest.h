#pragma once
// The fixture of every test that touches a drawing: a fresh current document per
// test, an empty standards directory of its own, a scripted command line, helpers that
// draw what planners draw, and a check in TearDown that the test closed every object
// and released every list and selection set it used.
#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbmain.h"
#include "host/db/CommandLine.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/TempStandards.h"

class KplanTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    AcDbDatabase* database() const { return document_->database(); }
    AcApDocument* document() const { return document_; }
    // The user's answers, queued before the call that asks; a dry queue cancels.
    db::ScriptedInput& input() const { return *input_; }
    // The test's own standards directory, empty until the test writes files into it.
    TempStandards& standards() { return *standards_; }
    // Everything printed on the command line since the test began.
    const std::wstring& transcript() const { return db::commandLine().transcript(); }

    // Adds a closed polyline to model space (or the given block) and closes it.
    AcDbObjectId addPolyline(std::initializer_list<AcGePoint2d> points,
                             std::vector<double> bulges = {}, bool closed = true,
                             AcDbObjectId space = {});
    // The same from a list made at run time.
    AcDbObjectId addPolyline(const std::vector<AcGePoint2d>& points, std::vector<double> bulges,
                             bool closed = true, AcDbObjectId space = {});
    AcDbObjectId addRectangle(double x0, double y0, double x1, double y1, AcDbObjectId space = {});
    AcDbObjectId addCircle(double x, double y, double radius, AcDbObjectId space = {});
    // Adds any new entity to a space and closes it; the id, or null on failure.
    AcDbObjectId addEntity(AcDbEntity* entity, AcDbObjectId space = {});
    // The block "地块指标图则": a 10 x 5 frame and the attribute definitions of a parcel
    // number (tag "DKBH", prompt "地块编号", preset, at (1, 3)) and class ("DKXZ",
    // "地块类别", default "R2", at (1, 1)); its id. Defined once: later calls give it again.
    AcDbObjectId addAttributeBlock();
    // Registers an application name in the drawing's APPID table.
    void registerApp(const ACHAR* name);

  private:
    LeakCheck* leaks_ = nullptr;
    std::shared_ptr<db::ScriptedInput> input_;
    std::unique_ptr<TempStandards> standards_;
    AcApDocument* document_ = nullptr;
};
