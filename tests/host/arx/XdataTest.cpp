#include "host/arx/acutads.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbxrecrd.h"
#include "tests/support/KplanTest.h"

class XdataTest : public KplanTest {
  protected:
    AcDbObjectId parcel_;
    void SetUp() override {
        KplanTest::SetUp();
        registerApp(L"FAPP_GHDK");
        registerApp(L"FAPP_XZDK");
        parcel_ = addRectangle(0, 0, 100, 50);
    }

    Acad::ErrorStatus set(resbuf* list) {
        AcDbObject* obj = nullptr;
        Acad::ErrorStatus es = acdbOpenObject(obj, parcel_, AcDb::kForWrite);
        if (es == Acad::eOk) {
            es = obj->setXData(list);
            obj->close();
        }
        acutRelRb(list);
        return es;
    }

    // The xdata of one application (all when null) as "code:text" items.
    std::vector<std::wstring> get(const ACHAR* app = nullptr) {
        AcDbObject* obj = nullptr;
        std::vector<std::wstring> items;
        if (acdbOpenObject(obj, parcel_, AcDb::kForRead) != Acad::eOk) return items;
        resbuf* list = obj->xData(app);
        obj->close();
        for (resbuf* rb = list; rb; rb = rb->rbnext) {
            std::wstring text = std::to_wstring(rb->restype) + L":";
            if (rb->restype == 1070) {
                text += std::to_wstring(rb->resval.rint);
            } else if (rb->restype == 1040) {
                text += std::to_wstring(rb->resval.rreal);
            } else {
                text += rb->resval.rstring;
            }
            items.push_back(text);
        }
        acutRelRb(list);
        return items;
    }
};

TEST_F(XdataTest, SetReplacesOnlyTheApplicationsItNames) {
    ASSERT_EQ(set(acutBuildList(1001, L"FAPP_GHDK", 1000, L"规划地块", 1001, L"FAPP_XZDK", 1000,
                                L"现状地块=", 0)),
              Acad::eOk);
    ASSERT_EQ(set(acutBuildList(1001, L"fapp_ghdk", 1000, L"new", 1070, 3, 0)), Acad::eOk);
    EXPECT_EQ(get(L"FAPP_GHDK"),
              (std::vector<std::wstring>{L"1001:FAPP_GHDK", L"1000:new", L"1070:3"}));
    EXPECT_EQ(get(L"FAPP_XZDK"), (std::vector<std::wstring>{L"1001:FAPP_XZDK", L"1000:现状地块="}));

    // An application block with nothing after its name removes that application.
    ASSERT_EQ(set(acutBuildList(1001, L"FAPP_GHDK", 0)), Acad::eOk);
    EXPECT_TRUE(get(L"FAPP_GHDK").empty());
    EXPECT_EQ(get().size(), 2u);
}

TEST_F(XdataTest, RefusesUnregisteredNamesAndMalformedLists) {
    struct Case {
        const char* what;
        resbuf* list;
        Acad::ErrorStatus expected;
    } cases[] = {
        {"unregistered application", acutBuildList(1001, L"NOT_REGISTERED", 1000, L"x", 0),
         Acad::eRegappIdNotFound},
        {"no application first", acutBuildList(1000, L"x", 0), Acad::eInvalidResBuf},
        {"a non-xdata code", acutBuildList(1001, L"FAPP_GHDK", 8, L"0", 0), Acad::eInvalidResBuf},
        {"unbalanced braces", acutBuildList(1001, L"FAPP_GHDK", 1002, L"{", 1000, L"a", 0),
         Acad::eInvalidResBuf},
        {"balanced braces", acutBuildList(1001, L"FAPP_GHDK", 1002, L"{", 1002, L"}", 0),
         Acad::eOk},
    };
    for (Case& c : cases)
        EXPECT_EQ(set(c.list), c.expected) << c.what;
    EXPECT_EQ(get(L"FAPP_GHDK").size(), 3u) << "failed calls change nothing";
}

TEST_F(XdataTest, EnforcesTheSixteenKilobyteLimit) {
    std::wstring chunk(2000, L'x');
    resbuf* list = acutBuildList(1001, L"FAPP_GHDK", 0);
    resbuf* tail = list;
    for (int i = 0; i < 3; ++i) {  // about 12 KB: fits
        tail->rbnext = acutBuildList(1000, chunk.c_str(), 0);
        tail = tail->rbnext;
    }
    EXPECT_EQ(set(list), Acad::eOk);
    std::wstring more(2200, L'y');
    EXPECT_EQ(set(acutBuildList(1001, L"FAPP_XZDK", 1000, more.c_str(), 0)),
              Acad::eXdataSizeExceeded)
        << "the total over all applications counts";
    EXPECT_TRUE(get(L"FAPP_XZDK").empty());
}

TEST_F(XdataTest, DictionariesAndXrecordsKeepTypedValues) {
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenObject(obj, parcel_, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(obj->createExtensionDictionary(), Acad::eOk);
    EXPECT_EQ(obj->createExtensionDictionary(), Acad::eAlreadyInDb);
    AcDbObjectId extId = obj->extensionDictionary();
    obj->close();

    AcDbDictionary* ext = nullptr;
    ASSERT_EQ(acdbOpenObject(ext, extId, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(ext->ownerId(), parcel_);
    auto* xrec = new AcDbXrecord();
    AcDbObjectId xrecId;
    ASSERT_EQ(ext->setAt(L"TZ_DKH_DKW", xrec, xrecId), Acad::eOk);
    ads_name other;
    acdbGetAdsName(other, database()->modelSpaceId());
    ads_point p = {1.5, 2.5, 0};
    resbuf* data = acutBuildList(1000, L"1,A|2,B", 40, 3.25, 10, p, 70, 7, 330, other, 0);
    EXPECT_EQ(xrec->setFromRbChain(*data), Acad::eOk);
    acutRelRb(data);
    xrec->close();
    EXPECT_TRUE(ext->has(L"tz_dkh_dkw"));
    ext->close();

    AcDbXrecord* read = nullptr;
    ASSERT_EQ(acdbOpenObject(read, xrecId, AcDb::kForRead), Acad::eOk);
    resbuf* chain = nullptr;
    read->rbChain(&chain);
    read->close();
    ASSERT_NE(chain, nullptr);
    EXPECT_STREQ(chain->resval.rstring, L"1,A|2,B");
    EXPECT_DOUBLE_EQ(chain->rbnext->resval.rreal, 3.25);
    EXPECT_DOUBLE_EQ(chain->rbnext->rbnext->resval.rpoint[1], 2.5);
    EXPECT_EQ(chain->rbnext->rbnext->rbnext->resval.rint, 7);
    AcDbObjectId linked;
    ASSERT_EQ(acdbGetObjectId(linked, chain->rbnext->rbnext->rbnext->rbnext->resval.rlname),
              Acad::eOk);
    EXPECT_EQ(linked, database()->modelSpaceId());
    acutRelRb(chain);
}

TEST_F(XdataTest, NamedDictionaryEntriesReplaceAndRemove) {
    AcDbDictionary* nod = nullptr;
    ASSERT_EQ(database()->getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
    auto* colours = new AcDbDictionary();
    AcDbObjectId coloursId;
    ASSERT_EQ(nod->setAt(L"FQMDKCOLOR", colours, coloursId), Acad::eOk);
    auto* first = new AcDbXrecord();
    AcDbObjectId firstId, secondId;
    colours->setAt(L"R2", first, firstId);
    first->close();
    auto* second = new AcDbXrecord();
    colours->setAt(L"r2", second, secondId);
    second->close();
    EXPECT_EQ(colours->numEntries(), 1u);
    EXPECT_TRUE(firstId.isErased()) << "a replaced entry's object goes with it";
    AcDbObjectId removed;
    EXPECT_EQ(colours->remove(L"R2", removed), Acad::eOk);
    EXPECT_EQ(removed, secondId);
    EXPECT_EQ(colours->remove(L"R2"), Acad::eKeyNotFound);
    colours->close();
    nod->close();
}
