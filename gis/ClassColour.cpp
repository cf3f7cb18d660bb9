#include "gis/ClassColour.h"

#include <cstdio>

#include "standard/KovaAttribSet.h"

namespace gis {

std::string colourText(const AcCmColor& colour) {
    unsigned r = 0, g = 0, b = 0;
    if (colour.isByColor()) {
        r = colour.red();
        g = colour.green();
        b = colour.blue();
    } else if (colour.isByACI() && colour.colorIndex() >= 1 && colour.colorIndex() <= 255) {
        Adesk::UInt32 packed =
            AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(colour.colorIndex()));
        r = (packed >> 16) & 0xFF;
        g = (packed >> 8) & 0xFF;
        b = packed & 0xFF;
    } else {
        return {};
    }
    char text[8];
    std::snprintf(text, sizeof text, "#%02X%02X%02X", r & 0xFF, g & 0xFF, b & 0xFF);
    return text;
}

std::string classColourText(const std::string& code, bool aboveGround) {
    return colourText(CKovaAttribSet::FGetCmColorFromCur(CString::FromUtf8(code), aboveGround));
}

}  // namespace gis
