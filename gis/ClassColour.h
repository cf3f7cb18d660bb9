#pragma once
// The fill colour of a land-use class as GIS styles take it: "#RRGGBB".
#include <string>

#include "host/arx/dbcolor.h"

namespace gis {

// "#RRGGBB" of a true colour, or of an index colour 1..255 through the host's standard
// palette; "" for by-layer, by-block and no colour.
std::string colourText(const AcCmColor& colour);

// The class's fill colour from the current class table (its "_地下" table below ground),
// through the colour lookups with their drawing cache, "KB" and compound-code rules; ""
// for a class that has none.
std::string classColourText(const std::string& code, bool aboveGround);

}  // namespace gis
