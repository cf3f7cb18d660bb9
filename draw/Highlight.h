#pragma once
// Highlighting entities for the user, and removing the temporary highlight lines that
// the selection dialogues draw over parcels.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// The link from a polyline to the temporary coloured copies that highlight it.
inline constexpr const ACHAR* kColorLineLink = L"COLORLINE_LINK";

// Highlights every listed entity (or ends the highlight); invalid and erased ids are
// passed over. The number of entities done.
KPLAN_API int kova_ent_HighLightIds(const AcDbObjectIdArray& ids);
KPLAN_API int kova_ent_UnHighLightIds(const AcDbObjectIdArray& ids);

// Erases the highlight lines of a polyline (the entities it links under
// "COLORLINE_LINK") and drops the link; the polyline itself stays. The number of lines
// erased (0 when it had none, or for an invalid id).
KPLAN_API int KovaDelBlueLine(AcDbObjectId id);
// The same for every listed polyline; the total erased.
KPLAN_API int KovaDelBlueLine(const AcDbObjectIdArray& ids);

// Draws a temporary highlight of a polyline: a plain lightweight copy of its outline (no
// xdata, so no selection takes it for a parcel or a scope line) in colour index color,
// with constant width width, in the polyline's space, linked from the polyline under
// "COLORLINE_LINK". lineType is not used by the portable host. The copy's id, or null
// for an id that is not a readable curve. Erasing the copy ends the highlight.
KPLAN_API AcDbObjectId FColorPolylineViewGL(AcDbObjectId id, int color, int lineType, double width);
// Ends every highlight the polyline has (as KovaDelBlueLine); the number of lines erased.
KPLAN_API int FUnColorPolylineViewGL(AcDbObjectId id);
