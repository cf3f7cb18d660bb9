#pragma once
// Reports a host error status caught by a guarded function on the command line.
#include "host/arx/acadstrc.h"
#include "host/arx/adesk.h"

namespace kova {

// Prints "\n<tag>: <status name>", the tag naming the function ("qmplot::GetDkbjByClass").
void PrintErrorMsg(Acad::ErrorStatus status, const ACHAR* tag);

}  // namespace kova
