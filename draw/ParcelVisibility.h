#pragma once
// Hiding a parcel together with what belongs to it (its fill, attribute block, back
// lines and their dimensions, found through the parcel's named links), and asking
// whether an entity is hidden.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Hides (hide non-zero) or shows each parcel with all its companions, in this order:
// the "填充色块" fill, the "ATTBLK_DKBJ_XNAME" attribute block, each "DK_LINK_GC_BACKLINE"
// back line after its "GCBACKLINE_LINK_DIM" dimensions, the same for "DK_LINK_DC_BACKLINE"
// and "DCBACKLINE_LINK_DIM", then the parcel. Entities that cannot be changed (erased,
// open elsewhere) are passed over. The number of entities hidden or shown.
KPLAN_API int FHideDK(const AcDbObjectIdArray& parcels, int hide);
// One parcel; 0 for an invalid or erased id.
KPLAN_API int FHideDK(AcDbObjectId parcel, int hide);

// The same, leaving the parcel boundaries themselves as they are.
KPLAN_API int FHideDKTC(const AcDbObjectIdArray& parcels, int hide);
KPLAN_API int FHideDKTC(AcDbObjectId parcel, int hide);

// 1 when the entity is invisible; 0 when it is visible, not valid or cannot be opened.
KPLAN_API int FEntIsHide(AcDbObjectId id);
