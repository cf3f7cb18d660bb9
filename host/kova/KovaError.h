#pragma once
// Reports a host error status caught by a guarded function on the command line.
#include <exception>

#include "host/arx/acadstrc.h"
#include "host/arx/adesk.h"
#include "kplan/Export.h"

namespace kova {

// Prints "\n<tag>: <status name>", the tag naming the function ("qmplot::GetDkbjByClass").
KPLAN_API void PrintErrorMsg(Acad::ErrorStatus status, const ACHAR* tag);

// Runs body; a thrown host status is reported under the tag and, like any other
// escaping failure, turned into the failure result. The guard of every exported function
// that works on the drawing.
template <typename Result, typename Body>
Result Guarded(const ACHAR* tag, Result failure, Body body) {
    try {
        return body();
    } catch (Acad::ErrorStatus status) {
        PrintErrorMsg(status, tag);
    } catch (const std::exception&) {
    }
    return failure;
}

}  // namespace kova
