#include "record/XDataAccess.h"

#include "host/arx/acutads.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDataSet.h"
#include "record/DKKeys.h"
#include "tests/support/KplanTest.h"
#include "tests/support/TempStandards.h"

class XDataAccessTest : public KplanTest {
  protected:
    // A parcel carrying simple items of the given applications.
    AcDbObjectId parcelWith(std::initializer_list<const wchar_t*> apps) {
        AcDbObjectId id = addRectangle(0, 0, 10, 10);
        for (const wchar_t* app : apps)
            ARX_DATA::CFSimpleXData::SetTo(id, app, L"x");
        return id;
    }
    // A parcel with a GIS record holding one field.
    AcDbObjectId record(const wchar_t* app, const wchar_t* field, const wchar_t* value) {
        AcDbObjectId id = addRectangle(0, 0, 10, 10);
        ARX_DATA::CFGisXData::SetTo(id, app, L"", L"控规地块");
        ARX_DATA::CFGisXData::SetTo(id, field, value, app);
        return id;
    }
};

TEST_F(XDataAccessTest, RecordGenerationFollowsTheCheckOrder) {
    struct Case {
        std::initializer_list<const wchar_t*> apps;
        int generation;
    } cases[] = {
        {{dk::FAPP_GHDK}, 3},    {{dk::FAPP_GHDK_TX}, 3},
        {{dk::FAPP_GHDK_FJ}, 0}, {{dk::APP_DKBJ, dk::FAPP_XZDK}, 3},
        {{dk::APP_DKSX}, 2},     {{dk::APP_DKBJ, dk::APP_DKSX}, 2},
        {{dk::APP_DKBJ}, 1},     {{dk::FAPP_GHDK_FJ, dk::APP_DKBJ}, 1},
        {{L"FAPP_DKTC"}, 0},     {{}, 0},
    };
    for (const Case& c : cases) {
        AcDbObjectId id = parcelWith(c.apps);
        EXPECT_EQ(CheckDKDataVer(id), c.generation) << "case " << (&c - cases);
    }
    AcDbObjectId erased = parcelWith({dk::FAPP_GHDK});
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenObject(ent, erased, AcDb::kForWrite), Acad::eOk);
    ent->erase();
    ent->close();
    EXPECT_EQ(CheckDKDataVer(erased), 0);
    EXPECT_EQ(CheckDKDataVer(AcDbObjectId()), 0);

    EXPECT_EQ(FIsNewStandardDK(parcelWith({L"FS_Standard"})), 1);
    EXPECT_EQ(FIsNewStandardDK(parcelWith({dk::FAPP_GHDK})), 0);
}

TEST_F(XDataAccessTest, EntityAppNameSkipsTheEntityCode) {
    CString app = L"unchanged";
    EXPECT_EQ(FGetEntAppName(record(dk::FAPP_ENTCODE, dk::FS_ENTCODE, L"E1"), app), 0);
    EXPECT_EQ(app, CString(L"unchanged"));

    AcDbObjectId both = record(dk::FAPP_ENTCODE, dk::FS_ENTCODE, L"E1");
    ARX_DATA::CFGisXData::SetTo(both, dk::FAPP_XZDK, L"", L"现状地块");
    ARX_DATA::CFGisXData::SetTo(both, dk::FS_DKBH, L"A-01", dk::FAPP_XZDK);
    EXPECT_EQ(FGetEntAppName(both, app), 1);
    EXPECT_EQ(app, CString(dk::FAPP_XZDK));
}

TEST_F(XDataAccessTest, RegisteredRecordTypesWithoutDuplicates) {
    for (const wchar_t* name : {L"FAPP_GHDK", L"FAPP_XZDK", L"FAPP", L"XFAPP_GHDK", L"地块边界"}) {
        registerApp(name);
    }
    CStringArray apps;
    apps.Add(L"FAPP_GHDK");
    EXPECT_EQ(FGetRegFAppCurMap(apps), 1);
    ASSERT_EQ(apps.GetSize(), 2);
    EXPECT_EQ(apps[1], CString(L"FAPP_XZDK"));
}

TEST_F(XDataAccessTest, DictionaryKeysLoseTheirSlashes) {
    CString value;
    EXPECT_EQ(FReadDataFromDict(L"QMTEST", L"ab", value), 0);
    EXPECT_EQ(FWriteDataToDict(L"QMTEST", L"a/b", L"第一"), 1);
    EXPECT_EQ(FReadDataFromDict(L"QMTEST", L"ab", value), 1);
    EXPECT_EQ(value, CString(L"第一"));
    EXPECT_EQ(FWriteColorToDict(L"R2/B1", L"255,255,0"), 1);
    EXPECT_EQ(FReadColorToDict(L"R2B1", value), 1);
    EXPECT_EQ(value, CString(L"255,255,0"));
    EXPECT_EQ(FReadDataFromDict(L"FQMDKCOLOR", L"R/2B1", value), 1) << "the same dictionary";
}

TEST_F(XDataAccessTest, CopyAndDeleteXdata) {
    AcDbObjectId from = record(dk::FAPP_GHDK, dk::FS_DKBH, L"A-01");
    ARX_DATA::CFSimpleXData::SetTo(from, L"FS_Standard", L"");
    AcDbObjectId all = addRectangle(0, 0, 1, 1);
    AcDbObjectId records = addRectangle(0, 0, 1, 1);
    EXPECT_EQ(FSetObjXDataToTwo(from, all), 1);
    EXPECT_EQ(FSetOneXDataToTwo(from, records), 1);
    EXPECT_EQ(FIsNewStandardDK(all), 1);
    EXPECT_EQ(FIsNewStandardDK(records), 0) << "only GIS records travel";
    CString number;
    EXPECT_EQ(ARX_DATA::CFGisXData::GetFrom(records, dk::FS_DKBH, number), 1);
    EXPECT_EQ(number, CString(L"A-01"));
    EXPECT_EQ(FSetOneXDataToTwo(from, AcDbObjectId()), 0);

    EXPECT_EQ(FDelXData(all, L"FAPP_GHDK,FS_Standard"), 1);
    EXPECT_EQ(CheckDKDataVer(all), 0);
    EXPECT_EQ(FIsNewStandardDK(all), 0);
}

TEST_F(XDataAccessTest, AssociationStringRoundTrip) {
    AcDbObjectId sheet = addRectangle(0, 0, 100, 100);
    AcDbObjectId a = record(dk::FAPP_GHDK, dk::FS_ENTCODE, L"C1");
    AcDbObjectId b = addRectangle(0, 0, 1, 1);  // no code: its handle stands in
    AcDbObjectId c = record(dk::FAPP_GHDK, dk::FS_ENTCODE, L"C3");
    EXPECT_EQ(FWriteAssocDataToTZKDict(sheet, AcDbObjectIdArray()), 0);
    AcDbObjectIdArray parcels;
    for (AcDbObjectId id : {a, b, c})
        parcels.append(id);
    ASSERT_EQ(FWriteAssocDataToTZKDict(sheet, parcels), 1);

    CString data;
    ASSERT_EQ(FReadAssocDataFromTZKDict(sheet, data), 1);
    EXPECT_EQ(data, CString(L"1,C1|2,") + CString(b.handle().text()) + L"|3,C3");

    AcDbObjectIdArray candidates, matched;
    for (AcDbObjectId id : {c, b, a})
        candidates.append(id);
    ASSERT_EQ(FReadAssocDKFromTZKDict(sheet, candidates, matched), 1);
    EXPECT_EQ(matched.length(), 2);
    EXPECT_TRUE(matched.contains(a) && matched.contains(c));

    // A non-empty simple item of the same name is preferred to the dictionary.
    ARX_DATA::CFSimpleXData::SetTo(sheet, L"TZ_DKH_DKW", L"1,OLD");
    ASSERT_EQ(FReadAssocDataFromTZKDict(sheet, data), 1);
    EXPECT_EQ(data, CString(L"1,OLD"));
}

TEST_F(XDataAccessTest, RemoveInvalidIds) {
    AcDbObjectId keep = addRectangle(0, 0, 1, 1);
    AcDbObjectId gone = addRectangle(0, 0, 1, 1);
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenObject(ent, gone, AcDb::kForWrite), Acad::eOk);
    ent->erase();
    ent->close();
    AcDbObjectIdArray ids;
    ids.append(gone);
    ids.append(AcDbObjectId());
    ids.append(keep);
    EXPECT_EQ(FRemoveInValidId(ids), 1);
    EXPECT_EQ(ids[0], keep);
}

TEST_F(XDataAccessTest, FieldFileNamesAreSetTrimmed) {
    CString value;
    EXPECT_EQ(FGetValueFromFieldName(L"FAPP_GHDK", L"FILE", value), 0) << "no register yet";
    standards().write(L"参数配置/FAppDataSet.ini",
                      L"[FAPP_GHDK]\r\nFILE=控规地块属性.INI\r\nNAME=plain\r\nX=Data.TXT\r\n"
                      L"Y=main.xml\r\n",
                      TempStandards::Encoding::Gbk);
    struct Case {
        const wchar_t* key;
        const wchar_t* expected;
    } cases[] = {
        {L"FILE", L"控规地块属性"},
        {L"NAME", L"pla"},  // a set trim, not a suffix removal
        {L"X", L"data"},
        {L"Y", L"main"},
        {L"MISSING", L""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(FGetValueFromFieldName(L"FAPP_GHDK", c.key, value), 1);
        EXPECT_EQ(value, CString(c.expected)) << CString(c.key).ToUtf8();
    }
    EXPECT_EQ(FGetValueFromFieldName(L"", L"FILE", value), 0);
}

TEST_F(XDataAccessTest, DataCodes) {
    struct Case {
        const wchar_t* cls;
        int result;
        const wchar_t* code;
    } cases[] = {
        {L"R", 1, L"DR00000"},   {L"R2", 1, L"DR20000"},   {L"E1", 1, L"LE10000"},
        {L"R21", 1, L"DR20100"}, {L" h1 ", 1, L"Lh10000"}, {L"H11", 1, L"LH10100"},
        {L"e", 1, L"Le00000"},   {L"R2/B1", 0, L""},       {L"R211", 0, L""},
        {L"   ", 0, L""},
    };
    for (const Case& c : cases) {
        CString code = L"stale";
        EXPECT_EQ(FCalcDKDataCode(c.cls, code), c.result) << CString(c.cls).ToUtf8();
        EXPECT_EQ(code, CString(c.code)) << CString(c.cls).ToUtf8();
    }
}

TEST_F(XDataAccessTest, PlanningTypeNumbers) {
    struct Case {
        const wchar_t* cached;
        int number;
    } cases[] = {{L"FG,分区规划", 1},     {L"ZG,总体规划", 2},       {L"TX,城镇体系规划", 3},
                 {L"FJ,风景园林规划", 4}, {L"KG,控制性详细规划", 0}, {L"", 0}};
    for (const Case& c : cases) {
        CKovaDataSet::FSetNameDict_GHType(c.cached);
        EXPECT_EQ(FReadCurGHType(), c.number) << CString(c.cached).ToUtf8();
    }
}

TEST_F(XDataAccessTest, StringAndColourUtilities) {
    EXPECT_EQ(FStrHaveChinese(L"R21"), 0);
    EXPECT_EQ(FStrHaveChinese(L"二类居住"), 1);
    EXPECT_EQ(FStrHaveChinese(L"A-01地块"), 1);

    struct Range {
        const wchar_t* text;
        int found;
        const wchar_t *max, *min;
    } ranges[] = {
        {L"1.2-2.5", 1, L"2.5", L"1.2"},
        {L"≤24/36", 1, L"36", L"24"},
        {L"-0.5~1.0", 1, L"1.0", L"-0.5"},
        {L"高度 100", 1, L"100", L"100"},
        {L"无", 0, L"", L""},
    };
    for (const Range& r : ranges) {
        CString max, min;
        EXPECT_EQ(FGetMaxStrValueFromStr(r.text, max), r.found) << CString(r.text).ToUtf8();
        EXPECT_EQ(FGetMinStrValueFromStr(r.text, min), r.found);
        EXPECT_EQ(max, CString(r.max));
        EXPECT_EQ(min, CString(r.min));
    }

    struct Colour {
        const wchar_t* text;
        const wchar_t* number;
    } colours[] = {
        {L" 3 ", L"3"}, {L"(255,255,0)/2 *GH", L"(255,255,0)/2"}, {L"红", L""}, {L"12a", L"12"}};
    for (const Colour& c : colours) {
        CString number;
        FGetColorNumFromStr(c.text, number);
        EXPECT_EQ(number, CString(c.number)) << CString(c.text).ToUtf8();
    }
    EXPECT_EQ(FIndexToColorRef(1), 0x0000FFul) << "red in the low byte";
    EXPECT_EQ(FIndexToColorRef(5), 0xFF0000ul) << "blue in the third byte";
}

TEST_F(XDataAccessTest, DefaultClassComesFromTheTable) {
    EXPECT_EQ(FGetDftDKClass(), CString(L"KB"));
    standards().writeClassTable(L"R2:二类居住用地\r\nA1:行政办公用地\r\n");
    EXPECT_EQ(FGetDftDKClass(), CString(L"A1"));
    standards().writeClassTable(L"R2:二类居住用地\r\nKB:空白用地\r\n");
    EXPECT_EQ(FGetDftDKClass(), CString(L"KB"));
}

TEST_F(XDataAccessTest, ConfirmationPromptsAndKeywords) {
    struct Case {
        const wchar_t* answer;
        int defaultYes;
        int result;
        const wchar_t* prompt;
    } cases[] = {
        {L"", 1, 1, L"\n删除地块?[(Y)/(N)]<Y>:"},
        {L"", 0, 0, L"\n删除地块?[(Y)/(N)]<N>:"},
        {L"n", 1, 0, L"<Y>:"},
        {L"Y", 0, 1, L"<N>:"},
        {L"<esc>", 1, -1, L"<Y>:"},
    };
    for (const Case& c : cases) {
        input().push(c.answer);
        db::commandLine().clearTranscript();
        EXPECT_EQ(KovaIsConfirm(L"删除地块?", c.defaultYes), c.result)
            << CString(c.answer).ToUtf8();
        EXPECT_NE(transcript().find(c.prompt), std::wstring::npos)
            << CString(transcript()).ToUtf8();
    }
}
