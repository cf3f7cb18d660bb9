// Simple items, GIS records and raw application xdata, checked against the stored xdata
// read back through the host, not through the library under test.
#include <string>
#include <utility>
#include <vector>

#include "host/arx/acutads.h"
#include "host/arx/dbsymtb.h"
#include "host/db/PackedXdata.h"
#include "host/db/TextCodec.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "tests/support/KplanTest.h"

using ARX_DATA::ArxDbgAppXdata;
using ARX_DATA::CFGisXData;
using ARX_DATA::CFSimpleXData;

namespace {

using Items = std::vector<std::pair<int, std::wstring>>;

// The stored xdata of one application (or all) as (group code, string) pairs.
Items stored(AcDbObjectId id, const ACHAR* app = nullptr) {
    Items items;
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) return items;
    resbuf* rb = obj->xData(app);
    obj->close();
    for (resbuf* p = rb; p; p = p->rbnext) {
        items.emplace_back(p->restype, p->resval.rstring ? p->resval.rstring : L"");
    }
    acutRelRb(rb);
    return items;
}

// Writes raw xdata as a user of the host would, registering the names first.
void writeRaw(AcDbObjectId id, const Items& items) {
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    for (const auto& [code, text] : items) {
        resbuf* rb = acutBuildList(code, text.c_str(), 0);
        (tail ? tail->rbnext : head) = rb;
        tail = rb;
    }
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(obj->setXData(head), Acad::eOk);
    obj->close();
    acutRelRb(head);
}

std::vector<std::wstring> strings(const CStringArray& list) {
    std::vector<std::wstring> out;
    for (const CString& s : list)
        out.push_back(s.wstr());
    return out;
}

bool registered(AcDbDatabase* database, const ACHAR* app) {
    AcDbRegAppTable* table = nullptr;
    if (database->getRegAppTable(table, AcDb::kForRead) != Acad::eOk) return false;
    bool has = table->has(app);
    table->close();
    return has;
}

class XDataTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        parcel = addRectangle(0, 0, 100, 50);
        for (const ACHAR* app : {L"FAPP_GHDK", L"FAPP_XZDK", L"FAPP_ENTCODE", L"地块边界",
                                 L"地块属性", L"FS_Standard", L"OTHER"}) {
            registerApp(app);
        }
    }
    AcDbObjectId parcel;
};

TEST_F(XDataTest, CreatedRecordHasTheDocumentedLayout) {
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FAPP_GHDK", L"", L"控规地块"), 1);
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_DKBH", L"A-01"), 1);
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FD_RJL", L"1.5"), 1);
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_DKBH", L"A-02"), 1);  // replaced in place

    Items expected = {{1001, L"FAPP_GHDK"}, {1000, L"控规地块"}, {1002, L"{"},   {1000, L"FS_DKBH"},
                      {1000, L"A-02"},      {1000, L"FD_RJL"},   {1000, L"1.5"}, {1002, L"}"}};
    EXPECT_EQ(stored(parcel, L"FAPP_GHDK"), expected);

    CString head;
    EXPECT_EQ(CFSimpleXData::GetFrom(parcel, L"FAPP_GHDK", head), 1);
    EXPECT_EQ(head, L"控规地块");
}

TEST_F(XDataTest, SimpleItemAndRecordShareOneApplication) {
    // A current-status parcel: the marker is written first, then fields go to the
    // existing record, then the marker is written again.
    ASSERT_EQ(CFSimpleXData::SetTo(parcel, L"FAPP_XZDK", L"现状地块="), 1);
    EXPECT_EQ(stored(parcel, L"FAPP_XZDK"), (Items{{1001, L"FAPP_XZDK"}, {1000, L"现状地块="}}));

    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_DKXZ", L"R2", L""), 1);
    ASSERT_EQ(CFSimpleXData::SetTo(parcel, L"FAPP_XZDK", L"现状地块="), 1);
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_DKBH", L"X-1", L""), 1);

    Items expected = {{1001, L"FAPP_XZDK"}, {1000, L"现状地块="}, {1002, L"{"},
                      {1000, L"FS_DKXZ"},   {1000, L"R2"},        {1000, L"FS_DKBH"},
                      {1000, L"X-1"},       {1002, L"}"}};
    EXPECT_EQ(stored(parcel, L"FAPP_XZDK"), expected);

    CString value, app;
    EXPECT_EQ(CFGisXData::GetFrom(parcel, L"FS_DKXZ", value, app), 1);
    EXPECT_EQ(value, L"R2");
    EXPECT_EQ(app, L"FAPP_XZDK");
    EXPECT_EQ(CFSimpleXData::GetFrom(parcel, L"FAPP_XZDK", value), 1);
    EXPECT_EQ(value, L"现状地块=");
}

TEST_F(XDataTest, SimpleSetToReplacesAnyOtherBlockWhole) {
    writeRaw(parcel, {{1001, L"地块边界"}, {1000, L"地块编号"}, {1000, L"A1"}});
    ASSERT_EQ(CFSimpleXData::SetTo(parcel, L"地块边界", L"x"), 1);
    EXPECT_EQ(stored(parcel, L"地块边界"), (Items{{1001, L"地块边界"}, {1000, L"x"}}));
}

TEST_F(XDataTest, FieldWriteWithoutApplicationFindsTheExistingRecord) {
    struct Case {
        const char* name;
        Items before;
        const ACHAR* field;
        int result;
        const ACHAR* app;  // where the field must end up; null when nowhere
    };
    const Case cases[] = {
        {"the record that has the field",
         {{1001, L"FAPP_ENTCODE"},
          {1000, L""},
          {1002, L"{"},
          {1000, L"FS_ENTCODE"},
          {1000, L"7"},
          {1002, L"}"},
          {1001, L"FAPP_GHDK"},
          {1000, L"控规地块"},
          {1002, L"{"},
          {1002, L"}"}},
         L"FS_ENTCODE",
         1,
         L"FAPP_ENTCODE"},
        {"the first record other than FAPP_ENTCODE",
         {{1001, L"FAPP_ENTCODE"},
          {1000, L""},
          {1002, L"{"},
          {1002, L"}"},
          {1001, L"地块属性"},
          {1000, L""},
          {1002, L"{"},
          {1002, L"}"},
          {1001, L"FAPP_GHDK"},
          {1000, L""},
          {1002, L"{"},
          {1002, L"}"}},
         L"FS_DKBH",
         1,
         L"地块属性"},
        {"FAPP_ENTCODE when it is the only record",
         {{1001, L"FAPP_ENTCODE"}, {1000, L""}, {1002, L"{"}, {1002, L"}"}},
         L"FS_DKBH",
         1,
         L"FAPP_ENTCODE"},
        {"a FAPP_ marker item becomes the record",
         {{1001, L"FS_Standard"}, {1000, L"1"}, {1001, L"FAPP_XZDK"}, {1000, L"现状地块="}},
         L"FS_DKBH",
         1,
         L"FAPP_XZDK"},
        {"no record and no marker: nothing is created",
         {{1001, L"地块边界"},
          {1000, L"地块编号"},
          {1000, L"A1"},
          {1001, L"FS_Standard"},
          {1000, L"1"}},
         L"FS_DKBH",
         0,
         nullptr},
        {"a bare entity gets nothing", {}, L"FS_DKBH", 0, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AcDbObjectId id = addRectangle(0, 0, 10, 10);
        if (!c.before.empty()) writeRaw(id, c.before);
        Items all = stored(id);
        EXPECT_EQ(CFGisXData::SetTo(id, c.field, L"v"), c.result);
        CString value, app;
        if (c.app) {
            EXPECT_EQ(CFGisXData::GetFrom(id, c.field, value, app), 1);
            EXPECT_EQ(value, L"v");
            EXPECT_EQ(app, c.app);
        } else {
            EXPECT_EQ(stored(id), all) << "a failed write must leave the xdata as it was";
        }
    }
}

TEST_F(XDataTest, CreationFormIsToldFromAFieldWrite) {
    struct Case {
        const char* name;
        const ACHAR *first, *second, *third;
        const ACHAR* app;    // the application carrying the result
        const ACHAR* field;  // a field the call wrote, or null for a created record
    };
    const Case cases[] = {
        {"label not registered: creation", L"FAPP_GHDK", L"", L"控规地块", L"FAPP_GHDK", nullptr},
        {"empty value under a FAPP_ name: field write", L"FS_BZ", L"", L"FAPP_GHDK_NEW",
         L"FAPP_GHDK_NEW", L"FS_BZ"},
        {"empty value under a registered name: field write", L"FS_BZ", L"", L"OTHER", L"OTHER",
         L"FS_BZ"},
        {"non-empty value: field write", L"FS_BZ", L"备注", L"FAPP_GHDK", L"FAPP_GHDK", L"FS_BZ"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AcDbObjectId id = addRectangle(0, 0, 10, 10);
        ASSERT_EQ(CFGisXData::SetTo(id, c.first, c.second, c.third), 1);
        CStringArray apps;
        CFSimpleXData::GetAllAppNames(id, apps);
        EXPECT_EQ(strings(apps), std::vector<std::wstring>{c.app});
        CString head, value;
        ASSERT_EQ(CFSimpleXData::GetFrom(id, c.app, head), 1);
        if (c.field == nullptr) {
            EXPECT_EQ(head, c.third);
            CStringArray a, f;
            EXPECT_EQ(CFGisXData::GetAllXDatas(id, a, f), 0);
        } else {
            EXPECT_EQ(head, L"");
            EXPECT_EQ(CFGisXData::GetFrom(id, c.field, value), 1);
            EXPECT_EQ(value, c.second);
        }
    }
}

TEST_F(XDataTest, CreationOnAnExistingRecordKeepsItsFields) {
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_DKBH", L"A-1", L"FAPP_GHDK"), 1);
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FAPP_GHDK", L"", L"分规地块"), 1);
    CString head, value;
    EXPECT_EQ(CFSimpleXData::GetFrom(parcel, L"FAPP_GHDK", head), 1);
    EXPECT_EQ(head, L"分规地块");
    EXPECT_EQ(CFGisXData::GetFrom(parcel, L"FS_DKBH", value), 1);
    EXPECT_EQ(value, L"A-1");
}

TEST_F(XDataTest, ManyFieldsGoInOneWriteOrNotAtAll) {
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FAPP_GHDK", L"", L"控规地块"), 1);
    CStringArray keys, values;
    for (const ACHAR* k : {L"FS_DKBH", L"FS_DKXZ", L"FD_RJL"})
        keys.Add(k);
    for (const ACHAR* v : {L"B-3", L"B1", L"2.0"})
        values.Add(v);
    ASSERT_EQ(CFGisXData::SetTo(parcel, keys, values), 1);

    CStringArray apps, fields, read;
    EXPECT_EQ(CFGisXData::GetAllXDatas(parcel, apps, fields, read), 3);
    EXPECT_EQ(strings(fields), strings(keys));
    EXPECT_EQ(strings(read), strings(values));
    EXPECT_EQ(strings(apps), (std::vector<std::wstring>{L"FAPP_GHDK", L"FAPP_GHDK", L"FAPP_GHDK"}));

    Items before = stored(parcel);
    CStringArray shortValues;
    shortValues.Add(L"only one");
    EXPECT_EQ(CFGisXData::SetTo(parcel, keys, shortValues), 0);
    CStringArray badKeys;
    badKeys.Add(L"FS_BZ");
    badKeys.Add(L"");
    CStringArray twoValues;
    twoValues.Add(L"x");
    twoValues.Add(L"y");
    EXPECT_EQ(CFGisXData::SetTo(parcel, badKeys, twoValues), 0);
    EXPECT_EQ(stored(parcel), before);
}

TEST_F(XDataTest, CopyingRecordsWithTheirApplications) {
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_DKBH", L"C-9", L"FAPP_GHDK"), 1);
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_ENTCODE", L"42", L"FAPP_ENTCODE"), 1);
    CStringArray apps, fields, values;
    ASSERT_EQ(CFGisXData::GetAllXDatas(parcel, apps, fields, values), 2);

    AcDbObjectId target = addRectangle(0, 0, 5, 5);
    ASSERT_EQ(CFGisXData::SetTo(target, apps, fields, values), 1);
    CString value, app;
    EXPECT_EQ(CFGisXData::GetFrom(target, L"FS_ENTCODE", value, app), 1);
    EXPECT_EQ(value, L"42");
    EXPECT_EQ(app, L"FAPP_ENTCODE");
    EXPECT_EQ(CFGisXData::GetFrom(target, L"FS_DKBH", value, app), 1);
    EXPECT_EQ(app, L"FAPP_GHDK");
}

TEST_F(XDataTest, ReadersSeeOnlyWhatIsThere) {
    writeRaw(parcel, {{1001, L"地块边界"},
                      {1000, L"地块编号"},
                      {1000, L"A1"},
                      {1001, L"FS_Standard"},
                      {1000, L"1"}});
    CStringArray apps, fields;
    EXPECT_EQ(CFGisXData::GetAllXDatas(parcel, apps, fields), 0) << "a label list is no record";
    CString value = L"unchanged";
    EXPECT_EQ(CFGisXData::GetFrom(parcel, L"地块编号", value), 0);
    EXPECT_EQ(value, L"unchanged");
    EXPECT_EQ(CFSimpleXData::GetFrom(parcel, L"FAPP_GHDK", value), 0);
    EXPECT_EQ(CFSimpleXData::GetFrom(parcel, L"fs_standard", value), 1) << "names ignore case";
    EXPECT_EQ(value, L"1");
    EXPECT_EQ(CFSimpleXData::GetAllAppNames(parcel, apps), 2);
    EXPECT_EQ(strings(apps), (std::vector<std::wstring>{L"地块边界", L"FS_Standard"}));
}

TEST_F(XDataTest, DeadIdsFailEverywhere) {
    AcDbObjectId erased = addRectangle(0, 0, 1, 1);
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(ent, erased, AcDb::kForWrite), Acad::eOk);
    ent->erase();
    ent->close();
    for (AcDbObjectId id : {AcDbObjectId(), erased}) {
        CString value;
        CStringArray a, f;
        EXPECT_EQ(CFSimpleXData::SetTo(id, L"FAPP_XZDK", L"x"), 0);
        EXPECT_EQ(CFSimpleXData::GetFrom(id, L"FAPP_XZDK", value), 0);
        EXPECT_EQ(CFSimpleXData::GetAllAppNames(id, a), 0);
        EXPECT_EQ(CFGisXData::SetTo(id, L"FS_DKBH", L"1", L"FAPP_GHDK"), 0);
        EXPECT_EQ(CFGisXData::GetFrom(id, L"FS_DKBH", value), 0);
        EXPECT_EQ(CFGisXData::GetAllXDatas(id, a, f), 0);
    }
}

TEST_F(XDataTest, WritesRegisterTheirApplications) {
    const ACHAR* fresh[] = {L"FAPP_NEW_A", L"FAPP_NEW_B", L"FAPP_NEW_C"};
    for (const ACHAR* app : fresh)
        ASSERT_FALSE(registered(database(), app));
    EXPECT_EQ(CFSimpleXData::SetTo(parcel, fresh[0], L"v"), 1);
    EXPECT_EQ(CFGisXData::SetTo(parcel, L"FS_BZ", L"v", fresh[1]), 1);
    ArxDbgAppXdata data(fresh[2], database());
    resbuf* list = acutBuildList(1000, L"raw", 0);
    ASSERT_EQ(data.setResbufChain(list), Acad::eOk);
    acutRelRb(list);
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenObject(obj, parcel, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(data.setXdata(obj), Acad::eOk);
    obj->close();
    for (const ACHAR* app : fresh)
        EXPECT_TRUE(registered(database(), app));
    EXPECT_EQ(stored(parcel, fresh[2]), (Items{{1001, fresh[2]}, {1000, L"raw"}}));
}

TEST_F(XDataTest, EmptyAppXdataRemovesOnlyItsApplication) {
    writeRaw(parcel, {{1001, L"FAPP_GHDK"},
                      {1000, L"a"},
                      {1001, L"FAPP_XZDK"},
                      {1000, L"b"},
                      {1001, L"OTHER"},
                      {1000, L"c"}});
    struct Case {
        const ACHAR* remove;
        std::vector<std::wstring> left;
    };
    const Case cases[] = {
        {L"FAPP_XZDK", {L"FAPP_GHDK", L"OTHER"}},
        {L"fapp_ghdk", {L"OTHER"}},
        {L"NEVER_REGISTERED", {L"OTHER"}},  // nothing to remove, nothing registered
        {L"OTHER", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(CString(c.remove)));
        ArxDbgAppXdata empty(c.remove, database());
        EXPECT_TRUE(empty.isEmpty());
        AcDbObject* obj = nullptr;
        ASSERT_EQ(acdbOpenObject(obj, parcel, AcDb::kForWrite), Acad::eOk);
        EXPECT_EQ(empty.setXdata(obj), Acad::eOk);
        obj->close();
        CStringArray apps;
        CFSimpleXData::GetAllAppNames(parcel, apps);
        EXPECT_EQ(strings(apps), c.left);
    }
    EXPECT_FALSE(registered(database(), L"NEVER_REGISTERED"));
}

TEST_F(XDataTest, AppXdataReadsOneApplication) {
    writeRaw(parcel,
             {{1001, L"FAPP_GHDK"}, {1000, L"a"}, {1000, L"b"}, {1001, L"OTHER"}, {1000, L"c"}});
    ArxDbgAppXdata data(L"FAPP_GHDK", database());
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenObject(obj, parcel, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(data.getXdata(obj), Acad::eOk);
    obj->close();
    resbuf* list = data.allocResbufChain();
    Items items;
    for (resbuf* p = list; p; p = p->rbnext)
        items.emplace_back(p->restype, p->resval.rstring);
    acutRelRb(list);
    EXPECT_EQ(items, (Items{{1000, L"a"}, {1000, L"b"}}));
}

TEST_F(XDataTest, OversizedRecordIsRefusedAndOldDataKept) {
    ASSERT_EQ(CFGisXData::SetTo(parcel, L"FS_DKBH", L"A-1", L"FAPP_GHDK"), 1);
    Items before = stored(parcel);
    std::wstring big(9000, L'x');  // two bytes a character: past the 16 KiB limit
    EXPECT_EQ(CFGisXData::SetTo(parcel, L"FS_BZ", big.c_str(), L"FAPP_GHDK"), 0);
    EXPECT_EQ(stored(parcel), before);
}

}  // namespace

namespace {

// What a loader does with xdata it keeps packed, for strings (all GIS records hold).
void unpackStrings(const std::string& packed, db::ValueList& values) {
    values.clear();
    db::forEachPacked(packed, [&](int code, std::string_view text) {
        values.push_back(db::Value::string(code, db::utf8ToWide(text)));
    });
}

void pack(AcDbObjectId id, const Items& items) {
    std::string packed;
    for (const auto& [code, text] : items)
        db::appendPacked(packed, code, db::wideToUtf8(text));
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForWrite), Acad::eOk);
    obj->restorePackedXdata(packed, &unpackStrings);
    obj->close();
}

struct Reads {
    std::vector<std::pair<int, std::wstring>> fields;  // result and value per field asked
    std::vector<std::pair<int, std::wstring>> heads;   // result and head per application
    std::vector<std::wstring> apps;
    bool operator==(const Reads&) const = default;
};

Reads readAll(AcDbObjectId id) {
    Reads r;
    for (const ACHAR* field : {L"FS_DKBH", L"FS_DKXZ", L"FS_BZ", L"FD_YDMJ", L"地块编号", L""}) {
        CString value = L"-", app = L"-";
        int found = CFGisXData::GetFrom(id, field, value, app);
        r.fields.emplace_back(found, value.wstr() + L"|" + app.wstr());
    }
    for (const ACHAR* app : {L"FAPP_GHDK", L"fapp_xzdk", L"地块边界", L"OTHER"}) {
        CString head = L"-";
        r.heads.emplace_back(CFSimpleXData::GetFrom(id, app, head), head.wstr());
    }
    CStringArray apps;
    CFSimpleXData::GetAllAppNames(id, apps);
    r.apps = strings(apps);
    return r;
}

}  // namespace

// A field read on xdata the loader keeps packed finds what the decoded xdata gives, and
// leaves the rest packed.
TEST_F(XDataTest, PackedXdataReadsAsDecoded) {
    const Items kRecord = {
        {1001, L"FAPP_GHDK"}, {1000, L"控规地块"},   {1002, L"{"},
        {1000, L"FS_DKBH"},   {1000, L"城南-12"},    {1000, L"FS_DKXZ"},
        {1000, L"R2"},        {1000, L"FS_BZ"},      {1000, L"规划保留，含幼儿园"},
        {1000, L"FS_DKBH"},   {1000, L"second one"}, {1002, L"}"}};
    struct Case {
        const char* name;
        Items items;
    };
    std::vector<Case> cases = {
        {"one record", kRecord},
        {"a marker then a record",
         [&] {
             Items items = {{1001, L"FAPP_XZDK"}, {1000, L"现状地块="}};
             items.insert(items.end(), kRecord.begin(), kRecord.end());
             return items;
         }()},
        {"a label list and a record with a Chinese key",
         {{1001, L"地块边界"},
          {1000, L"地块编号"},
          {1000, L"A1"},
          {1001, L"OTHER"},
          {1000, L"head"},
          {1002, L"{"},
          {1000, L"地块编号"},
          {1000, L"甲-1"},
          {1002, L"}"}}},
        {"a broken record: a key without a value",
         {{1001, L"FAPP_GHDK"}, {1002, L"{"}, {1000, L"FS_DKBH"}, {1002, L"}"}}},
        {"something after the record",
         {{1001, L"FAPP_GHDK"},
          {1002, L"{"},
          {1000, L"FS_DKBH"},
          {1000, L"x"},
          {1002, L"}"},
          {1000, L"tail"}}},
        {"no braces", {{1001, L"FAPP_GHDK"}, {1000, L"FS_DKBH"}, {1000, L"x"}}},
        {"an empty value",
         {{1001, L"FAPP_GHDK"}, {1002, L"{"}, {1000, L"FS_BZ"}, {1000, L""}, {1002, L"}"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AcDbObjectId id = addRectangle(0, 0, 10, 10);
        writeRaw(id, c.items);
        Reads decoded = readAll(id);
        pack(id, c.items);
        EXPECT_EQ(readAll(id), decoded);
        AcDbObject* obj = nullptr;
        ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForRead), Acad::eOk);
        EXPECT_NE(obj->packedXdata(), nullptr) << "reading fields decodes nothing for good";
        obj->close();
        AcDbObjectId copy = kova::ent::Copy(id);
        EXPECT_EQ(readAll(copy), decoded) << "a copy reads as its original";
        ASSERT_EQ(acdbOpenObject(obj, copy, AcDb::kForRead), Acad::eOk);
        EXPECT_NE(obj->packedXdata(), nullptr) << "copying decodes nothing";
        obj->close();
        ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForRead), Acad::eOk);
        EXPECT_NE(obj->packedXdata(), nullptr) << "the original stays packed";
        obj->close();
    }
}
