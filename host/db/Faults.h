#pragma once
// Failures of the portable host on demand, for tests of the exception guards of the
// calling code: an armed operation throws std::bad_alloc on its next call, as a host that
// runs out of memory would. Nothing is armed unless a test arms it.
#include <string_view>

namespace db {

// The next call of the named host operation ("AcDbHatch::evaluateHatch") throws.
void failNextCall(std::string_view operation);
void clearFaults();
// Called by host operations that can fail so; throws when the operation is armed.
void failIfArmed(std::string_view operation);

}  // namespace db
