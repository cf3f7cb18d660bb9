#pragma once
// Parcel land inside a closed boundary: parcels wholly inside count with their record
// area, parcels crossing the boundary with the area of their part inside (islands taken
// off the same way), and the land-use tabulation of parcels within boundaries.
//
// Areas come out in hectares. The record area is the computed one when the project
// counts computed areas, else the entered one; a project that does not clip parcels at
// the boundary gets the record areas of all parcels, the boundary ignored. Every
// function returns 1 unless said otherwise, and leaves no curve of its own in the drawing.
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

// The measure. With an invalid boundary or clipping switched off the record areas are
// added to area as it stands; otherwise area is set to the land inside the boundary.
KPLAN_API int FGetDKAreaByBoundaryGPC(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                                      double& area);
// The measure of the parcels whose class "FS_DKXZ" matches cls: with exact 0 the code,
// cut to the length of cls, must equal it; otherwise the whole code must. Both trimmed.
// area is reset first. Without clipping it sums the parcels' GetArea; cutIds and the
// last argument are not consulted.
KPLAN_API int FGetDKAreaByBoundaryGPC(AcDbObjectId boundary, const CString& cls,
                                      const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
                                      double& area, int exact, int);
// The plain measure of the parcels whose class matches, as above (so without clipping it
// adds to area).
KPLAN_API int FGetDKAreaByBoundaryGPC(AcDbObjectId boundary, const CString& cls,
                                      const AcDbObjectIdArray& ids, double& area, int exact);

// The same measures under their older names.
KPLAN_API int FGetDKAreaByBoundary(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                                   double& area);
KPLAN_API int FGetDKAreaByBoundary(AcDbObjectId boundary, const CString& cls,
                                   const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
                                   double& area, int exact, int);
KPLAN_API int FGetDKAreaByBoundary(AcDbObjectId boundary, const CString& cls,
                                   const AcDbObjectIdArray& ids, double& area, int exact);
// cutIds and the last argument are not consulted.
KPLAN_API int FGetDKAreaByBoundary(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                                   const AcDbObjectIdArray& cutIds, double& area, int);

// Each boundary measured on its own and its result added to area (a parcel inside two
// boundaries counts twice). No boundary at all measures once without one: the record
// areas, unclipped.
KPLAN_API int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries,
                                   const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries, const CString& cls,
                                   const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
                                   double& area, int exact, int);
KPLAN_API int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries, const CString& cls,
                                   const AcDbObjectIdArray& ids, double& area, int exact);
KPLAN_API int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries,
                                   const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
                                   double& area, int);

// The planned (planned non-zero) or current-status parcels of class cls that the boundary
// reaches, found by a crossing-polygon selection through its outline, measured; the view
// is brought to the boundary first (PanEnt). area is reset; 0 when the boundary is
// invalid, erased or unreadable.
KPLAN_API int FGetDKAreaByBoundary(AcDbObjectId boundary, const CString& cls, double& area,
                                   int exact, int planned);

// The land-use balance within boundaries: per major class (first character of "FS_DKXZ")
// and per class, in order of first appearance, the land of every parcel inside the
// boundaries. A parcel wholly inside a boundary counts with its record area, one crossing
// it with its part inside, its islands crossing the boundary taken off and its islands
// wholly inside added. Parcels without a class or without land inside are left out. The
// four outputs are cleared first.
KPLAN_API int FTJDKAreaByBoundary(const AcDbObjectIdArray& boundaries,
                                  const AcDbObjectIdArray& parcels, CStringArray& majorClasses,
                                  AcGeDoubleArray& majorAreas, CStringArray& classes,
                                  AcGeDoubleArray& classAreas);
