// One pass sorting a drawing's entities by application gives, list for list, what the
// host's whole-drawing selection with the same filter gives, with xdata packed as a loader
// keeps it or unpacked as a command leaves it.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/peek.h"
#include "host/db/PackedXdata.h"
#include "host/db/TextCodec.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/SelectByApplications.h"
#include "tests/support/KplanTest.h"

namespace {

class SelectByApplicationsTest : public KplanTest {
  protected:
    // Gives the entity one application block per name, packed as a loader keeps it
    // or as values.
    void give(AcDbObjectId id, const std::vector<const wchar_t*>& apps, bool packed) {
        AcDbEntity* entity = nullptr;
        ASSERT_EQ(acdbOpenObject(entity, id, AcDb::kForWrite), Acad::eOk);
        std::string bytes;
        db::ValueList values;
        for (const wchar_t* app : apps) {
            db::appendPacked(bytes, 1001, db::wideToUtf8(app));
            db::appendPacked(bytes, 1000, "x");
            values.push_back(db::Value::string(1001, app));
            values.push_back(db::Value::string(1000, L"x"));
        }
        if (packed) {
            entity->restorePackedXdata(bytes, [](const std::string& p, db::ValueList& out) {
                db::forEachPacked(p, [&](int code, std::string_view text) {
                    out.push_back(db::Value::string(code, db::utf8ToWide(text)));
                });
            });
        } else {
            entity->restoreXdataValues(values);
        }
        entity->close();
    }

    AcDbObjectId add(const std::string& label, AcDbEntity* entity,
                     const std::vector<const wchar_t*>& apps, bool packed,
                     AcDbObjectId space = {}) {
        AcDbObjectId id = addEntity(entity, space);
        if (!apps.empty()) give(id, apps, packed);
        labels[id] = label;
        return id;
    }

    static AcDbPolyline* square() {
        auto* pl = new AcDbPolyline();
        for (unsigned i = 0; i < 4; ++i)
            pl->addVertexAt(i, AcGePoint2d(i == 1 || i == 2 ? 10 : 0, i >= 2 ? 10 : 0));
        pl->setClosed(true);
        return pl;
    }

    // The labels of the ids, in their order.
    std::vector<std::string> named(const AcDbObjectIdArray& ids) {
        std::vector<std::string> out;
        for (AcDbObjectId id : ids)
            out.push_back(labels.count(id) ? labels[id] : "?");
        return out;
    }

    // What the host's own selection finds with the filter of one list.
    std::vector<std::string> hostSelection(const wchar_t* types, const wchar_t* apps) {
        resbuf* filter = acutBuildList(
            RTDXF0, types, 67, database()->currentSpaceId() == database()->paperSpaceId() ? 1 : 0,
            -3, 1001, apps, 0);
        ads_name ss = {0, 0};
        int rc = acedSSGet(L"X", nullptr, nullptr, filter, ss);
        acutRelRb(filter);
        AcDbObjectIdArray ids;
        if (rc == RTNORM) {
            kova::ent::SSToIds(ss, ids);
            acedSSFree(ss);
        }
        return named(ids);
    }

    std::map<AcDbObjectId, std::string> labels;
};

TEST_F(SelectByApplicationsTest, EachListIsWhatTheHostSelectionFinds) {
    for (const wchar_t* app :
         {L"FAPP_GHDK", L"FAPP_GHDK_FG", L"FAPP_XZDK", L"FAPP_GHFWX", L"现状用地", L"OTHER"})
        registerApp(app);
    const wchar_t* types = L"*POLYLINE,CIRCLE";
    const std::vector<const wchar_t*> apps = {L"FAPP_GHDK,FAPP_GHDK_FG,FAPP_GHDK_ZG,FAPP_GHDK_TX",
                                              L"FAPP_XZDK", L"现状*"};
    for (bool packed : {true, false}) {
        SCOPED_TRACE(packed ? "packed" : "values");
        labels.clear();
        add("planned", square(), {L"FAPP_GHDK"}, packed);
        add("current, lower case", new AcDbCircle({5, 5, 0}, AcGeVector3d::kZAxis, 3),
            {L"OTHER", L"fapp_xzdk"}, packed);
        add("both", square(), {L"FAPP_GHDK_FG", L"FAPP_XZDK"}, packed);
        add("a line", new AcDbLine({0, 0, 0}, {1, 1, 0}), {L"FAPP_GHDK"}, packed);
        add("another application", square(), {L"FAPP_GHFWX"}, packed);
        add("no xdata", square(), {}, packed);
        add("older current status", square(), {L"现状用地"}, packed);
        AcDbObjectId erased = add("erased", square(), {L"FAPP_XZDK"}, packed);
        AcDbEntity* entity = nullptr;
        ASSERT_EQ(acdbOpenObject(entity, erased, AcDb::kForWrite), Acad::eOk);
        entity->erase();
        entity->close();
        add("paper space", square(), {L"FAPP_GHDK"}, packed, database()->paperSpaceId());

        std::vector<AcDbObjectIdArray> lists;
        EXPECT_EQ(kova::SelectByApplications(types, apps, lists), 4);
        ASSERT_EQ(lists.size(), 3u);
        EXPECT_EQ(named(lists[0]), (std::vector<std::string>{"planned", "both"}));
        EXPECT_EQ(named(lists[1]), (std::vector<std::string>{"current, lower case", "both"}));
        EXPECT_EQ(named(lists[2]), std::vector<std::string>{"older current status"});
        for (std::size_t i = 0; i < apps.size(); ++i)
            EXPECT_EQ(named(lists[i]), hostSelection(types, apps[i])) << i;

        // With paper space current, its entities are the ones selected.
        database()->setTilemode(false);
        EXPECT_EQ(kova::SelectByApplications(types, apps, lists), 1);
        EXPECT_EQ(named(lists[0]), std::vector<std::string>{"paper space"});
        EXPECT_EQ(named(lists[0]), hostSelection(types, apps[0]));
        EXPECT_TRUE(lists[1].isEmpty());
        database()->setTilemode(true);

        // The application names read, the packed xdata stays as the loader kept it.
        for (const auto& [id, label] : labels) {
            auto* object = arx::peekObject(id);
            if (packed && object->hasXdata()) {
                EXPECT_NE(object->packedXdata(), nullptr) << label;
            }
        }
        for (const auto& [id, label] : labels) {
            if (label == "erased") continue;
            AcDbEntity* gone = nullptr;
            ASSERT_EQ(acdbOpenObject(gone, id, AcDb::kForWrite), Acad::eOk);
            gone->erase();
            gone->close();
        }
    }
}

}  // namespace
