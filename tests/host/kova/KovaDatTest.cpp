// Dictionaries, extension dictionaries, application xdata lists, label / value lookups
// and soft links.
#include <string>
#include <utility>
#include <vector>

#include "host/arx/acutads.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbxrecrd.h"
#include "host/kova/KovaDat.h"
#include "tests/support/KplanTest.h"

namespace dat = kova::dat;

namespace {

using Items = std::vector<std::pair<int, std::wstring>>;

Items items(const resbuf* list) {
    Items out;
    for (const resbuf* p = list; p; p = p->rbnext) {
        out.emplace_back(p->restype, p->resval.rstring ? p->resval.rstring : L"");
    }
    return out;
}

// A list of strings under one group code, which the caller releases.
resbuf* stringList(const std::vector<const ACHAR*>& texts, int code = 1000) {
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    for (const ACHAR* t : texts) {
        resbuf* rb = acutBuildList(code, t, 0);
        (tail ? tail->rbnext : head) = rb;
        tail = rb;
    }
    return head;
}

void erase(AcDbObjectId id) {
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForWrite), Acad::eOk);
    obj->erase();
    obj->close();
}

class DatTest : public KplanTest {};

TEST_F(DatTest, NamedDictionaryEntriesRoundTrip) {
    struct Case {
        const ACHAR *dict, *key;
        Items list;
    };
    const Case cases[] = {
        {L"FQMDKCOLOR", L"R2", {{300, L"3"}}},
        {L"FQMDKCOLOR", L"R21", {{300, L"255,255,0"}}},
        {L"图层名称", L"规划地块", {{1000, L"GH-地块"}, {1000, L"second"}}},
        {L"FQMDKCOLOR", L"R2", {{300, L"5"}}},  // replaces the first entry
    };
    for (const Case& c : cases) {
        resbuf* list = nullptr;
        for (const auto& [code, text] : c.list) {
            resbuf* rb = acutBuildList(code, text.c_str(), 0);
            if (list == nullptr) {
                list = rb;
            } else {
                resbuf* t = list;
                while (t->rbnext)
                    t = t->rbnext;
                t->rbnext = rb;
            }
        }
        EXPECT_EQ(dat::AddNamedObjDict(c.dict, c.key, list), 1);
        acutRelRb(list);
    }
    struct Read {
        const ACHAR *dict, *key;
        int result;
        Items list;
    };
    const Read reads[] = {
        {L"FQMDKCOLOR", L"R2", 1, {{300, L"5"}}},
        {L"fqmdkcolor", L"r21", 1, {{300, L"255,255,0"}}},  // keys ignore ASCII case
        {L"图层名称", L"规划地块", 1, {{1000, L"GH-地块"}, {1000, L"second"}}},
        {L"FQMDKCOLOR", L"R3", 0, {}},
        {L"NOSUCHDICT", L"R2", 0, {}},
    };
    for (const Read& r : reads) {
        resbuf* list = nullptr;
        EXPECT_EQ(dat::ReadNamedObjDict(r.dict, r.key, list), r.result);
        EXPECT_EQ(items(list), r.list);
        acutRelRb(list);
    }
}

TEST_F(DatTest, NamedDictionaryBelongsToItsDrawing) {
    resbuf* list = stringList({L"here"}, 300);
    ASSERT_EQ(dat::AddNamedObjDict(L"D", L"K", list), 1);
    acutRelRb(list);
    AcDbDatabase* first = database();
    acDocManager->appendDocument();  // another drawing becomes current
    resbuf* read = nullptr;
    EXPECT_EQ(dat::ReadNamedObjDict(L"D", L"K", read), 0);
    EXPECT_EQ(dat::ReadNamedObjDict(L"D", L"K", read, first), 1);
    EXPECT_EQ(items(read), (Items{{300, L"here"}}));
    acutRelRb(read);
}

TEST_F(DatTest, RefusedInputChangesNothing) {
    resbuf* ok = stringList({L"x"});
    resbuf* rtstr = acutBuildList(RTSTR, L"x", 0);  // not a data group code
    AcDbObjectId id = addRectangle(0, 0, 1, 1);
    EXPECT_EQ(dat::AddNamedObjDict(L"", L"K", ok), 0);
    EXPECT_EQ(dat::AddNamedObjDict(L"D", L"", ok), 0);
    EXPECT_EQ(dat::AddNamedObjDict(L"D", L"K", nullptr), 0);
    EXPECT_EQ(dat::AddNamedObjDict(L"D", L"K", rtstr), 0);
    EXPECT_EQ(dat::AddObjExtDict(AcDbObjectId(), L"K", ok), 0);
    EXPECT_EQ(dat::AddObjExtDict(id, L"K", nullptr), 0);
    acutRelRb(ok);
    acutRelRb(rtstr);
    resbuf* read = nullptr;
    EXPECT_EQ(dat::ReadObjExtDict(id, L"K", read), 0);
    EXPECT_EQ(read, nullptr);
}

TEST_F(DatTest, ExtensionDictionaryEntriesRoundTrip) {
    AcDbObjectId a = addRectangle(0, 0, 10, 10);
    AcDbObjectId b = addRectangle(20, 0, 30, 10);
    resbuf* read = nullptr;
    EXPECT_EQ(dat::ReadObjExtDict(a, L"TZ_DKH_DKW", read), 0) << "no extension dictionary yet";

    resbuf* list = stringList({L"1,E1|2,E2"});
    ASSERT_EQ(dat::AddObjExtDict(a, L"TZ_DKH_DKW", list), 1);
    acutRelRb(list);
    list = stringList({L"other"});
    ASSERT_EQ(dat::AddObjExtDict(b, L"TZ_DKH_DKW", list), 1);
    acutRelRb(list);
    list = stringList({L"1,E1|2,E2|3,E3"});
    ASSERT_EQ(dat::AddObjExtDict(a, L"TZ_DKH_DKW", list), 1);
    acutRelRb(list);

    EXPECT_EQ(dat::ReadObjExtDict(a, L"TZ_DKH_DKW", read), 1);
    EXPECT_EQ(items(read), (Items{{1000, L"1,E1|2,E2|3,E3"}}));
    acutRelRb(read);
    EXPECT_EQ(dat::ReadObjExtDict(b, L"TZ_DKH_DKW", read), 1);
    EXPECT_EQ(items(read), (Items{{1000, L"other"}}));
    acutRelRb(read);
    EXPECT_EQ(dat::ReadObjExtDict(a, L"MISSING", read), 0);

    // The list lives in one xrecord of the entity's own extension dictionary.
    AcDbObject* obj = nullptr;
    ASSERT_EQ(acdbOpenObject(obj, a, AcDb::kForRead), Acad::eOk);
    AcDbObjectId ext = obj->extensionDictionary();
    obj->close();
    AcDbDictionary* dict = nullptr;
    ASSERT_EQ(acdbOpenObject(dict, ext, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(dict->numEntries(), 1u);
    dict->close();
}

TEST_F(DatTest, ApplicationListsAreReadReplacedAndAppended) {
    AcDbObjectId id = addRectangle(0, 0, 10, 10);
    resbuf* read = nullptr;
    EXPECT_EQ(dat::ReadObjXdata(id, L"地块边界", read), 0);

    resbuf* pair = stringList({L"地块编号", L"A1"});
    ASSERT_EQ(dat::AddObjXdata(id, L"地块边界", pair), 1);
    acutRelRb(pair);
    pair = stringList({L"容积率", L"1.2"});
    ASSERT_EQ(dat::PasteObjXdata(id, L"地块边界", pair), 1);
    acutRelRb(pair);

    ASSERT_EQ(dat::ReadObjXdata(id, L"地块边界", read), 1);
    EXPECT_EQ(items(read), (Items{{1001, L"地块边界"},
                                  {1000, L"地块编号"},
                                  {1000, L"A1"},
                                  {1000, L"容积率"},
                                  {1000, L"1.2"}}));

    // A list read back, changed in place and written whole keeps one pair per label.
    ASSERT_EQ(dat::SetRbString(read, L"地块编号", L"A2"), 1);
    ASSERT_EQ(dat::AddObjXdata(id, L"地块边界", read), 1);
    acutRelRb(read);
    ASSERT_EQ(dat::ReadObjXdata(id, L"地块边界", read), 1);
    EXPECT_EQ(items(read), (Items{{1001, L"地块边界"},
                                  {1000, L"地块编号"},
                                  {1000, L"A2"},
                                  {1000, L"容积率"},
                                  {1000, L"1.2"}}));
    acutRelRb(read);

    // Pasting onto an application the entity lacks starts its list.
    pair = stringList({L"规划类型", L"KG"});
    ASSERT_EQ(dat::PasteObjXdata(id, L"规划红线", pair), 1);
    acutRelRb(pair);
    ASSERT_EQ(dat::ReadObjXdata(id, L"规划红线", read), 1);
    EXPECT_EQ(items(read), (Items{{1001, L"规划红线"}, {1000, L"规划类型"}, {1000, L"KG"}}));
    acutRelRb(read);

    // A list naming another application is refused whole.
    resbuf* two = acutBuildList(1000, L"a", 1001, L"规划红线", 1000, L"b", 0);
    EXPECT_EQ(dat::AddObjXdata(id, L"地块边界", two), 0);
    EXPECT_EQ(dat::PasteObjXdata(id, L"地块边界", two), 0);
    acutRelRb(two);
    ASSERT_EQ(dat::ReadObjXdata(id, L"规划红线", read), 1);
    EXPECT_EQ(items(read).size(), 3u);
    acutRelRb(read);

    // An empty list removes the application and nothing else.
    ASSERT_EQ(dat::AddObjXdata(id, L"地块边界", nullptr), 1);
    EXPECT_EQ(dat::ReadObjXdata(id, L"地块边界", read), 0);
    EXPECT_EQ(dat::ReadObjXdata(id, L"规划红线", read), 1);
    acutRelRb(read);
}

TEST_F(DatTest, LabelValueLookup) {
    struct Case {
        std::vector<const ACHAR*> list;
        bool withApp;
        const ACHAR* label;
        int result;
        const ACHAR* value;
    };
    const Case cases[] = {
        {{L"地块编号", L"A1", L"容积率", L"1.2"}, true, L"容积率", 1, L"1.2"},
        {{L"地块编号", L"A1", L"容积率", L"1.2"}, false, L"地块编号", 1, L"A1"},
        // A value that reads like a label is not taken for one.
        {{L"性质名称", L"容积率", L"容积率", L"2.5"}, false, L"容积率", 1, L"2.5"},
        {{L"地块编号", L"A1"}, false, L"A1", 0, nullptr},
        {{L"地块编号", L"A1", L"备注"}, false, L"备注", 0, nullptr},
        {{}, false, L"地块编号", 0, nullptr},
        {{L"地块编号", L"A1"}, false, L"地块", 0, nullptr},
    };
    for (const Case& c : cases) {
        resbuf* list = nullptr;
        resbuf* tail = nullptr;
        auto add = [&](int code, const ACHAR* text) {
            resbuf* rb = acutBuildList(code, text, 0);
            (tail ? tail->rbnext : list) = rb;
            tail = rb;
        };
        if (c.withApp) add(1001, L"地块边界");
        for (const ACHAR* t : c.list)
            add(1000, t);
        CString value = L"unchanged";
        EXPECT_EQ(dat::GetRbString(list, c.label, value), c.result);
        EXPECT_EQ(value, c.value ? c.value : L"unchanged");
        acutRelRb(list);
    }
}

TEST_F(DatTest, LabelValueReplacement) {
    struct Case {
        std::vector<const ACHAR*> list;
        const ACHAR *label, *value;
        int result;
        std::vector<std::wstring> after;
    };
    const Case cases[] = {
        {{L"a", L"1", L"b", L"2"}, L"b", L"3", 1, {L"a", L"1", L"b", L"3"}},
        {{L"a", L"b", L"b", L"2"}, L"b", L"9", 1, {L"a", L"b", L"b", L"9"}},
        {{L"a", L"1", L"b"}, L"b", L"2", 1, {L"a", L"1", L"b", L"2"}},
        {{L"a", L"1"}, L"c", L"2", 0, {L"a", L"1"}},
    };
    for (const Case& c : cases) {
        resbuf* list = stringList(c.list);
        EXPECT_EQ(dat::SetRbString(list, c.label, c.value), c.result);
        std::vector<std::wstring> after;
        for (const auto& item : items(list))
            after.push_back(item.second);
        EXPECT_EQ(after, c.after);
        acutRelRb(list);
    }
}

TEST_F(DatTest, SoftLinksKeepOrderAndNoDuplicates) {
    AcDbObjectId parcel = addRectangle(0, 0, 100, 100);
    AcDbObjectId island1 = addRectangle(10, 10, 20, 20);
    AcDbObjectId island2 = addRectangle(30, 30, 40, 40);
    AcDbObjectId fill = addRectangle(0, 0, 100, 100);

    AcDbObjectIdArray ids;
    EXPECT_EQ(dat::GetSoftIds(parcel, L"DKBJ_LINK_NLK", ids), 0);

    struct Link {
        const ACHAR* name;
        AcDbObjectId other;
    };
    const Link links[] = {{L"DKBJ_LINK_NLK", island2},
                          {L"DKBJ_LINK_NLK", island1},
                          {L"DKBJ_LINK_NLK", island2},
                          {L"填充色块", fill},
                          {L"DKBJ_LINK_NLK", island1}};
    for (const Link& l : links)
        EXPECT_EQ(dat::PasteSoftId(parcel, l.name, l.other), 1);
    EXPECT_EQ(dat::PasteSoftId(parcel, L"DKBJ_LINK_NLK", AcDbObjectId()), 0);

    struct Read {
        const ACHAR* name;
        std::vector<AcDbObjectId> ids;
    };
    const Read reads[] = {
        {L"DKBJ_LINK_NLK", {island2, island1}}, {L"填充色块", {fill}}, {L"地块内轮廓", {}}};
    for (const Read& r : reads) {
        EXPECT_EQ(dat::GetSoftIds(parcel, r.name, ids), static_cast<int>(r.ids.size()));
        EXPECT_EQ(std::vector<AcDbObjectId>(ids.begin(), ids.end()), r.ids);
        EXPECT_EQ(dat::qmGetIdFromDict(parcel, r.name, ids), static_cast<int>(r.ids.size()));
    }

    // The link list is group-330 soft pointers in one xrecord.
    resbuf* raw = nullptr;
    ASSERT_EQ(dat::ReadObjExtDict(parcel, L"DKBJ_LINK_NLK", raw), 1);
    int pointers = 0;
    for (resbuf* p = raw; p; p = p->rbnext)
        pointers += p->restype == 330;
    EXPECT_EQ(pointers, 2);
    acutRelRb(raw);

    // An erased island stays listed; readers decide.
    erase(island1);
    EXPECT_EQ(dat::GetSoftIds(parcel, L"DKBJ_LINK_NLK", ids), 2);
    EXPECT_TRUE(ids[1].isErased());

    // A whole list is dropped; the linked objects and the other lists stay.
    EXPECT_EQ(dat::RemoveSoftIds(parcel, L"DKBJ_LINK_NLK"), 1);
    EXPECT_EQ(dat::GetSoftIds(parcel, L"DKBJ_LINK_NLK", ids), 0);
    EXPECT_FALSE(island2.isErased());
    EXPECT_EQ(dat::GetSoftIds(parcel, L"填充色块", ids), 1);
    EXPECT_EQ(dat::RemoveSoftIds(parcel, L"DKBJ_LINK_NLK"), 0) << "gone already";
    EXPECT_EQ(dat::RemoveSoftIds(island2, L"填充色块"), 0) << "no extension dictionary";
    EXPECT_EQ(dat::PasteSoftId(parcel, L"DKBJ_LINK_NLK", island2), 1) << "linked anew";
    EXPECT_EQ(dat::GetSoftIds(parcel, L"DKBJ_LINK_NLK", ids), 1);
}

}  // namespace
