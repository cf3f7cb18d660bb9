#pragma once
// Filling parcels: associative hatches made from boundary curves, and tying an existing
// hatch to a boundary or untying it.
//
// Every hatch made here is associative: the boundary objects carry the hatch as a
// persistent reactor, so that editing a boundary (moving a vertex, adding one) rebuilds the
// hatch's loop. Boundaries are closed curves: polylines, circles, closed ellipses and
// splines. Results are 1 for done and 0 for not done; nothing is thrown.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// A solid fill of one boundary, made in the current space: one loop of type external.
// hatch is set to the new hatch's id, or null. 0 for a null or invalid boundary id, for a
// boundary that makes no loop, and when the hatch cannot be added. A host failure inside
// prints "\nFHatch出现异常!" and gives 0.
KPLAN_API int FHatch(AcDbObjectId boundary, AcDbObjectId& hatch);
// One solid hatch with one loop of type default per boundary, in array order; it takes the
// drawing's current layer and colour. Boundaries that make no loop are left out; 0 for an
// empty array or when none makes one.
KPLAN_API int FHatch(const AcDbObjectIdArray& boundaries, AcDbObjectId& hatch);
// A fill of one boundary with a predefined pattern at a scale and an angle in radians (as
// AcDbHatch::setPatternAngle takes it: a class table's degrees are converted by the
// caller). A pattern the pattern file lacks leaves the hatch without pattern lines.
KPLAN_API int FHatch(AcDbObjectId boundary, const ACHAR* pattern, double scale, double angle,
                     AcDbObjectId& hatch);
// The same over several boundaries, one loop of type default each.
KPLAN_API int FHatch(const AcDbObjectIdArray& boundaries, const ACHAR* pattern, double scale,
                     double angle, AcDbObjectId& hatch);

// Ties an existing hatch to a boundary: the boundary becomes one more external loop, the
// hatch turns associative with the pattern "SOLID" (its former pattern is given up, its
// loops kept), and every boundary of the hatch carries it as a reactor. 0, the hatch left
// as it was, when either id is invalid, the id is no hatch, the hatch cannot be opened for
// write or the boundary makes no loop.
KPLAN_API int FAssociHatch(AcDbObjectId boundary, AcDbObjectId hatch);

// Makes a hatch non-associative: its loops forget their boundary objects. The reactors on
// the former boundaries stay (they no longer change anything). 0 for an id that is no
// hatch that opens for write.
KPLAN_API int FRemoveAssociHatch(AcDbObjectId hatch);
