#pragma once
// What the command-line functions of the host share among themselves: application
// variables read without result buffers, the pending acedInitGet, and the geometry of
// picks and selection windows.
#include <string>
#include <vector>

#include "host/arx/dbmain.h"

namespace arx {

short systemVariableShort(const ACHAR* name, short fallback);
void setSystemVariableShort(const ACHAR* name, short value);
AcGePoint3d lastPoint();
void setLastPoint(const AcGePoint3d& point);

// Drops what acedInitGet set; every input call takes it, used or not.
void dropInitGet();

// An entity as the selection sees it: its outline, or for an entity without one (text,
// for instance) its extents as a filled rectangle.
struct EntityShape {
    std::vector<AcGePoint2d> points;
    bool closed = false;
    bool filled = false;
};
bool entityShape(const AcDbEntity* entity, EntityShape& shape);

// Some part of the shape lies inside the polygon or crosses its edges.
bool shapeCrossesPolygon(const EntityShape& shape, const std::vector<AcGePoint2d>& polygon);
// The whole shape lies inside the polygon (its edges included).
bool shapeInsidePolygon(const EntityShape& shape, const std::vector<AcGePoint2d>& polygon);
// The square of half side `half` around a point.
std::vector<AcGePoint2d> pickSquare(const AcGePoint2d& center, double half);

// Shown, on a layer that is on and thawed.
bool isEntityVisible(const AcDbEntity* entity);
// The topmost visible entity of a block whose shape passes through the pick square;
// null when there is none.
AcDbObjectId pickEntity(AcDbObjectId blockId, const AcGePoint2d& point, double half);

// A command or option word without its "." and "_" prefixes, in capitals: "._ZOOM" is ZOOM.
std::wstring commandWord(const ACHAR* text);
// Prints why a command cannot run as asked; RTERROR.
int refuseCommand(const std::wstring& message);
// The commands of acedCommand that change the drawing, given the answers after their name.
int drawOrderCommand(AcDbDatabase& database, const resbuf* answers);
int hatchCommand(AcDbDatabase& database, const resbuf* answers);

}  // namespace arx
