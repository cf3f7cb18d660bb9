#pragma once
// The command-line dialogues in which the user says what a statistic is about: the
// planning scope line, or the statistics scope (scope lines, closed lines, a line drawn
// now, or a plain pick of parcels), and a preview of the parcels a boundary counts.
// They leave the drawing as it was, but for the highlight lines of the chosen scope
// lines; the object snap mode is put back on every path.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

// Appends the chosen planning scope line to scopes: the largest scope line of the current
// space when the user confirms it, else one the user picks or draws. 1 when one was
// appended, 0 otherwise.
KPLAN_API int KovaSelectGHFWX(AcDbObjectIdArray& scopes);

// Asks for the statistics scope. scopes receives the chosen scope lines (none in the
// parcel and drawing modes), parcels the parcel boundaries to count (written only when
// the dialogue runs to its end), totalArea the drawn line's area in hectares in the
// drawing mode or the typed total in the parcel mode (kept on Enter). 1 when parcels
// were written, 0 otherwise.
KPLAN_API int KovaSelectPlot(AcDbObjectIdArray& scopes, double& totalArea,
                             AcDbObjectIdArray& parcels);

// Shows the statistics scope: parcels not crossing the boundary are shown, each crossing
// one gets a hatch of its part inside the boundary (islands cut out) in its colour,
// appended to hatches. 0 for an invalid or erased boundary, an empty parcel list or a
// boundary that makes no region; else 1.
KPLAN_API int FPreViewAllPlot(AcDbObjectId boundary, const AcDbObjectIdArray& parcels,
                              const AcDbObjectIdArray& crossing, AcDbObjectIdArray& hatches);
