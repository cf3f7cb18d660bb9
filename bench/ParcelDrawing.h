#pragma once
// The drawing the DXF benchmark reads and writes: parcels as planners draw them.
#include <string>

namespace bench {

// Writes count closed LWPOLYLINE parcels of 4 to 40 vertices (a quarter with bulges),
// each with a GIS record of 20 fields (some values Chinese), through kplan's writer.
// Returns false with a message on failure.
bool makeParcelDrawing(const std::string& path, int count, std::string& error);

}  // namespace bench
