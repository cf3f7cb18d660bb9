#include "tests/support/Shapes.h"

#include "host/arx/dbpl.h"
#include "host/kova/KovaEnt.h"

AcDbObjectId addClosedRectangle(double x0, double y0, double x1, double y1) {
    auto* pline = new AcDbPolyline();
    pline->addVertexAt(0, AcGePoint2d(x0, y0));
    pline->addVertexAt(1, AcGePoint2d(x1, y0));
    pline->addVertexAt(2, AcGePoint2d(x1, y1));
    pline->addVertexAt(3, AcGePoint2d(x0, y1));
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity);
}
