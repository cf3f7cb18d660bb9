#include "tests/support/KplanTest.h"

#include "host/db/Faults.h"

#include "host/arx/acedads.h"
#include "host/arx/dbattr.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"

void KplanTest::SetUp() {
    leaks_ = new LeakCheck();
    acDocManager->closeAll();
    document_ = acDocManager->appendDocument();
    input_ = db::useScriptedInput();
    standards_ = std::make_unique<TempStandards>();
    db::commandLine().clearTranscript();
    arx::resetSystemVariables();
}

void KplanTest::TearDown() {
    // Checked before the drawing goes: closing a drawing forgives what it held open.
    leaks_->expectNone();
    delete leaks_;
    leaks_ = nullptr;
    acDocManager->closeAll();
    document_ = nullptr;
    input_.reset();
    standards_.reset();
    db::useScriptedInput();
    db::clearFaults();
}

AcDbObjectId KplanTest::addEntity(AcDbEntity* entity, AcDbObjectId space) {
    if (space.isNull()) space = database()->currentSpaceId();
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, space, AcDb::kForWrite) != Acad::eOk) {
        delete entity;
        return {};
    }
    AcDbObjectId id;
    Acad::ErrorStatus es = block->appendAcDbEntity(id, entity);
    block->close();
    if (es != Acad::eOk) {
        delete entity;
        return {};
    }
    entity->close();
    return id;
}

AcDbObjectId KplanTest::addPolyline(std::initializer_list<AcGePoint2d> points,
                                    std::vector<double> bulges, bool closed, AcDbObjectId space) {
    return addPolyline(std::vector<AcGePoint2d>(points), std::move(bulges), closed, space);
}

AcDbObjectId KplanTest::addPolyline(const std::vector<AcGePoint2d>& points,
                                    std::vector<double> bulges, bool closed, AcDbObjectId space) {
    auto* pline = new AcDbPolyline();
    unsigned int i = 0;
    for (const AcGePoint2d& p : points) {
        pline->addVertexAt(i, p, i < bulges.size() ? bulges[i] : 0.0);
        ++i;
    }
    pline->setClosed(closed);
    return addEntity(pline, space);
}

AcDbObjectId KplanTest::addRectangle(double x0, double y0, double x1, double y1,
                                     AcDbObjectId space) {
    return addPolyline({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}, {}, true, space);
}

AcDbObjectId KplanTest::addCircle(double x, double y, double radius, AcDbObjectId space) {
    return addEntity(new AcDbCircle({x, y, 0}, AcGeVector3d::kZAxis, radius), space);
}

AcDbObjectId KplanTest::addAttributeBlock() {
    AcDbBlockTable* table = nullptr;
    EXPECT_EQ(database()->getBlockTable(table, AcDb::kForWrite), Acad::eOk);
    if (table == nullptr) return {};
    AcDbObjectId id;
    if (table->getAt(L"地块指标图则", id) == Acad::eOk) {
        table->close();
        return id;
    }
    auto* block = new AcDbBlockTableRecord();
    block->setName(L"地块指标图则");
    EXPECT_EQ(table->add(id, block), Acad::eOk);
    table->close();
    block->close();
    addRectangle(0, 0, 10, 5, id);
    auto* number = new AcDbAttributeDefinition({1, 3, 0}, L"", L"DKBH", L"地块编号");
    number->setPreset(true);
    addEntity(number, id);
    addEntity(new AcDbAttributeDefinition({1, 1, 0}, L"R2", L"DKXZ", L"地块类别"), id);
    return id;
}

void KplanTest::registerApp(const ACHAR* name) {
    AcDbRegAppTable* table = nullptr;
    ASSERT_EQ(database()->getRegAppTable(table, AcDb::kForWrite), Acad::eOk);
    if (!table->has(name)) {
        auto* record = new AcDbRegAppTableRecord();
        record->setName(name);
        if (table->add(record) == Acad::eOk) {
            record->close();
        } else {
            delete record;
        }
    }
    table->close();
}
