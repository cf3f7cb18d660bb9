#pragma once
// The maker's region generator: a closed outline drawn by the user point by point, and
// union and subtraction of region entities (arcs approximated by chords within 0.01
// drawing units, then clipped as polygons).
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

namespace FConBase {

class KPLAN_API CFReginGen {
  public:
    // How GetNoClosePloyLine lets the user give the outline; 4, the only kind the
    // portable host knows, is a polyline entered point by point.
    void SetSelType(int type) { selType_ = type; }
    int SelType() const { return selType_; }

    // Lets the user enter the vertices of a closed outline ("\n指定起点:", then
    // "\n指定下一点:" until Enter) and adds the closed polyline to the current space.
    // 1 with id set; 0 with id null for a type other than 4, Esc, or fewer than three
    // points.
    int GetNoClosePloyLine(AcDbObjectId& id, int type);

    // One new region covering every listed region, added to the current space of the
    // first one's drawing; the inputs stay. 0, with result null, when none of them is a readable
    // region or the union is empty.
    static int UnionMutilRegion(const AcDbObjectIdArray& regions, AcDbObjectId& result);
    // A new region from `from` and `cut`: the part of `from` outside `cut` when outside
    // is non-zero, plus the part inside `cut` when inside is non-zero (1, 0 subtracts;
    // 0, 1 intersects), added to the current space of its drawing. The inputs stay. 0, with result
    // null, when either is not a readable region or nothing is left.
    static int SubtractRegion(AcDbObjectId from, AcDbObjectId cut, AcDbObjectId& result,
                              int outside, int inside);

  private:
    int selType_ = 4;
};

}  // namespace FConBase
