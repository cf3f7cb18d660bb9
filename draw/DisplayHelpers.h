#pragma once
// Bringing an entity into the user's view.
#include "host/arx/dbmain.h"

// Makes the entity visible when it is not wholly inside the current view: zooms to a
// window around it, 100 drawing units wider and 60 higher on each side. 0 for an invalid
// or erased id, for extents that cannot be read, or when the entity already lies strictly
// inside the view (the view is left as it is); otherwise the result of the zoom command
// (RTNORM when it ran).
int PanEnt(AcDbObjectId id);

// Zooms to the entity whatever the view, 120 drawing units wider and 80 higher on each
// side; results as PanEnt.
int ZoomEnt(AcDbObjectId id);
