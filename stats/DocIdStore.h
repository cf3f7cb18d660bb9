#pragma once
// Ids a statistics run has marked, kept per open drawing: the marks, and the regions,
// error regions and parcels of the last calculation. Every call works on the drawing
// that is current when it is made; a drawing's entry is made on first use and kept for
// the life of the module, also after the drawing is closed.
#include "host/arx/dbmain.h"

// Appends every id to the marks as it is: no check, a repeated id stays twice.
int FAddIdsToDocData(const AcDbObjectIdArray& ids);
// Appends the id when it is valid and not erased; 1 when appended.
int FAddIdsToDocData(AcDbObjectId id);
// Removes every occurrence of each id from the marks; the number removed.
int FRemoveIdsDocData(const AcDbObjectIdArray& ids);
int FRemoveIdsDocData(AcDbObjectId id);
// Forgets all marks of the current drawing.
int FRemoveAllIdsDocData();
// Appends to out each mark that is valid, not erased and not yet in out; out is not
// cleared. The number appended.
int FGetIdsFromDocData(AcDbObjectIdArray& out);

// Replace out by a copy of the current drawing's regions, error regions or calculated
// parcels; their number.
int FGetRegionFromCurDoc(AcDbObjectIdArray& out);
int FGetErrRegionFromCurDoc(AcDbObjectIdArray& out);
int FGetCalcDKFromCurDoc(AcDbObjectIdArray& out);

// For the module that computes them: replace the current drawing's regions, error
// regions and calculated parcels by these lists.
int FSetRegionToCurDoc(const AcDbObjectIdArray& regions, const AcDbObjectIdArray& errorRegions,
                       const AcDbObjectIdArray& calculatedParcels);

// Erases the region and error-region entities from the drawing, then empties the
// regions, error regions and calculated parcels; the marks stay.
int FSetRegionNull();
