#pragma once
// Bringing entities into the user's view.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Makes the entity visible when it is not wholly inside the current view: zooms to a
// window around it, 100 drawing units wider and 60 higher on each side. 0 for an invalid
// or erased id, for extents that cannot be read, or when the entity already lies strictly
// inside the view (the view is left as it is); otherwise the result of the zoom command
// (RTNORM when it ran).
KPLAN_API int PanEnt(AcDbObjectId id);

// The same for several entities together: the window is taken around the extents of
// all of them that have extents (invalid and erased ids are passed over). 0 when none
// has extents or all lie strictly inside the view.
KPLAN_API int PanEnts(const AcDbObjectIdArray& ids);

// Zooms to the entity whatever the view, 120 drawing units wider and 80 higher on each
// side; results as PanEnt.
KPLAN_API int ZoomEnt(AcDbObjectId id);

// Shows the user one entity: zooms to it as ZoomEnt does and highlights it. The
// highlight stays until the caller ends it (kova_ent_UnHighLightIds). 1 when done; 0,
// with view and highlight unchanged, for an invalid or erased id or one without extents.
KPLAN_API int FZoomFlashObj(AcDbObjectId id);
