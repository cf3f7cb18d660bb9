#pragma once
// The drawing of the benchmarks: parcels of about 50 m (quadrilaterals, 12-gons and blocks
// with arcs) on a grid near x 500 km and y 3,500 km, with the classes of a plan, and an
// irregular 80-gon boundary whose teeth are sized so that it cuts a share of them.
//
// Realistic (the default) is shaped like a planner's drawing: each parcel carries a full
// control-plan record (the 20 fields of the shipped attribute file and a few more, Chinese
// names, owners, remarks, indicators, an entered area), coordinates have 17 significant
// digits, one parcel in 40 holds an island (a green parcel inside it), and the boundary
// is a planning scope line ("FAPP_GHFWX") that cuts about a tenth of the parcels. Its
// records are kept in the loader's compact form, so that a million parcels fit in memory.
// Plain is the former drawing: the class only (indicators on request), a fifth cut.
// KPLAN_BENCH_DRAWING=plain in the environment makes plain the default, to compare with
// figures measured on it.
#include "host/arx/acdocman.h"

namespace bench {

enum class Shape { Realistic, Plain };

// Realistic unless KPLAN_BENCH_DRAWING says "plain".
Shape defaultShape();
// "realistic" or "plain", for file names and reports.
const char* shapeName(Shape shape);

struct StatsDrawing {
    AcApDocument* document = nullptr;
    AcDbObjectId boundary;
    AcDbObjectIdArray parcels;  // islands included
    double crossingShare = 0;
    double clipShare = 0;       // parcels that needed a clip
    double wholeClipShare = 0;  // of them, clipped against the whole boundary
};

// Draws into a new document, which becomes current. withIndicators matters to the plain
// shape only: it adds what a planner's drawing carries besides the class (number,
// floor-area ratio, green ratio, population, a Chinese remark) and makes the boundary a
// planning scope line. count counts the outer parcels; islands come on top.
StatsDrawing makeStatsDrawing(int count, bool withIndicators, Shape shape = defaultShape());

// The drawing of count parcels (without indicators when plain), made on first use and
// kept for the process; it becomes the current document.
StatsDrawing& sharedStatsDrawing(int count);

}  // namespace bench
