#include "render/Colour.h"

namespace render {

bool rgbOf(const AcCmColor& colour, Rgb& out) {
    if (colour.isByColor()) {
        out = rgb255(colour.red(), colour.green(), colour.blue());
        return true;
    }
    if (!colour.isByACI()) return false;
    Adesk::UInt16 index = colour.colorIndex();
    if (index < 1 || index > 255) return false;
    Adesk::UInt32 packed = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index));
    out = rgb255(static_cast<int>((packed >> 16) & 0xFF), static_cast<int>((packed >> 8) & 0xFF),
                 static_cast<int>(packed & 0xFF));
    return true;
}

Rgb darker(const Rgb& colour, double fraction) {
    double keep = 1 - fraction;
    return {colour.r * keep, colour.g * keep, colour.b * keep};
}

}  // namespace render
