// An object of a kind DXF cannot carry from here (a region made in memory) makes the save
// fail with a message naming it, and the file on disk stays as it was; erased, it is no
// obstacle.
#include <gtest/gtest.h>

#include "host/arx/dbblkref.h"
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

    // A block reference made in memory is not written yet either: refused, not dropped.
    auto* ref = new AcDbBlockReference({0, 0, 0}, database()->modelSpaceId());
    ref->appendAttribute(new AcDbAttribute({0, 0, 0}, L"A-01", L"DKBH"));
    AcDbObjectId refId = addEntity(ref);
    std::string saved = dxftest::readFile(target);
    EXPECT_FALSE(dxf::save(*database(), target, error));
    EXPECT_NE(error.find(": INSERT "), std::string::npos) << error;
    EXPECT_EQ(dxftest::readFile(target), saved);
    ASSERT_EQ(kova::ent::Erase(refId), 1);
    EXPECT_TRUE(dxf::save(*database(), target, error)) << error;
}

}  // namespace
