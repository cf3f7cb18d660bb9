#pragma once
// Ellipses (ELLIPSE) and splines (SPLINE) as typed entities.
#include "host/dxf/Codecs.h"

namespace dxf {

Codec ellipseCodec();
Codec splineCodec();

}  // namespace dxf
