#include "host/kova/KovaError.h"

#include "host/arx/acutads.h"

namespace kova {

void PrintErrorMsg(Acad::ErrorStatus status, const ACHAR* tag) {
    acutPrintf(L"\n%s: %s", tag ? tag : L"", acadErrorStatusText(status));
}

}  // namespace kova
