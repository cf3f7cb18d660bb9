// Highlighting lists of entities, and erasing the highlight lines linked to polylines.
#include "draw/Highlight.h"

#include <gtest/gtest.h>

#include "host/kova/KovaDat.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

namespace {

class HighlightTest : public KplanTest {};

AcDbObjectIdArray list(std::initializer_list<AcDbObjectId> ids) {
    AcDbObjectIdArray array;
    for (AcDbObjectId id : ids)
        array.append(id);
    return array;
}

TEST_F(HighlightTest, HighlightsValidEntitiesAndEndsTheirHighlight) {
    AcDbObjectId a = addRectangle(0, 0, 10, 10), b = addCircle(5, 5, 2);
    AcDbObjectId gone = addRectangle(0, 0, 1, 1);
    ASSERT_EQ(kova::ent::Erase(gone), 1);
    EXPECT_EQ(kova_ent_HighLightIds(list({a, b, gone, AcDbObjectId()})), 2);
    EXPECT_TRUE(database()->isHighlighted(a));
    EXPECT_TRUE(database()->isHighlighted(b));
    EXPECT_FALSE(database()->isHighlighted(gone));
    EXPECT_EQ(kova_ent_UnHighLightIds(list({a})), 1);
    EXPECT_FALSE(database()->isHighlighted(a));
    EXPECT_TRUE(database()->isHighlighted(b));
    EXPECT_EQ(kova_ent_HighLightIds(AcDbObjectIdArray()), 0);
}

TEST_F(HighlightTest, DelBlueLineErasesTheLinkedHighlightLinesOnly) {
    AcDbObjectId p = addRectangle(0, 0, 10, 10), q = addRectangle(20, 0, 30, 10);
    AcDbObjectId other = addRectangle(40, 0, 50, 10);
    AcDbObjectId p1 = kova::ent::Copy(p), p2 = kova::ent::Copy(p), q1 = kova::ent::Copy(q);
    for (auto [line, copy] : {std::pair{p, p1}, {p, p2}, {q, q1}})
        ASSERT_EQ(kova::dat::PasteSoftId(line, kColorLineLink, copy), 1);
    // Another link of the same polyline is no highlight.
    ASSERT_EQ(kova::dat::PasteSoftId(p, L"填充色块", other), 1);

    EXPECT_EQ(KovaDelBlueLine(list({p, q, AcDbObjectId()})), 3);
    for (AcDbObjectId id : {p1, p2, q1})
        EXPECT_TRUE(id.isErased());
    for (AcDbObjectId id : {p, q, other})
        EXPECT_FALSE(id.isErased());
    AcDbObjectIdArray linked;
    EXPECT_EQ(kova::dat::GetSoftIds(p, kColorLineLink, linked), 0) << "the link is gone";
    EXPECT_EQ(kova::dat::GetSoftIds(p, L"填充色块", linked), 1);
    EXPECT_EQ(KovaDelBlueLine(p), 0) << "nothing left to erase";
    EXPECT_EQ(KovaDelBlueLine(AcDbObjectId()), 0);
}

}  // namespace
