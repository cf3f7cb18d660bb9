#pragma once
// The drawing of the statistics benchmarks: parcels of about 50 m (quadrilaterals, 12-gons
// and blocks with arcs) on a grid near x 500 km and y 3,500 km, with the classes of a
// plan, and an irregular 80-gon boundary whose teeth are sized so that it cuts about a
// fifth of them.
#include "host/arx/acdocman.h"

namespace bench {

struct StatsDrawing {
    AcApDocument* document = nullptr;
    AcDbObjectId boundary;
    AcDbObjectIdArray parcels;
    double crossingShare = 0;
    double clipShare = 0;       // parcels that needed a clip
    double wholeClipShare = 0;  // of them, clipped against the whole boundary
};

// Draws into a new document, which becomes current. withIndicators adds what a planner's
// drawing carries besides the class (number, floor-area ratio, green ratio, population,
// a Chinese remark) and makes the boundary a planning scope line ("FAPP_GHFWX").
StatsDrawing makeStatsDrawing(int count, bool withIndicators);

// The drawing of count parcels without indicators, made on first use and kept for the
// process; it becomes the current document.
StatsDrawing& sharedStatsDrawing(int count);

}  // namespace bench
