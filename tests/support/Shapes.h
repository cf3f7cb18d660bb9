#pragma once
// Outlines that tests outside the fixture draw into the working drawing.
#include "host/arx/dbmain.h"

// A closed rectangle polyline from (x0, y0) to (x1, y1), added to model space.
AcDbObjectId addClosedRectangle(double x0, double y0, double x1, double y1);
