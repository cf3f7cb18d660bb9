#pragma once
// The parcels of a drawing measured for the balance tables with the library's own
// statistics: a parcel wholly inside the scope line counts with its record area, one
// crossing it with its part inside (FGetDKAreaByBoundary), one outside not at all; the
// class code through the parcel record, which reads every record generation.
#include "host/arx/dbmain.h"
#include "report/Balance.h"

namespace kplan::report {

// boundary null: every parcel whole, no scope. Run inside a stats::ClipSession: the
// parcels are clipped once, on all cores, for all the measures. The mix ratio "FS_HHBL"
// is read only with readMixRatio (for --mixed split).
Measured measureParcels(const AcDbObjectIdArray& parcels, AcDbObjectId boundary, Scenario scenario,
                        bool readMixRatio = false);

// The handle text of an object ("2A").
std::string handleOf(AcDbObjectId id);

}  // namespace kplan::report
