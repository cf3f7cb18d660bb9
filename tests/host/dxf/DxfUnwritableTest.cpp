// An object of a kind DXF cannot carry from here (a region made in memory) makes the save
// fail with a message naming it, and the file on disk stays as it was; erased, it is no
// obstacle.
#include <gtest/gtest.h>

#include "host/arx/dbregion.h"
#include "host/dxf/Dxf.h"
#include "host/kova/KovaEnt.h"
#include "tests/host/dxf/DxfTestSupport.h"
#include "tests/support/KplanTest.h"

namespace {

class DxfUnwritableTest : public KplanTest {};

TEST_F(DxfUnwritableTest, ARegionFailsTheSaveAndLosesNothing) {
    std::string folder = dxftest::makeTempFolder();
    std::string target = folder + "/drawing.dxf";
    dxftest::writeFile(target, "previous drawing\n");
    addRectangle(0, 0, 10, 10);
    auto* region = new AcDbRegion;
    ASSERT_EQ(region->setLoops({{{{0, 0}, {1, 0}, {0, 1}}, {}}}), Acad::eOk);
    AcDbObjectId id = addEntity(region);
    std::string error;
    EXPECT_FALSE(dxf::save(*database(), target, error));
    char handle[24];
    std::snprintf(handle, sizeof handle, "%llX",
                  static_cast<unsigned long long>(id.handle().value()));
    EXPECT_EQ(error,
              target + ": REGION " + handle + ": kplan cannot write this kind of object to DXF");
    EXPECT_EQ(dxftest::readFile(target), "previous drawing\n");

    ASSERT_EQ(kova::ent::Erase(id), 1);
    EXPECT_TRUE(dxf::save(*database(), target, error)) << error;
}

}  // namespace
