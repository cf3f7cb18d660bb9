#pragma once
// The parcels of a drawing measured for the balance tables with the library's own
// statistics: a parcel wholly inside the scope line counts with its record area, one
// crossing it with its part inside (FGetDKAreaByBoundary), one outside not at all; the
// class code through the parcel record, which reads every record generation.
#include <vector>

#include "host/arx/dbmain.h"
#include "report/Balance.h"

namespace kplan::report {

// What the statistics of a run found already for the same parcels within the same
// boundary: the parcels FIsDKAndBoundaryInter puts inside or across it (all of them
// without a boundary) and those across it, in the order of the parcels, and the
// population ("FN_ZRKS") of the counted ones.
struct Counted {
    AcDbObjectIdArray counted, crossing;
    long population = 0;
};

// Clips every parcel of the lists against the boundary in one pass on all cores, in
// chunks so that the progress bar moves. Inside a stats::ClipSession the answers are kept
// for the measures that follow; outside one this only costs time.
void clipParcels(const std::vector<const AcDbObjectIdArray*>& lists, AcDbObjectId boundary);

// boundary null: every parcel whole, no scope. Run inside a stats::ClipSession: the
// parcels are clipped once, on all cores, for all the measures. The mix ratio "FS_HHBL"
// is read only with readMixRatio (for --mixed split). With known (the same parcels and
// boundary measured by the statistics) nothing is asked twice; known lists that do not
// fit the parcels are set aside and everything is measured again.
Measured measureParcels(const AcDbObjectIdArray& parcels, AcDbObjectId boundary, Scenario scenario,
                        bool readMixRatio = false, const Counted* known = nullptr);

// The handle text of an object ("2A").
std::string handleOf(AcDbObjectId id);

}  // namespace kplan::report
