// System variables of the application and of the working drawing.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "host/arx/acdocman.h"
#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbsymtb.h"
#include "tests/support/LeakCheck.h"

namespace {

resbuf shortValue(short v) {
    resbuf rb{};
    rb.restype = RTSHORT;
    rb.resval.rint = v;
    return rb;
}

// The string value of a variable, freed here; "<rc>" when the call failed.
std::wstring stringVar(const wchar_t* name) {
    resbuf rb{};
    int rc = acedGetVar(name, &rb);
    if (rc != RTNORM) return L"<" + std::to_wstring(rc) + L">";
    if (rb.restype != RTSTR) return L"<not a string>";
    std::wstring text = rb.resval.rstring;
    acutDelString(rb.resval.rstring);
    return text;
}

int setString(const wchar_t* name, const wchar_t* value) {
    resbuf rb{};
    rb.restype = RTSTR;
    rb.resval.rstring = const_cast<ACHAR*>(value);
    return acedSetVar(name, &rb);
}

class SysVarTest : public ::testing::Test {
  protected:
    void SetUp() override {
        arx::resetSystemVariables();
        document = acDocManager->appendDocument(nullptr, L"C:\\规划\\控规.dwg");
        database = document->database();
    }
    void TearDown() override {
        leaks.expectNone();
        acDocManager->closeAll();
        arx::resetSystemVariables();
    }
    void addLayer(const wchar_t* name, bool frozen) {
        AcDbLayerTable* table = nullptr;
        ASSERT_EQ(database->getLayerTable(table, AcDb::kForWrite), Acad::eOk);
        auto* record = new AcDbLayerTableRecord();
        record->setName(name);
        record->setIsFrozen(frozen);
        ASSERT_EQ(table->add(record), Acad::eOk);
        record->close();
        table->close();
    }

    LeakCheck leaks;
    AcApDocument* document = nullptr;
    AcDbDatabase* database = nullptr;
};

TEST_F(SysVarTest, ShortValuesRoundTrip) {
    struct Case {
        const wchar_t* name;
        short initial;
        short value;
        bool accepted;
    } cases[] = {
        {L"OSMODE", 4133, 0x221, true},
        {L"osmode", 4133, 0x4000 | 0x221, true},  // names in any case; the snap-off bit
        {L"OSMODE", 4133, -1, false},
        {L"CMDECHO", 1, 0, true},
        {L"CMDECHO", 1, 2, false},
        {L"PICKBOX", 3, 10, true},
        {L"PICKBOX", 3, 51, false},
        {L"HIGHLIGHT", 1, 0, true},
        {L"ERRNO", 0, 52, true},
        {L"TILEMODE", 1, 0, true},
        {L"TILEMODE", 1, 3, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name, c.name + wcslen(c.name)) + "=" + std::to_string(c.value));
        arx::resetSystemVariables();
        database->setTilemode(true);
        resbuf got{};
        ASSERT_EQ(acedGetVar(c.name, &got), RTNORM);
        EXPECT_EQ(got.restype, RTSHORT);
        EXPECT_EQ(got.resval.rint, c.initial);
        resbuf value = shortValue(c.value);
        EXPECT_EQ(acedSetVar(c.name, &value), c.accepted ? RTNORM : RTREJ);
        ASSERT_EQ(acedGetVar(c.name, &got), RTNORM);
        EXPECT_EQ(got.resval.rint, c.accepted ? c.value : c.initial);
    }
}

TEST_F(SysVarTest, WrongTypesAndUnknownNames) {
    resbuf text{};
    text.restype = RTSTR;
    text.resval.rstring = const_cast<ACHAR*>(L"5");
    EXPECT_EQ(acedSetVar(L"OSMODE", &text), RTREJ);
    resbuf longValue{};
    longValue.restype = RTLONG;
    longValue.resval.rlong = 7;
    EXPECT_EQ(acedSetVar(L"OSMODE", &longValue), RTNORM);
    resbuf value = shortValue(1);
    EXPECT_EQ(acedSetVar(L"NOSUCHVAR", &value), RTERROR);
    resbuf got{};
    EXPECT_EQ(acedGetVar(L"NOSUCHVAR", &got), RTERROR);
    EXPECT_EQ(acedGetVar(nullptr, &got), RTERROR);
    EXPECT_EQ(acedSetVar(L"CVPORT", &value), RTREJ);
    EXPECT_EQ(setString(L"DWGNAME", L"x.dwg"), RTREJ);
    EXPECT_EQ(acedSetVar(L"OSMODE", nullptr), RTREJ);
}

TEST_F(SysVarTest, ScopedChangeIsRestored) {
    // The pattern of a scoped holder: read, force bits on, restore.
    resbuf old{};
    ASSERT_EQ(acedGetVar(L"osmode", &old), RTNORM);
    resbuf forced = shortValue(static_cast<short>((old.resval.rint & 0x3FFF) | 0x221));
    ASSERT_EQ(acedSetVar(L"OSMODE", &forced), RTNORM);
    resbuf now{};
    acedGetVar(L"OSMODE", &now);
    EXPECT_EQ(now.resval.rint, 4133 | 0x221);
    ASSERT_EQ(acedSetVar(L"OSMODE", &old), RTNORM);
    acedGetVar(L"OSMODE", &now);
    EXPECT_EQ(now.resval.rint, 4133);
}

TEST_F(SysVarTest, LastPointTakesTwoAndThreeDimensions) {
    resbuf p{};
    p.restype = RTPOINT;
    p.resval.rpoint[0] = 1;
    p.resval.rpoint[1] = 2;
    p.resval.rpoint[2] = 99;  // ignored: a 2D point
    ASSERT_EQ(acedSetVar(L"LASTPOINT", &p), RTNORM);
    resbuf got{};
    ASSERT_EQ(acedGetVar(L"LASTPOINT", &got), RTNORM);
    EXPECT_EQ(got.restype, RT3DPOINT);
    EXPECT_EQ(got.resval.rpoint[0], 1);
    EXPECT_EQ(got.resval.rpoint[1], 2);
    EXPECT_EQ(got.resval.rpoint[2], 0);
    resbuf bad = shortValue(1);
    EXPECT_EQ(acedSetVar(L"LASTPOINT", &bad), RTREJ);
    arx::resetSystemVariables();
    acedGetVar(L"LASTPOINT", &got);
    EXPECT_EQ(got.resval.rpoint[0], 0);
}

TEST_F(SysVarTest, CurrentLayer) {
    addLayer(L"规划地块", false);
    addLayer(L"FROZEN", true);
    EXPECT_EQ(stringVar(L"CLAYER"), L"0");
    struct Case {
        const wchar_t* value;
        int rc;
        std::wstring current;
    } cases[] = {
        {L"规划地块", RTNORM, L"规划地块"},
        {L"frozen", RTREJ, L"规划地块"},
        {L"missing", RTREJ, L"规划地块"},
        {L"0", RTNORM, L"0"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(setString(L"clayer", c.value), c.rc);
        EXPECT_EQ(stringVar(L"CLAYER"), c.current);
    }
    // The drawing itself changed: new entities take the layer.
    setString(L"CLAYER", L"规划地块");
    auto* layer = static_cast<AcDbLayerTableRecord*>(nullptr);
    ASSERT_EQ(acdbOpenObject(layer, database->clayer(), AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(layer->nameText(), L"规划地块");
    layer->close();
}

TEST_F(SysVarTest, CurrentColour) {
    struct Case {
        const wchar_t* value;
        int rc;
        std::wstring shown;
    } cases[] = {
        {L"1", RTNORM, L"1"},
        {L"bylayer", RTNORM, L"BYLAYER"},
        {L"BYBLOCK", RTNORM, L"BYBLOCK"},
        {L"RGB:10,20,30", RTNORM, L"RGB:10,20,30"},
        {L"256", RTREJ, L"RGB:10,20,30"},
        {L"RGB:10,20", RTREJ, L"RGB:10,20,30"},
        {L"red", RTREJ, L"RGB:10,20,30"},
    };
    EXPECT_EQ(stringVar(L"CECOLOR"), L"BYLAYER");
    for (const Case& c : cases) {
        EXPECT_EQ(setString(L"CECOLOR", c.value), c.rc) << c.value;
        EXPECT_EQ(stringVar(L"CECOLOR"), c.shown);
    }
    EXPECT_EQ(database->cecolor().red(), 10);
}

TEST_F(SysVarTest, SpacesAndDrawingName) {
    resbuf got{};
    ASSERT_EQ(acedGetVar(L"CVPORT", &got), RTNORM);
    EXPECT_EQ(got.resval.rint, 2);
    resbuf paper = shortValue(0);
    ASSERT_EQ(acedSetVar(L"TILEMODE", &paper), RTNORM);
    EXPECT_EQ(database->currentSpaceId(), database->paperSpaceId());
    acedGetVar(L"CVPORT", &got);
    EXPECT_EQ(got.resval.rint, 1);
    EXPECT_EQ(stringVar(L"DWGNAME"), L"控规.dwg");

    // The variables follow the current document.
    AcApDocument* second = acDocManager->appendDocument();
    EXPECT_EQ(stringVar(L"DWGNAME"), L"Drawing1.dwg");
    acedGetVar(L"TILEMODE", &got);
    EXPECT_EQ(got.resval.rint, 1);
    acDocManager->setCurDocument(document);
    acedGetVar(L"TILEMODE", &got);
    EXPECT_EQ(got.resval.rint, 0);
    acDocManager->closeDocument(second);
}

TEST_F(SysVarTest, DrawingVariablesNeedADrawing) {
    acDocManager->closeAll();
    resbuf got{};
    EXPECT_EQ(acedGetVar(L"CLAYER", &got), RTERROR);
    EXPECT_EQ(setString(L"CLAYER", L"0"), RTERROR);
    // The application's own variables do not.
    EXPECT_EQ(acedGetVar(L"OSMODE", &got), RTNORM);
}

}  // namespace
