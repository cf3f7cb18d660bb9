#pragma once
// Ids a statistics run has marked, kept per open drawing: the marks, and the regions,
// error regions and parcels of the last calculation. Every call works on the drawing
// that is current when it is made; a drawing's entry is made on first use and kept for
// the life of the module, also after the drawing is closed.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Appends every id to the marks as it is: no check, a repeated id stays twice.
KPLAN_API int FAddIdsToDocData(const AcDbObjectIdArray& ids);
// Appends the id when it is valid and not erased; 1 when appended.
KPLAN_API int FAddIdsToDocData(AcDbObjectId id);
// Removes every occurrence of each id from the marks; the number removed.
KPLAN_API int FRemoveIdsDocData(const AcDbObjectIdArray& ids);
KPLAN_API int FRemoveIdsDocData(AcDbObjectId id);
// Forgets all marks of the current drawing.
KPLAN_API int FRemoveAllIdsDocData();
// Appends to out each mark that is valid, not erased and not yet in out; out is not
// cleared. The number appended.
KPLAN_API int FGetIdsFromDocData(AcDbObjectIdArray& out);

// Replace out by a copy of the current drawing's regions, error regions or calculated
// parcels; their number.
KPLAN_API int FGetRegionFromCurDoc(AcDbObjectIdArray& out);
KPLAN_API int FGetErrRegionFromCurDoc(AcDbObjectIdArray& out);
KPLAN_API int FGetCalcDKFromCurDoc(AcDbObjectIdArray& out);

// For the module that computes them: replace the current drawing's regions, error
// regions and calculated parcels by these lists.
KPLAN_API int FSetRegionToCurDoc(const AcDbObjectIdArray& regions,
                                 const AcDbObjectIdArray& errorRegions,
                                 const AcDbObjectIdArray& calculatedParcels);

// Erases the region and error-region entities from the drawing, then empties the
// regions, error regions and calculated parcels; the marks stay.
KPLAN_API int FSetRegionNull();
