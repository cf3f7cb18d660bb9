#pragma once
// Parcels of every record generation, drawn the way each release of the planning
// software wrote them, for the record and query tests.
#include <initializer_list>
#include <utility>

#include "host/arx/acutads.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDB.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaDataSet.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "tests/support/KplanTest.h"
#include "tests/support/TempStandards.h"

using Fields = std::initializer_list<std::pair<const wchar_t*, const wchar_t*>>;

class ParcelTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        setPlanningType(L"KG,控制性详细规划");
    }
    void TearDown() override {
        CKovaDataSet::FSetNameDict_GHType(L"");
        KplanTest::TearDown();
    }

    // The cached planning type, "code,name" ("" to read it from the standard again).
    static void setPlanningType(const wchar_t* cached) {
        CKovaDataSet::FSetNameDict_GHType(cached);
    }
    void setProjectParam(const wchar_t* name, const wchar_t* value) {
        ASSERT_EQ(KovaDB::qmGetCustomDatabase().SetOtherCustomParam(name, value), 1);
    }

    static CStringArray strings(std::initializer_list<const wchar_t*> items) {
        CStringArray list;
        for (const wchar_t* item : items)
            list.Add(item);
        return list;
    }
    static std::vector<CString> vec(const CStringArray& list) {
        return std::vector<CString>(list.begin(), list.end());
    }
    static std::vector<AcDbObjectId> vec(const AcDbObjectIdArray& ids) {
        return std::vector<AcDbObjectId>(ids.begin(), ids.end());
    }

    // A GIS record of the application with its type label and fields on the curve.
    static void stamp(AcDbObjectId id, const wchar_t* app, const wchar_t* label, Fields fields) {
        ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, app, L"", label), 1);
        for (const auto& [key, value] : fields) {
            ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(id, key, value, app), 1);
        }
    }

    // Current generation: a planned parcel of the given application.
    AcDbObjectId planned(Fields fields, const wchar_t* app = dk::FAPP_GHDK,
                         AcDbObjectId space = {}) {
        AcDbObjectId id = addRectangle(0, 0, 100, 100, space);
        stamp(id, app, dk::TYPE_KGDK, fields);
        return id;
    }
    // A current-status parcel: the marker item turned into a record.
    AcDbObjectId current(Fields fields) {
        AcDbObjectId id = addRectangle(0, 0, 100, 100);
        ARX_DATA::CFSimpleXData::SetTo(id, dk::FAPP_XZDK, dk::MARK_XZDK);
        for (const auto& [key, value] : fields)
            ARX_DATA::CFGisXData::SetTo(id, key, value);
        return id;
    }
    // An underground space, planned or current.
    AcDbObjectId underground(Fields fields, int plannedSpace) {
        AcDbObjectId id = addRectangle(0, 0, 100, 100);
        CDKBJXDInfo space(id);
        for (const auto& [key, value] : fields) {
            space.SetDXKJData(key, value, L"", plannedSpace);
        }
        if (fields.size() == 0) {
            ARX_DATA::CFSimpleXData::SetTo(id, plannedSpace ? dk::FAPP_GHDK_DX : dk::FAPP_XZDK_DX,
                                           plannedSpace ? dk::MARK_GHDX : dk::MARK_XZDX);
        }
        return id;
    }
    // Second generation: a GIS record under "地块属性" with the old labels as keys.
    AcDbObjectId second(Fields fields) {
        AcDbObjectId id = addRectangle(0, 0, 100, 100);
        stamp(id, dk::APP_DKSX, L"二代地块", fields);
        return id;
    }
    // First generation: a label / value list under the application (and simple items).
    AcDbObjectId first(Fields list, Fields items = {}, const wchar_t* app = dk::APP_DKBJ,
                       AcDbObjectId space = {}) {
        AcDbObjectId id = addRectangle(0, 0, 100, 100, space);
        writeList(id, app, list);
        for (const auto& [label, value] : items)
            ARX_DATA::CFSimpleXData::SetTo(id, label, value);
        return id;
    }
    static void writeList(AcDbObjectId id, const wchar_t* app, Fields list) {
        resbuf* head = nullptr;
        resbuf* tail = nullptr;
        for (const auto& [label, value] : list) {
            resbuf* pair = acutBuildList(1000, label, 1000, value, 0);
            (tail ? tail->rbnext : head) = pair;
            tail = pair->rbnext;
        }
        if (head == nullptr) head = acutBuildList(1000, L"", 0);
        ASSERT_EQ(kova::dat::AddObjXdata(id, app, head), 1);
        acutRelRb(head);
    }
    // The strings of the application's list as stored.
    static std::vector<CString> listOf(AcDbObjectId id, const wchar_t* app) {
        resbuf* list = nullptr;
        kova::dat::ReadObjXdata(id, app, list);
        std::vector<CString> items;
        for (resbuf* rb = list; rb; rb = rb->rbnext) {
            if (rb->restype == 1000) items.emplace_back(rb->resval.rstring);
        }
        acutRelRb(list);
        return items;
    }

    static void erase(AcDbObjectId id) {
        AcDbEntity* ent = nullptr;
        ASSERT_EQ(acdbOpenObject(ent, id, AcDb::kForWrite), Acad::eOk);
        ent->erase();
        ent->close();
    }
    static CString read(AcDbObjectId id, const wchar_t* key) {
        CString value;
        CDKBJXDInfo(id).GetData(key, value);
        return value;
    }

    TempStandards standards_;
};
