#pragma once
// The lines of a hatch pattern as a picture draws them: the host's pattern definition
// scaled and turned as a class table asks, cut into the dashes that cross a window.
#include <functional>
#include <string>
#include <vector>

#include "host/arx/dbhatch.h"

namespace render {

// The line families of the host's predefined pattern name (ASCII case ignored), scaled
// by scale and turned anticlockwise by angleDegrees about the drawing's origin, as the
// host's hatch computes them. Empty for SOLID, for a name the host lacks and for a scale
// that is not positive.
std::vector<AcDbHatchPatternLine> scaledPattern(const std::wstring& name, double scale,
                                                double angleDegrees);

// Calls segment(x0, y0, x1, y1) for each dash of the families that meets the window
// [minX, maxX] x [minY, maxY] (drawing units). Dots (dashes of length 0) come as
// segments of length dotLength along their line; a family with no dashes is continuous.
// Families whose lines lie closer than minSpacing apart are left out, as are all of a
// family's lines when more than maxLines of them would cross the window.
void patternSegments(const std::vector<AcDbHatchPatternLine>& families, double minX, double minY,
                     double maxX, double maxY, double minSpacing, double dotLength,
                     const std::function<void(double, double, double, double)>& segment,
                     long maxLines = 100000);

}  // namespace render
