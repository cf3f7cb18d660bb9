#include "draw/ColorConvert.h"

#include "host/kova/KovaError.h"

namespace {

Adesk::UInt8 redOf(unsigned long colorRef) {
    return static_cast<Adesk::UInt8>(colorRef & 0xFF);
}
Adesk::UInt8 greenOf(unsigned long colorRef) {
    return static_cast<Adesk::UInt8>((colorRef >> 8) & 0xFF);
}
Adesk::UInt8 blueOf(unsigned long colorRef) {
    return static_cast<Adesk::UInt8>((colorRef >> 16) & 0xFF);
}

}  // namespace

void RGBToCmColor(unsigned long colorRef, AcCmColor& color) {
    kova::Guarded(L"fplot03::RGBToCmColor", 0, [&] {
        color.setRGB(redOf(colorRef), greenOf(colorRef), blueOf(colorRef));
        return 1;
    });
}

int FColorToIndex(unsigned long colorRef) {
    return AcCmEntityColor::lookUpACI(redOf(colorRef), greenOf(colorRef), blueOf(colorRef));
}

AcCmColor FColorToCmColor(unsigned long colorRef) {
    auto index = static_cast<Adesk::UInt8>(FColorToIndex(colorRef));
    Adesk::UInt32 rgb = AcCmEntityColor::lookUpRGB(index);
    AcCmColor color;
    color.setRGB(static_cast<Adesk::UInt8>(rgb >> 16), static_cast<Adesk::UInt8>(rgb >> 8),
                 static_cast<Adesk::UInt8>(rgb));
    return color;
}
