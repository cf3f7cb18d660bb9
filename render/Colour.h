#pragma once
// Colours of a picture: the host's colours as red, green and blue between 0 and 1.
#include "host/arx/dbcolor.h"

namespace render {

struct Rgb {
    double r = 0, g = 0, b = 0;
    bool operator==(const Rgb&) const = default;
};

// 0..255 components, as a class table writes them.
constexpr Rgb rgb255(int r, int g, int b) {
    return {r / 255.0, g / 255.0, b / 255.0};
}

// A true colour as it is; an index colour 1..255 through the host's standard palette.
// False, with out unchanged, for by-layer, by-block and no colour (what the lookups give
// for a class they do not know).
bool rgbOf(const AcCmColor& colour, Rgb& out);

// The colour a fraction of the way towards black (0 leaves it, 1 is black).
Rgb darker(const Rgb& colour, double fraction);

}  // namespace render
