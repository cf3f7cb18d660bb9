// Block references with their attributes and the attribute definitions of blocks go to DXF
// and come back as the same typed objects, the file read again by ezdxf.
#include <gtest/gtest.h>

#include "host/arx/dbblkref.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "tests/host/dxf/DxfTestSupport.h"
#include "tests/support/KplanTest.h"

namespace {

class DxfAttributeTest : public KplanTest {
  protected:
    // The attribute block and a reference to it placed at (100, 200), doubled and
    // turned, owning both values.
    void drawBlockAndReference() {
        AcDbObjectId id = addAttributeBlock();
        auto* ref = new AcDbBlockReference({100, 200, 0}, id);
        ref->setScaleFactors(AcGeScale3d(2, 2, 1));
        ref->setRotation(0.5);
        auto* value = new AcDbAttribute({102, 206, 0}, L"A-01", L"DKBH");
        value->setInvisible(true);
        value->setFieldLength(12);
        ref->appendAttribute(value);
        ref->appendAttribute(new AcDbAttribute({102, 202, 0}, L"R21", L"DKXZ"));
        addEntity(ref);
    }
};

struct Attribute {
    std::wstring tag, text;
    int flags;
    double x, y;
    bool operator==(const Attribute&) const = default;
};

std::vector<Attribute> attributesOf(const AcDbBlockReference& ref) {
    std::vector<Attribute> found;
    for (AcDbObjectId id : ref.attributeIds()) {
        auto* a = arx::peek<AcDbAttribute>(id);
        EXPECT_NE(a, nullptr);
        if (a == nullptr) continue;
        EXPECT_EQ(a->ownerId(), ref.objectId());
        found.push_back({a->tagText(), a->text(), a->flags(), a->position().x, a->position().y});
    }
    return found;
}

TEST_F(DxfAttributeTest, ReferencesAndDefinitionsComeBackTyped) {
    drawBlockAndReference();
    std::string first = dxftest::saveText(*database());
    std::string error;
    auto loaded = dxftest::loadText(first, error);
    ASSERT_TRUE(loaded) << error;

    auto* space = arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId());
    ASSERT_NE(space, nullptr);
    AcDbBlockReference* ref = nullptr;
    for (AcDbObjectId id : space->entityIds()) {
        if (auto* r = arx::peek<AcDbBlockReference>(id)) ref = r;
    }
    ASSERT_NE(ref, nullptr) << first;
    auto* block = arx::peek<AcDbBlockTableRecord>(ref->blockTableRecord());
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->nameText(), L"地块指标图则");
    EXPECT_EQ(ref->position(), AcGePoint3d(100, 200, 0));
    EXPECT_EQ(ref->scaleFactors(), AcGeScale3d(2, 2, 1));
    EXPECT_NEAR(ref->rotation(), 0.5, 1e-12);
    EXPECT_FALSE(ref->sequenceEndId().isNull());
    EXPECT_EQ(attributesOf(*ref),
              (std::vector<Attribute>{{L"DKBH", L"A-01", AcDbAttributeTag::kInvisibleBit, 102, 206},
                                      {L"DKXZ", L"R21", 0, 102, 202}}));
    EXPECT_EQ(arx::peek<AcDbAttribute>(ref->attributeIds()[0])->fieldLength(), 12);

    std::vector<std::wstring> prompts;
    for (AcDbObjectId id : block->entityIds()) {
        if (auto* def = arx::peek<AcDbAttributeDefinition>(id))
            prompts.push_back(def->tagText() + L"=" + def->promptConst() + L"/" + def->text() +
                              (def->isPreset() ? L" preset" : L""));
    }
    EXPECT_EQ(prompts, (std::vector<std::wstring>{L"DKBH=地块编号/ preset", L"DKXZ=地块类别/R2"}));

    // Saved again, the file is the same.
    EXPECT_EQ(dxftest::firstDifference(dxftest::normalizedTags(first),
                                       dxftest::normalizedTags(dxftest::saveText(*loaded))),
              "");
}

TEST_F(DxfAttributeTest, EzdxfReadsTheAttributes) {
    drawBlockAndReference();
    std::string path = dxftest::makeTempFolder() + "/attributes.dxf";
    std::string error, output;
    ASSERT_TRUE(dxf::save(*database(), path, error)) << error;
    ASSERT_EQ(dxftest::runPython("list_attributes.py", {path}, output), 0) << output;
    EXPECT_EQ(output,
              "ATTDEF 地块指标图则 DKBH 地块编号 '' 8\n"
              "ATTDEF 地块指标图则 DKXZ 地块类别 'R2' 0\n"
              "INSERT 地块指标图则 (100.0, 200.0) 2.0 2.0 1.0 28.6479\n"
              "ATTRIB DKBH 'A-01' 1 (102.0, 206.0)\n"
              "ATTRIB DKXZ 'R21' 0 (102.0, 202.0)\n");
}

// ezdxf's own file: the block reference it wrote is read as one, with its attribute.
TEST_F(DxfAttributeTest, AReferenceEzdxfWroteIsTyped) {
    std::string error;
    auto loaded = dxf::load(dxftest::ezdxfDrawings() + "/full_r2010.dxf", error);
    ASSERT_TRUE(loaded) << error;
    std::vector<std::wstring> found;
    for (AcDbObjectId id : arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId())->entityIds()) {
        auto* ref = arx::peek<AcDbBlockReference>(id);
        if (ref == nullptr) continue;
        found.push_back(arx::peek<AcDbBlockTableRecord>(ref->blockTableRecord())->nameText());
        for (const Attribute& a : attributesOf(*ref))
            found.push_back(a.tag + L"=" + a.text);
        EXPECT_EQ(ref->position(), AcGePoint3d(10, 10, 0));
    }
    EXPECT_EQ(found, (std::vector<std::wstring>{L"标注块", L"编号=A-01"}));
}

// A reference to a block the file does not define stays as read, attributes and all.
TEST_F(DxfAttributeTest, AReferenceToAnUnknownBlockIsKeptAsRead) {
    drawBlockAndReference();
    std::string text = dxftest::saveText(*database());
    std::string name = "地块指标图则";
    std::size_t insert = text.find("AcDbBlockReference");
    ASSERT_NE(insert, std::string::npos);
    std::size_t at = text.find(name, insert);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, name.size(), "无此块");
    std::string error;
    auto loaded = dxftest::loadText(text, error);
    ASSERT_TRUE(loaded) << error;
    for (AcDbObjectId id : arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId())->entityIds())
        EXPECT_EQ(arx::peek<AcDbBlockReference>(id), nullptr);
    EXPECT_EQ(dxftest::firstDifference(dxftest::normalizedTags(text),
                                       dxftest::normalizedTags(dxftest::saveText(*loaded))),
              "");
}

}  // namespace
