// The layer names a drawing remembers, and the layers made for parcels, come back from
// the file: in the current version and in an older one written in a code page.
#include <gtest/gtest.h>

#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "host/kova/KovaDB.h"
#include "tests/host/dxf/DxfTestSupport.h"
#include "tests/support/KplanTest.h"

namespace {

class DxfLayerNamesTest : public KplanTest {};

TEST_F(DxfLayerNamesTest, RememberedNamesAndParcelLayersSurviveTheFile) {
    const wchar_t* entries[][2] = {
        {L"FL_YS_YDGH_R21", L"GH-R21"},
        {L"FL_FZ_YDXZ_E1", L"现状水域"},
        {L"FL_YS_YDGH_绿地", L"规划绿地边界"},
    };
    for (auto& e : entries)
        ASSERT_EQ(KovaDB::qmPutLayerNameIntoDict(e[0], e[1]), 1);
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(database()->getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* layer = new AcDbLayerTableRecord();
    layer->setName(L"现状水域");
    AcCmColor colour;
    colour.setRGB(127, 223, 255);
    layer->setColor(colour);
    layer->setLinetypeObjectId(database()->continuousLinetype());
    EXPECT_EQ(layers->add(layer), Acad::eOk);
    layer->close();
    layers->close();

    // ezdxf reads the same layers and names, and its audit finds nothing to mend.
    std::string path = dxftest::makeTempFolder() + "/names.dxf", error, output;
    ASSERT_TRUE(dxf::save(*database(), path, error)) << error;
    ASSERT_EQ(dxftest::runPython("list_layer_names.py", {path}, output), 0) << output;
    for (const char* line :
         {"LAYER 现状水域 141 127,223,255 Continuous\n", "NAME FL_YS_YDGH_R21 GH-R21\n",
          "NAME FL_FZ_YDXZ_E1 现状水域\n", "NAME FL_YS_YDGH_绿地 规划绿地边界\n"}) {
        EXPECT_NE(output.find(line), std::string::npos) << line << " in\n" << output;
    }

    for (const char* version : {"", "AC1015"}) {
        SCOPED_TRACE(version);
        std::string error;
        auto loaded = dxftest::loadText(dxftest::saveText(*database(), version), error);
        ASSERT_TRUE(loaded) << error;
        for (auto& e : entries) {
            CString name;
            EXPECT_EQ(KovaDB::qmGetLayerNameFromDict(e[0], name, loaded.get()), 1);
            EXPECT_EQ(name, CString(e[1]));
        }
        auto* table = arx::peek<AcDbLayerTable>(loaded->layerTableId());
        ASSERT_NE(table, nullptr);
        AcDbObjectId id;
        ASSERT_EQ(table->getAt(L"现状水域", id), Acad::eOk);
        auto* read = arx::peek<AcDbLayerTableRecord>(id);
        EXPECT_EQ(read->linetypeObjectId(), loaded->continuousLinetype());
        if (*version == 0) {
            EXPECT_EQ(read->color(), colour) << "a true colour in the current version";
        } else {
            EXPECT_EQ(read->color().colorIndex(), colour.colorIndex()) << "its index in R2000";
        }
    }
}

}  // namespace
