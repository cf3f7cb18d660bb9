#include "host/arx/dbcolor.h"

#include <limits>

namespace {

// The standard colour-index palette (0xRRGGBB); 0 and the by-layer/by-block slots
// have no colour of their own.
constexpr Adesk::UInt32 kPalette[256] = {
    0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF, 0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080,
    0xC0C0C0, 0xFF0000, 0xFF7F7F, 0xA50000, 0xA55252, 0x7F0000, 0x7F3F3F, 0x4C0000, 0x4C2626,
    0x260000, 0x261313, 0xFF3F00, 0xFF9F7F, 0xA52900, 0xA56752, 0x7F1F00, 0x7F4F3F, 0x4C1300,
    0x4C2F26, 0x260900, 0x261713, 0xFF7F00, 0xFFBF7F, 0xA55200, 0xA57C52, 0x7F3F00, 0x7F5F3F,
    0x4C2600, 0x4C3926, 0x261300, 0x261C13, 0xFFBF00, 0xFFDF7F, 0xA57C00, 0xA59152, 0x7F5F00,
    0x7F6F3F, 0x4C3900, 0x4C4226, 0x261C00, 0x262113, 0xFFFF00, 0xFFFF7F, 0xA5A500, 0xA5A552,
    0x7F7F00, 0x7F7F3F, 0x4C4C00, 0x4C4C26, 0x262600, 0x262613, 0xBFFF00, 0xDFFF7F, 0x7CA500,
    0x91A552, 0x5F7F00, 0x6F7F3F, 0x394C00, 0x424C26, 0x1C2600, 0x212613, 0x7FFF00, 0xBFFF7F,
    0x52A500, 0x7CA552, 0x3F7F00, 0x5F7F3F, 0x264C00, 0x394C26, 0x132600, 0x1C2613, 0x3FFF00,
    0x9FFF7F, 0x29A500, 0x67A552, 0x1F7F00, 0x4F7F3F, 0x134C00, 0x2F4C26, 0x092600, 0x172613,
    0x00FF00, 0x7FFF7F, 0x00A500, 0x52A552, 0x007F00, 0x3F7F3F, 0x004C00, 0x264C26, 0x002600,
    0x132613, 0x00FF3F, 0x7FFF9F, 0x00A529, 0x52A567, 0x007F1F, 0x3F7F4F, 0x004C13, 0x264C2F,
    0x002609, 0x135817, 0x00FF7F, 0x7FFFBF, 0x00A552, 0x52A57C, 0x007F3F, 0x3F7F5F, 0x004C26,
    0x264C39, 0x002613, 0x13581C, 0x00FFBF, 0x7FFFDF, 0x00A57C, 0x52A591, 0x007F5F, 0x3F7F6F,
    0x004C39, 0x264C42, 0x00261C, 0x135858, 0x00FFFF, 0x7FFFFF, 0x00A5A5, 0x52A5A5, 0x007F7F,
    0x3F7F7F, 0x004C4C, 0x264C4C, 0x002626, 0x135858, 0x00BFFF, 0x7FDFFF, 0x007CA5, 0x5291A5,
    0x005F7F, 0x3F6F7F, 0x00394C, 0x26427E, 0x001C26, 0x135858, 0x007FFF, 0x7FBFFF, 0x0052A5,
    0x527CA5, 0x003F7F, 0x3F5F7F, 0x00264C, 0x26397E, 0x001326, 0x131C58, 0x003FFF, 0x7F9FFF,
    0x0029A5, 0x5267A5, 0x001F7F, 0x3F4F7F, 0x00134C, 0x262F7E, 0x000926, 0x131758, 0x0000FF,
    0x7F7FFF, 0x0000A5, 0x5252A5, 0x00007F, 0x3F3F7F, 0x00004C, 0x26267E, 0x000026, 0x131358,
    0x3F00FF, 0x9F7FFF, 0x2900A5, 0x6752A5, 0x1F007F, 0x4F3F7F, 0x13004C, 0x2F267E, 0x090026,
    0x171358, 0x7F00FF, 0xBF7FFF, 0x5200A5, 0x7C52A5, 0x3F007F, 0x5F3F7F, 0x26004C, 0x39267E,
    0x130026, 0x1C1358, 0xBF00FF, 0xDF7FFF, 0x7C00A5, 0x9152A5, 0x5F007F, 0x6F3F7F, 0x39004C,
    0x42264C, 0x1C0026, 0x581358, 0xFF00FF, 0xFF7FFF, 0xA500A5, 0xA552A5, 0x7F007F, 0x7F3F7F,
    0x4C004C, 0x4C264C, 0x260026, 0x581358, 0xFF00BF, 0xFF7FDF, 0xA5007C, 0xA55291, 0x7F005F,
    0x7F3F6F, 0x4C0039, 0x4C2642, 0x26001C, 0x581358, 0xFF007F, 0xFF7FBF, 0xA50052, 0xA5527C,
    0x7F003F, 0x7F3F5F, 0x4C0026, 0x4C2639, 0x260013, 0x58131C, 0xFF003F, 0xFF7F9F, 0xA50029,
    0xA55267, 0x7F001F, 0x7F3F4F, 0x4C0013, 0x4C262F, 0x260009, 0x581317, 0x000000, 0x656565,
    0x666666, 0x999999, 0xCCCCCC, 0xFFFFFF,
};

}  // namespace

Adesk::Int16 AcCmEntityColor::colorIndex() const {
    switch (method_) {
        case AcCm::kByLayer:
            return kACIbyLayer;
        case AcCm::kByBlock:
            return kACIbyBlock;
        case AcCm::kByACI:
            return static_cast<Adesk::Int16>(value_);
        case AcCm::kByColor:
            return lookUpACI(red(), green(), blue());
        case AcCm::kForeground:
            return kACIforeground;
        default:
            return 0;
    }
}

void AcCmEntityColor::setColorIndex(Adesk::Int16 index) {
    if (index == kACIbyLayer) {
        method_ = AcCm::kByLayer;
        value_ = 256;
    } else if (index == kACIbyBlock) {
        method_ = AcCm::kByBlock;
        value_ = 0;
    } else {
        method_ = AcCm::kByACI;
        value_ = static_cast<Adesk::UInt32>(index);
    }
}

void AcCmEntityColor::setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    method_ = AcCm::kByColor;
    value_ = (Adesk::UInt32(red) << 16) | (Adesk::UInt32(green) << 8) | blue;
}

Adesk::UInt8 AcCmEntityColor::red() const {
    Adesk::UInt32 rgb = method_ == AcCm::kByColor ? value_
                        : method_ == AcCm::kByACI ? lookUpRGB(static_cast<Adesk::UInt8>(value_))
                                                  : 0;
    return static_cast<Adesk::UInt8>(rgb >> 16);
}

Adesk::UInt8 AcCmEntityColor::green() const {
    Adesk::UInt32 rgb = method_ == AcCm::kByColor ? value_
                        : method_ == AcCm::kByACI ? lookUpRGB(static_cast<Adesk::UInt8>(value_))
                                                  : 0;
    return static_cast<Adesk::UInt8>(rgb >> 8);
}

Adesk::UInt8 AcCmEntityColor::blue() const {
    Adesk::UInt32 rgb = method_ == AcCm::kByColor ? value_
                        : method_ == AcCm::kByACI ? lookUpRGB(static_cast<Adesk::UInt8>(value_))
                                                  : 0;
    return static_cast<Adesk::UInt8>(rgb);
}

Adesk::UInt32 AcCmEntityColor::lookUpRGB(Adesk::UInt8 colorIndex) {
    return kPalette[colorIndex];
}

Adesk::UInt8 AcCmEntityColor::lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    int best = 1;
    long bestDistance = std::numeric_limits<long>::max();
    for (int i = 1; i < 256; ++i) {
        long dr = long((kPalette[i] >> 16) & 0xFF) - red;
        long dg = long((kPalette[i] >> 8) & 0xFF) - green;
        long db = long(kPalette[i] & 0xFF) - blue;
        long distance = dr * dr + dg * dg + db * db;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
            if (distance == 0) break;
        }
    }
    return static_cast<Adesk::UInt8>(best);
}

Acad::ErrorStatus AcCmColor::setColorMethod(AcCm::ColorMethod method) {
    switch (method) {
        case AcCm::kByLayer:
            color_.setColorIndex(AcCmEntityColor::kACIbyLayer);
            break;
        case AcCm::kByBlock:
            color_.setColorIndex(AcCmEntityColor::kACIbyBlock);
            break;
        case AcCm::kByACI:
            if (!color_.isByACI()) color_.setColorIndex(7);
            break;
        case AcCm::kByColor:
            if (!color_.isByColor()) color_.setRGB(red(), green(), blue());
            break;
        default:
            color_.setColorMethod(method);
            break;
    }
    return Acad::eOk;
}

Adesk::UInt16 AcCmColor::colorIndex() const {
    return static_cast<Adesk::UInt16>(color_.colorIndex());
}

Acad::ErrorStatus AcCmColor::setColorIndex(Adesk::UInt16 index) {
    if (index > 257) return Acad::eOutOfRange;
    if (index == 257) {
        color_.setColorMethod(AcCm::kNone);
        return Acad::eOk;
    }
    color_.setColorIndex(static_cast<Adesk::Int16>(index));
    return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    color_.setRGB(red, green, blue);
    return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setRed(Adesk::UInt8 value) {
    return setRGB(value, green(), blue());
}
Acad::ErrorStatus AcCmColor::setGreen(Adesk::UInt8 value) {
    return setRGB(red(), value, blue());
}
Acad::ErrorStatus AcCmColor::setBlue(Adesk::UInt8 value) {
    return setRGB(red(), green(), value);
}
