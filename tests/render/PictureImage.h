#pragma once
// A written PNG read back through cairo, for checks of its pixels.
#include <cairo.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "render/Colour.h"

struct Pixel {
    int r = 0, g = 0, b = 0;
    bool operator==(const Pixel&) const = default;
};

inline Pixel pixel255(const render::Rgb& c) {
    return {static_cast<int>(std::lround(c.r * 255)), static_cast<int>(std::lround(c.g * 255)),
            static_cast<int>(std::lround(c.b * 255))};
}

inline bool near(const Pixel& a, const Pixel& b, int tolerance) {
    return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance &&
           std::abs(a.b - b.b) <= tolerance;
}

class PictureImage {
  public:
    explicit PictureImage(const std::string& path)
        : surface_(cairo_image_surface_create_from_png(path.c_str())) {}
    ~PictureImage() { cairo_surface_destroy(surface_); }
    PictureImage(const PictureImage&) = delete;
    PictureImage& operator=(const PictureImage&) = delete;

    bool ok() const { return cairo_surface_status(surface_) == CAIRO_STATUS_SUCCESS; }
    int width() const { return cairo_image_surface_get_width(surface_); }
    int height() const { return cairo_image_surface_get_height(surface_); }
    Pixel at(int x, int y) const {
        if (x < 0 || y < 0 || x >= width() || y >= height()) return {-1, -1, -1};
        cairo_surface_flush(surface_);
        const unsigned char* row =
            cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
        std::uint32_t v = reinterpret_cast<const std::uint32_t*>(row)[x];
        return {static_cast<int>((v >> 16) & 0xFF), static_cast<int>((v >> 8) & 0xFF),
                static_cast<int>(v & 0xFF)};
    }
    Pixel at(double x, double y) const {
        return at(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)));
    }

  private:
    cairo_surface_t* surface_;
};
