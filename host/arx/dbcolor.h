#pragma once
// Colours of the host: an index into the 256-colour palette, a true colour, or by
// layer / by block.
#include <cstdint>

#include "host/arx/acadstrc.h"
#include "host/arx/adesk.h"
#include "kplan/Export.h"

namespace AcCm {
enum ColorMethod {
    kByLayer = 0xC0,
    kByBlock = 0xC1,
    kByColor = 0xC2,
    kByACI = 0xC3,
    kByPen = 0xC4,
    kForeground = 0xC5,
    kLayerOff = 0xC6,
    kLayerFrozen = 0xC7,
    kNone = 0xC8,
};
}

class KPLAN_API AcCmEntityColor {
  public:
    enum ACIcolorMethod { kACIbyBlock = 0, kACIbyLayer = 256, kACIforeground = 7 };

    AcCmEntityColor() = default;
    AcCmEntityColor(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
        setRGB(red, green, blue);
    }

    AcCm::ColorMethod colorMethod() const { return method_; }
    void setColorMethod(AcCm::ColorMethod method) { method_ = method; }
    Adesk::Int16 colorIndex() const;
    void setColorIndex(Adesk::Int16 index);
    void setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
    Adesk::UInt8 red() const;
    Adesk::UInt8 green() const;
    Adesk::UInt8 blue() const;
    bool isByLayer() const { return method_ == AcCm::kByLayer; }
    bool isByBlock() const { return method_ == AcCm::kByBlock; }
    bool isByColor() const { return method_ == AcCm::kByColor; }
    bool isByACI() const { return method_ == AcCm::kByACI; }
    bool operator==(const AcCmEntityColor&) const = default;

    // 0xRRGGBB of a palette index; index 0 (by block) has none and gives black.
    static Adesk::UInt32 lookUpRGB(Adesk::UInt8 colorIndex);
    // The palette index 1..255 nearest to a true colour.
    static Adesk::UInt8 lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);

  private:
    AcCm::ColorMethod method_ = AcCm::kByLayer;
    Adesk::UInt32 value_ = 256;  // index, or 0xRRGGBB for a true colour
};

class KPLAN_API AcCmColor {
  public:
    AcCmColor() = default;

    AcCm::ColorMethod colorMethod() const { return color_.colorMethod(); }
    Acad::ErrorStatus setColorMethod(AcCm::ColorMethod method);
    bool isByLayer() const { return color_.isByLayer(); }
    bool isByBlock() const { return color_.isByBlock(); }
    bool isByColor() const { return color_.isByColor(); }
    bool isByACI() const { return color_.isByACI(); }
    bool isNone() const { return color_.colorMethod() == AcCm::kNone; }

    // The palette index: 1..255 for an indexed colour, 256 by layer, 0 by block, and
    // the nearest index for a true colour.
    Adesk::UInt16 colorIndex() const;
    Acad::ErrorStatus setColorIndex(Adesk::UInt16 index);
    Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
    Acad::ErrorStatus setRed(Adesk::UInt8 red);
    Acad::ErrorStatus setGreen(Adesk::UInt8 green);
    Acad::ErrorStatus setBlue(Adesk::UInt8 blue);
    Adesk::UInt8 red() const { return color_.red(); }
    Adesk::UInt8 green() const { return color_.green(); }
    Adesk::UInt8 blue() const { return color_.blue(); }
    const AcCmEntityColor& entityColor() const { return color_; }
    bool operator==(const AcCmColor&) const = default;

  private:
    AcCmEntityColor color_;
};
