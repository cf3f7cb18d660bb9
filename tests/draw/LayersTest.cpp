// Layers of the working drawing: made once with the continuous linetype and a clamped
// colour, found without regard to case, recoloured with the inverted result codes.
#include "draw/Layers.h"

#include <gtest/gtest.h>

#include "host/arx/dbsymtb.h"
#include "tests/support/KplanTest.h"

namespace {

class LayersTest : public KplanTest {
  protected:
    // The layer's record as stored; the test fails when there is none.
    AcCmColor colourOf(const wchar_t* name, AcDbObjectId* linetype = nullptr) {
        AcDbLayerTable* table = nullptr;
        EXPECT_EQ(database()->getLayerTable(table, AcDb::kForRead), Acad::eOk);
        AcDbLayerTableRecord* record = nullptr;
        Acad::ErrorStatus es = table->getAt(name, record, AcDb::kForRead);
        table->close();
        EXPECT_EQ(es, Acad::eOk) << CString(name);
        if (es != Acad::eOk) return {};
        AcCmColor colour = record->color();
        if (linetype) *linetype = record->linetypeObjectId();
        record->close();
        return colour;
    }
    AcDbObjectId layerId(const wchar_t* name) {
        AcDbLayerTable* table = nullptr;
        EXPECT_EQ(database()->getLayerTable(table, AcDb::kForRead), Acad::eOk);
        AcDbObjectId id;
        table->getAt(name, id);
        table->close();
        return id;
    }
};

TEST_F(LayersTest, NewLayersAreContinuousWithTheColourClamped) {
    struct Case {
        const wchar_t* name;
        int index;
        Adesk::UInt16 stored;  // 0 by block, 256 by layer
    } cases[] = {
        {L"GH-R21", 300, 256}, {L"GH-R22", 257, 256}, {L"GH-R2", 256, 256},
        {L"GH-B1", 1, 1},      {L"GH-B2", 0, 0},      {L"GH-B3", -5, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.name).ToUtf8());
        EXPECT_FALSE(FIsLayerExist(c.name));
        EXPECT_TRUE(FMakeLayer(c.name, c.index, L"DASHED"));
        EXPECT_TRUE(FIsLayerExist(c.name));
        AcDbObjectId linetype;
        EXPECT_EQ(colourOf(c.name, &linetype).colorIndex(), c.stored);
        EXPECT_EQ(linetype, database()->continuousLinetype()) << "the linetype name is ignored";
    }
    AcCmColor water;
    water.setRGB(127, 223, 255);
    EXPECT_TRUE(FMakeLayer(L"现状水域", water, L""));
    EXPECT_EQ(colourOf(L"现状水域"), water);

    // An existing layer is left as it is, whatever its case.
    EXPECT_TRUE(FIsLayerExist(L"gh-r21"));
    EXPECT_TRUE(FMakeLayer(L"gh-r21", 5, L"CONTINUOUS"));
    EXPECT_TRUE(FMakeLayer(L"现状水域", AcCmColor(), L""));
    EXPECT_EQ(colourOf(L"GH-R21").colorIndex(), 256);
    EXPECT_EQ(colourOf(L"现状水域"), water);

    // Names the host refuses add nothing.
    for (const wchar_t* bad : {L"", L"A/B", L"A:B"}) {
        EXPECT_FALSE(FMakeLayer(bad, 3, L"")) << CString(bad);
        EXPECT_FALSE(FIsLayerExist(bad));
    }
}

TEST_F(LayersTest, ChangingAColourReportsZeroOnSuccess) {
    AcCmColor red;
    red.setColorIndex(1);
    EXPECT_EQ(FChangeLayerColor(L"没有", red), 1);
    EXPECT_EQ(FChangeLayerColor(nullptr, red), 1);
    ASSERT_TRUE(FMakeLayer(L"GH-G1", 3, L""));
    EXPECT_EQ(FChangeLayerColor(L"GH-G1", red), 0);
    EXPECT_EQ(colourOf(L"GH-G1"), red);

    AcCmColor got;
    got.setColorIndex(9);
    EXPECT_EQ(FGetLayerColor(L"没有", got), 0);
    EXPECT_EQ(got.colorIndex(), 9) << "untouched";
    EXPECT_EQ(FGetLayerColor(L"gh-g1", got), 1);
    EXPECT_EQ(got, red);

    // A record that another caller has open cannot be written, but can be read while
    // that caller only reads.
    AcDbLayerTableRecord* reader = nullptr;
    ASSERT_EQ(acdbOpenObject(reader, layerId(L"GH-G1"), AcDb::kForRead), Acad::eOk);
    AcCmColor green;
    green.setColorIndex(3);
    EXPECT_EQ(FChangeLayerColor(L"GH-G1", green), 2);
    EXPECT_EQ(FGetLayerColor(L"GH-G1", got), 1);
    reader->close();
    AcDbLayerTableRecord* writer = nullptr;
    ASSERT_EQ(acdbOpenObject(writer, layerId(L"GH-G1"), AcDb::kForWrite), Acad::eOk);
    got.setColorIndex(9);
    EXPECT_EQ(FGetLayerColor(L"GH-G1", got), 0);
    EXPECT_EQ(got.colorIndex(), 9);
    writer->close();
    EXPECT_EQ(colourOf(L"GH-G1"), red);
}

}  // namespace
