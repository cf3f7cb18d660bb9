#pragma once
// Totals of parcel land (hectares, as CDKBJXDInfo::GetArea gives it) and population over
// a list of parcels, over all planned or current-status parcels of the drawing, or over
// the parcels of a land-use class; and the twelve totals of the land-use balance table,
// construction land "H" down to non-construction land "E3".
//
// Unless a total says it resets its output, it adds to the caller's value, so that a
// caller wanting a fresh total sets it to 0 first.
#include <array>

#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

// The listed parcels; resets area.
KPLAN_API int GetDKIdsArea(const AcDbObjectIdArray& ids, double& area);

// All planned / current-status parcels of the drawing.
KPLAN_API int GetGHDKAllArea(double& area);
KPLAN_API int GetXZDKAllArea(double& area);
// Their population as the older drawings kept it, in the field named "地块坡度".
KPLAN_API int GetGHDKAllRKS(int& n);
KPLAN_API int GetXZDKAllRKS(int& n);
// Their population in the total-population field "FN_ZRKS".
KPLAN_API int GetGHDKAllRKSForGIS(int& n);
KPLAN_API int GetXZDKAllRKSForGIS(int& n);
// The listed parcels that are planned / current-status parcels.
KPLAN_API int GetGHDKAllArea(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int GetXZDKAllArea(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int GetGHDKAllRKSForGIS(const AcDbObjectIdArray& ids, int& n);
KPLAN_API int GetXZDKAllRKSForGIS(const AcDbObjectIdArray& ids, int& n);

// One class, read from "地块类别" and compared case-sensitively after trimming: by prefix
// (R counts R, R1 and R21) or whole. An empty class adds nothing.
KPLAN_API int GetDKAreaByClass(const CString& cls, const AcDbObjectIdArray& ids, double& area);
KPLAN_API int GetDKAreaByCompareClass(const CString& cls, const AcDbObjectIdArray& ids,
                                      double& area);
// Several classes by prefix, the parcels of each class fetched on their own from the
// drawing (or from ids), planned or current-status: a parcel two classes match counts
// twice.
KPLAN_API int GetDKAreaByClass(const CStringArray& classes, double& area, int currentStatus);
KPLAN_API int GetDKAreaByClass(const CStringArray& classes, const AcDbObjectIdArray& ids,
                               double& area, int currentStatus);

// The balance-table totals of the listed parcels by their class "FS_DKXZ"; each resets
// area. "H": construction land, a code whose upper-cased first letter is one of A B G H M
// R S U W. "H1": that, less the code "H" and codes beginning H2, H3, H4, H5 or H9. "H11":
// "H1" less the code "H1". "H2" to "H9", "E1" to "E3": the first two characters; "E": the
// first. Only "H", "H1" and "H11" upper-case the code.
KPLAN_API int FGetHArea(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetH1Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetH11Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetH2Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetH3Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetH4Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetH5Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetH9Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetEArea(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetE1Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetE2Area(const AcDbObjectIdArray& ids, double& area);
KPLAN_API int FGetE3Area(const AcDbObjectIdArray& ids, double& area);
// The twelve above at once, in that order ("H", "H1", "H11", "H2" to "H5", "H9", "E", "E1"
// to "E3"), each equal to what its own function gives: each record is read once however
// many totals count it, where the twelve read the whole list twelve times. Returns 1.
KPLAN_API int FGetBalanceAreas(const AcDbObjectIdArray& ids, std::array<double, 12>& areas);

// The same totals within a boundary; cutIds lists the parcels that cross it, which count
// with their part inside. "H2" to "E3" measure their class within the boundary.
KPLAN_API int FGetHArea(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                        const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetH1Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetH11Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                          const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetH2Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetH3Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetH4Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetH5Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetH9Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetEArea(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                        const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetE1Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetE2Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
KPLAN_API int FGetE3Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area);
