#pragma once
// Highlighting entities for the user, and removing the temporary highlight lines that
// the selection dialogues draw over parcels.
#include "host/arx/dbmain.h"

// The link from a polyline to the temporary coloured copies that highlight it.
inline constexpr const ACHAR* kColorLineLink = L"COLORLINE_LINK";

// Highlights every listed entity (or ends the highlight); invalid and erased ids are
// passed over. The number of entities done.
int kova_ent_HighLightIds(const AcDbObjectIdArray& ids);
int kova_ent_UnHighLightIds(const AcDbObjectIdArray& ids);

// Erases the highlight lines of a polyline (the entities it links under
// "COLORLINE_LINK") and drops the link; the polyline itself stays. The number of lines
// erased (0 when it had none, or for an invalid id).
int KovaDelBlueLine(AcDbObjectId id);
// The same for every listed polyline; the total erased.
int KovaDelBlueLine(const AcDbObjectIdArray& ids);
