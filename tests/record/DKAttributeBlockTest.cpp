// A parcel's record copied into the attributes of an attribute block reference, and the
// reference kept in sync with the record afterwards.
#include "record/DKAttributeBlock.h"

#include "host/arx/dbblkref.h"
#include "tests/record/ParcelFixture.h"

namespace {

class AttributeBlockTest : public ParcelTest {
  protected:
    // A reference to the attribute block owning attributes with these tags and values.
    AcDbObjectId reference(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> tags) {
        auto* ref = new AcDbBlockReference({200, 0, 0}, addAttributeBlock());
        double y = 0;
        for (const auto& [tag, value] : tags)
            ref->appendAttribute(new AcDbAttribute({201, y += 2, 0}, value, tag));
        return addEntity(ref);
    }
    // "TAG=value" of each attribute, in order.
    static std::vector<CString> shown(AcDbObjectId refId) {
        std::vector<CString> found;
        AcDbBlockReference* ref = nullptr;
        if (acdbOpenObject(ref, refId, AcDb::kForRead) != Acad::eOk) return found;
        std::vector<AcDbObjectId> ids = ref->attributeIds();
        ref->close();
        for (AcDbObjectId id : ids) {
            AcDbAttribute* attribute = nullptr;
            if (acdbOpenObject(attribute, id, AcDb::kForRead) != Acad::eOk) continue;
            ACHAR* text = attribute->textString();
            found.push_back(CString(attribute->tagConst()) + L"=" + text);
            acutDelString(text);
            attribute->close();
        }
        return found;
    }
};

TEST_F(AttributeBlockTest, TheRecordGoesIntoTheAttributesItNames) {
    struct Case {
        const char* what;
        Fields fields;  // of a planned parcel
        Fields attributes;
        int copied;
        std::vector<CString> after;
    };
    const Case cases[] = {
        {"keys and labels",
         {{L"FS_DKBH", L"A-01"}, {L"FS_DKXZ", L"R21"}, {L"FD_RJL", L"2.5"}},
         {{L"FS_DKBH", L""}, {L"地块类别", L""}, {L"容积率", L"0"}},
         3,
         {L"FS_DKBH=A-01", L"地块类别=R21", L"容积率=2.5"}},
        {"fields the record lacks and foreign tags are left alone",
         {{L"FS_DKBH", L"A-02"}},
         {{L"FS_DKXZ", L"R2"}, {L"DRAWN_BY", L"王工"}, {L"FS_DKBH", L"旧"}},
         1,
         {L"FS_DKXZ=R2", L"DRAWN_BY=王工", L"FS_DKBH=A-02"}},
        {"an empty value is a value", {{L"FS_BZ", L""}}, {{L"FS_BZ", L"旧备注"}}, 1, {L"FS_BZ="}},
        {"a custom field of the record",
         {{L"FS_GHDW", L"规划院"}},
         {{L"FS_GHDW", L""}},
         1,
         {L"FS_GHDW=规划院"}},
        {"no attributes", {{L"FS_DKBH", L"A-03"}}, {}, 0, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        AcDbObjectId parcel = planned(c.fields);
        AcDbObjectId ref = reference(c.attributes);
        EXPECT_EQ(FCopyDKToAttblk(parcel, ref), c.copied);
        EXPECT_EQ(shown(ref), c.after);
    }
}

TEST_F(AttributeBlockTest, OlderRecordsAreReadToo) {
    AcDbObjectId parcel = first({{L"地块编号", L"B-07"}, {L"地块类别", L"B1"}});
    AcDbObjectId ref = reference({{L"FS_DKBH", L""}, {L"地块类别", L""}});
    EXPECT_EQ(FCopyDKToAttblk(parcel, ref), 2);
    EXPECT_EQ(shown(ref), (std::vector<CString>{L"FS_DKBH=B-07", L"地块类别=B1"}));
}

TEST_F(AttributeBlockTest, UpdatingChangesOnlyWhatDiffers) {
    AcDbObjectId parcel = planned({{L"FS_DKBH", L"A-01"}, {L"FS_DKXZ", L"R21"}});
    // A ratio left from an earlier record: copying keeps it, keeping in sync does not.
    AcDbObjectId ref = reference(
        {{L"FS_DKBH", L""}, {L"FS_DKXZ", L""}, {L"FD_RJL", L"9"}, {L"DRAWN_BY", L"王工"}});
    EXPECT_EQ(FCopyDKToAttblk(parcel, ref), 2);
    EXPECT_EQ(shown(ref), (std::vector<CString>{L"FS_DKBH=A-01", L"FS_DKXZ=R21", L"FD_RJL=9",
                                                L"DRAWN_BY=王工"}));

    ASSERT_EQ(CDKBJXDInfo(parcel).SetData(L"FS_DKXZ", L"B1"), 1);
    EXPECT_EQ(FUpdateDataOfAttrBlockRef(ref, parcel), 2);
    EXPECT_EQ(shown(ref),
              (std::vector<CString>{L"FS_DKBH=A-01", L"FS_DKXZ=B1", L"FD_RJL=", L"DRAWN_BY=王工"}));
    EXPECT_EQ(FUpdateDataOfAttrBlockRef(ref, parcel), 0);  // in sync now
}

TEST_F(AttributeBlockTest, WhatIsNoParcelOrNoReferenceFails) {
    AcDbObjectId parcel = planned({{L"FS_DKBH", L"A-01"}});
    AcDbObjectId ref = reference({{L"FS_DKBH", L"旧"}});
    AcDbObjectId erasedParcel = planned({{L"FS_DKBH", L"A-09"}});
    erase(erasedParcel);
    AcDbObjectId erasedRef = reference({{L"FS_DKBH", L"旧"}});
    erase(erasedRef);
    AcDbObjectId bare = addRectangle(0, 0, 10, 10);  // a curve without a record
    struct Case {
        const char* what;
        AcDbObjectId parcel, ref;
    } cases[] = {
        {"erased parcel", erasedParcel, ref},
        {"curve without a record", bare, ref},
        {"null parcel", {}, ref},
        {"erased reference", parcel, erasedRef},
        {"a parcel as reference", parcel, parcel},
        {"null reference", parcel, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(FCopyDKToAttblk(c.parcel, c.ref), -1);
        EXPECT_EQ(FUpdateDataOfAttrBlockRef(c.ref, c.parcel), -1);
    }
    EXPECT_EQ(shown(ref), std::vector<CString>{L"FS_DKBH=旧"});
}

}  // namespace
