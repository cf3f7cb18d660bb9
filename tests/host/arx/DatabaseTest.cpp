#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "tests/support/KplanTest.h"

class DatabaseTest : public KplanTest {};

TEST_F(DatabaseTest, OpenModesFollowTheHost) {
    AcDbObjectId id = addRectangle(0, 0, 10, 10);
    AcDbEntity* reader = nullptr;
    AcDbEntity* other = nullptr;
    AcDbEntity* writer = nullptr;

    ASSERT_EQ(acdbOpenObject(reader, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(other, id, AcDb::kForRead), Acad::eOk) << "readers share";
    EXPECT_EQ(acdbOpenObject(writer, id, AcDb::kForWrite), Acad::eWasOpenForRead);
    EXPECT_EQ(reader->setLayer(L"0"), Acad::eNotOpenForWrite);
    other->close();
    EXPECT_EQ(reader->upgradeOpen(), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(other, id, AcDb::kForRead), Acad::eWasOpenForWrite);
    EXPECT_EQ(reader->erase(), Acad::eOk);
    reader->close();

    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(acdbOpenObject(reader, id, AcDb::kForRead), Acad::eWasErased);
    ASSERT_EQ(acdbOpenObject(reader, id, AcDb::kForRead, true), Acad::eOk);
    reader->close();

    AcDbCircle* circle = nullptr;
    EXPECT_EQ(acdbOpenObject(circle, addRectangle(0, 0, 1, 1), AcDb::kForRead),
              Acad::eNotThatKindOfClass);
    EXPECT_EQ(circle, nullptr);
    EXPECT_EQ(acdbOpenObject(reader, AcDbObjectId(), AcDb::kForRead), Acad::eNullObjectId);
}

TEST_F(DatabaseTest, LeakCheckCatchesAnObjectLeftOpen) {
    LeakCheck check;
    AcDbObjectId id = addCircle(0, 0, 5);
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenObject(ent, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(check.leaks(), "1 object(s) left open");
    resbuf* list = acutBuildList(RTSTR, L"x", 0);
    EXPECT_EQ(check.leaks(), "1 object(s) left open, 1 result buffer(s) not released");
    acutRelRb(list);
    ent->close();
    EXPECT_EQ(check.leaks(), "");
}

TEST_F(DatabaseTest, HandlesAreUniqueAndResolveBack) {
    AcDbObjectId a = addRectangle(0, 0, 1, 1);
    AcDbObjectId b = addRectangle(0, 0, 1, 1);
    EXPECT_NE(a.handle(), b.handle());
    EXPECT_LT(b.handle().value(), database()->handseed().value());

    AcDbObjectId found;
    ASSERT_EQ(database()->getAcDbObjectId(found, false, a.handle()), Acad::eOk);
    EXPECT_EQ(found, a);
    EXPECT_EQ(database()->getAcDbObjectId(found, false, AcDbHandle(0xFFFFFF)),
              Acad::eUnknownHandle);
    EXPECT_EQ(AcDbHandle(L"2A").value(), 0x2Au);
    EXPECT_EQ(AcDbHandle(0x2A).text(), L"2A");
    EXPECT_TRUE(AcDbHandle(L"not hex").isNull());

    ads_name name;
    ASSERT_EQ(acdbGetAdsName(name, a), Acad::eOk);
    ASSERT_EQ(acdbGetObjectId(found, name), Acad::eOk);
    EXPECT_EQ(found, a);
    ads_name forged = {0x7FFFFFFF, 999999};
    EXPECT_EQ(acdbGetObjectId(found, forged), Acad::eInvalidAdsName);
}

TEST_F(DatabaseTest, DefaultDrawingHasTheStandardEntries) {
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(database()->getLayerTable(layers, AcDb::kForRead), Acad::eOk);
    EXPECT_TRUE(layers->has(L"0"));
    layers->close();
    AcDbRegAppTable* apps = nullptr;
    ASSERT_EQ(database()->getRegAppTable(apps, AcDb::kForRead), Acad::eOk);
    EXPECT_TRUE(apps->has(L"acad")) << "names compare without case";
    apps->close();
    AcDbBlockTable* blocks = nullptr;
    ASSERT_EQ(database()->getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
    AcDbObjectId model;
    EXPECT_EQ(blocks->getAt(ACDB_MODEL_SPACE, model), Acad::eOk);
    EXPECT_EQ(model, database()->modelSpaceId());
    blocks->close();
    EXPECT_EQ(database()->currentSpaceId(), database()->modelSpaceId());
    database()->setTilemode(false);
    EXPECT_EQ(database()->currentSpaceId(), database()->paperSpaceId());
}

TEST_F(DatabaseTest, SymbolTableRefusesBadAndDuplicateNames) {
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(database()->getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
    struct Case {
        const ACHAR* name;
        Acad::ErrorStatus expected;
    } cases[] = {
        {L"GH-R2", Acad::eOk},
        {L"gh-r2", Acad::eDuplicateRecordName},
        {L"规划地块", Acad::eOk},
        {L"a<b", Acad::eInvalidSymbolTableName},
        {L"", Acad::eInvalidSymbolTableName},
    };
    for (const Case& c : cases) {
        auto* record = new AcDbLayerTableRecord();
        Acad::ErrorStatus es = record->setName(c.name);
        if (es == Acad::eOk) es = layers->add(record);
        EXPECT_EQ(es, c.expected) << "layer name " << testing::PrintToString(std::wstring(c.name));
        if (es == Acad::eOk) {
            record->close();
        } else {
            delete record;
        }
    }
    layers->close();
}

TEST_F(DatabaseTest, EntityLayerMustExistInTheDrawing) {
    AcDbObjectId id = addRectangle(0, 0, 1, 1);
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenObject(ent, id, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(ent->setLayer(L"NoSuchLayer"), Acad::eKeyNotFound);
    EXPECT_EQ(ent->layerName(), L"0");
    ent->close();

    auto* pline = new AcDbPolyline();
    pline->setLayer(L"Elsewhere");
    EXPECT_TRUE(addEntity(pline).isNull()) << "a new entity on an unknown layer is refused";
}

TEST_F(DatabaseTest, DocumentsSwitchTheWorkingDatabase) {
    AcDbDatabase* first = database();
    AcApDocument* second = acDocManager->appendDocument();
    EXPECT_EQ(acDocManager->curDocument(), second);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), second->database());
    ASSERT_EQ(acDocManager->setCurDocument(document()), Acad::eOk);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), first);
    EXPECT_EQ(acDocManager->documentOf(second->database()), second);
    EXPECT_EQ(acDocManager->closeDocument(second), Acad::eOk);
    EXPECT_EQ(acDocManager->documentCount(), 1);
    EXPECT_EQ(acDocManager->closeDocument(second), Acad::eNoDocument);
}

TEST_F(DatabaseTest, BlockIteratorSkipsErasedEntities) {
    AcDbObjectId a = addRectangle(0, 0, 1, 1);
    AcDbObjectId b = addCircle(0, 0, 1);
    AcDbObjectId c = addCircle(5, 5, 1);
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenObject(ent, b, AcDb::kForWrite), Acad::eOk);
    ent->erase();
    ent->close();

    AcDbBlockTableRecord* model = nullptr;
    ASSERT_EQ(acdbOpenObject(model, database()->modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecordIterator* it = nullptr;
    model->newIterator(it);
    std::vector<AcDbObjectId> seen;
    for (; !it->done(); it->step()) {
        AcDbObjectId id;
        it->getEntityId(id);
        seen.push_back(id);
    }
    delete it;
    model->close();
    EXPECT_EQ(seen, (std::vector<AcDbObjectId>{a, c}));
}

TEST_F(DatabaseTest, DroppingErasedScratchFreesOnlyWhatWasErasedSinceTheMark) {
    auto erase = [](AcDbObjectId id) {
        AcDbEntity* ent = nullptr;
        ASSERT_EQ(acdbOpenObject(ent, id, AcDb::kForWrite), Acad::eOk);
        ent->erase();
        ent->close();
    };
    AcDbObjectId before = addCircle(0, 0, 1);
    erase(before);
    std::size_t mark = database()->size();
    AcDbObjectId scratch = addRectangle(0, 0, 1, 1);
    AcDbObjectId kept = addCircle(5, 5, 1);
    AcDbObjectId open = addCircle(9, 9, 1);
    erase(scratch);
    erase(open);
    AcDbEntity* reader = nullptr;
    ASSERT_EQ(acdbOpenObject(reader, open, AcDb::kForRead, true), Acad::eOk);

    EXPECT_EQ(database()->dropErasedSince(mark), 1u);
    reader->close();

    AcDbEntity* ent = nullptr;
    EXPECT_EQ(acdbOpenObject(ent, scratch, AcDb::kForRead, true), Acad::eUnknownHandle);
    EXPECT_TRUE(scratch.isErased());
    AcDbObjectId found;
    ASSERT_EQ(database()->getAcDbObjectId(found, false, scratch.handle()), Acad::eOk);
    EXPECT_EQ(found, scratch) << "the handle still names it";
    for (AcDbObjectId id : {before, open}) {
        ASSERT_EQ(acdbOpenObject(ent, id, AcDb::kForRead, true), Acad::eOk) << "erased, kept";
        ent->close();
    }
    ASSERT_EQ(acdbOpenObject(ent, kept, AcDb::kForRead), Acad::eOk);
    ent->close();
    EXPECT_EQ(database()->dropErasedSince(mark), 1u) << "the one that was open";
    EXPECT_EQ(database()->dropErasedSince(database()->size()), 0u);
}

TEST_F(DatabaseTest, ContinuousLinetypeIsTheRecordOfThatName) {
    AcDbLinetypeTable* linetypes = nullptr;
    ASSERT_EQ(database()->getLinetypeTable(linetypes, AcDb::kForRead), Acad::eOk);
    AcDbObjectId continuous;
    EXPECT_EQ(linetypes->getAt(L"CONTINUOUS", continuous), Acad::eOk);
    linetypes->close();
    EXPECT_FALSE(continuous.isNull());
    EXPECT_EQ(database()->continuousLinetype(), continuous);
    AcDbDatabase bare(false);
    EXPECT_TRUE(bare.continuousLinetype().isNull()) << "a drawing without tables has none";
}

TEST_F(DatabaseTest, HighlightingIsAStateOfTheDisplayOnly) {
    AcDbObjectId a = addRectangle(0, 0, 10, 10), b = addCircle(5, 5, 1);
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, a, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(entity->highlight(), Acad::eOk) << "open for read is enough";
    entity->close();
    EXPECT_TRUE(database()->isHighlighted(a));
    EXPECT_FALSE(database()->isHighlighted(b));
    ASSERT_EQ(acdbOpenAcDbEntity(entity, a, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(entity->unhighlight(), Acad::eOk);
    entity->close();
    EXPECT_FALSE(database()->isHighlighted(a));
    AcDbCircle loose;
    EXPECT_EQ(loose.highlight(), Acad::eNotInDatabase);
}
