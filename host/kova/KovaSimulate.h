#pragma once
// The maker's arc approximation: an outline of vertices and bulges turned into a chain of
// straight chords, for code that can only clip straight-edged polygons.
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

namespace kova::ent {

// Replaces every arc segment of the closed outline (bulge i from vertex i to vertex i + 1,
// the last one closing the outline; missing bulges are 0) by chords: segmentsPerCircle of
// them for a full turn and proportionally fewer for a smaller arc, and more where the arc
// is so flat that such chords would stray more than 0.05 mm from it. The vertices are
// kept and come in their order, each followed by the inner chord points of its segment;
// the first vertex is not repeated at the end. With 1800 chords a turn a 50 m parcel
// loses well under 0.01 m² of area to its arcs, whatever their radius.
//
// out is cleared first. 0, with out empty, when there are no points or segmentsPerCircle
// is not positive.
KPLAN_API int SimulateCurve(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges,
                            int segmentsPerCircle, AcGePoint3dArray& out);

}  // namespace kova::ent
