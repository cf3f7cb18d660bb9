#include "render/HatchLines.h"

#include <cmath>
#include <numbers>

namespace render {

std::vector<AcDbHatchPatternLine> scaledPattern(const std::wstring& name, double scale,
                                                double angleDegrees) {
    std::vector<AcDbHatchPatternLine> out;
    if (!(scale > 0)) return out;
    double turn = angleDegrees * std::numbers::pi / 180.0;
    double c = std::cos(turn), s = std::sin(turn);
    for (const AcDbHatchPatternLine& line : acdbPredefinedHatchPattern(name.c_str())) {
        AcDbHatchPatternLine scaled;
        scaled.angle = std::fmod(line.angle + angleDegrees, 360.0);
        if (scaled.angle < 0) scaled.angle += 360.0;
        scaled.base = {(line.base.x * c - line.base.y * s) * scale,
                       (line.base.x * s + line.base.y * c) * scale};
        scaled.offset = {(line.offset.x * c - line.offset.y * s) * scale,
                         (line.offset.x * s + line.offset.y * c) * scale};
        for (double d : line.dashes)
            scaled.dashes.push_back(d * scale);
        out.push_back(std::move(scaled));
    }
    return out;
}

void patternSegments(const std::vector<AcDbHatchPatternLine>& families, double minX, double minY,
                     double maxX, double maxY, double minSpacing, double dotLength,
                     const std::function<void(double, double, double, double)>& segment,
                     long maxLines) {
    const double corners[4][2] = {{minX, minY}, {maxX, minY}, {minX, maxY}, {maxX, maxY}};
    for (const AcDbHatchPatternLine& family : families) {
        double a = family.angle * std::numbers::pi / 180.0;
        double ux = std::cos(a), uy = std::sin(a);  // along the lines
        double nx = -uy, ny = ux;                   // across them
        double spacing = family.offset.x * nx + family.offset.y * ny;
        if (!(std::fabs(spacing) >= minSpacing) || std::fabs(spacing) < 1e-12) continue;
        // The lines k through base + k * offset that cross the window.
        double lo = INFINITY, hi = -INFINITY;
        for (const auto& p : corners) {
            double k = ((p[0] - family.base.x) * nx + (p[1] - family.base.y) * ny) / spacing;
            lo = std::fmin(lo, k);
            hi = std::fmax(hi, k);
        }
        double first = std::ceil(lo), last = std::floor(hi);
        if (last - first + 1 > static_cast<double>(maxLines)) continue;
        double period = 0;
        for (double d : family.dashes)
            period += std::fabs(d);
        for (double k = first; k <= last; ++k) {
            double ox = family.base.x + k * family.offset.x,
                   oy = family.base.y + k * family.offset.y;
            // Where the line enters and leaves the window, along it from its origin.
            double from = INFINITY, to = -INFINITY;
            for (const auto& p : corners) {
                double t = (p[0] - ox) * ux + (p[1] - oy) * uy;
                from = std::fmin(from, t);
                to = std::fmax(to, t);
            }
            auto emit = [&](double t0, double t1) {
                segment(ox + t0 * ux, oy + t0 * uy, ox + t1 * ux, oy + t1 * uy);
            };
            if (family.dashes.empty() || period <= 0) {
                emit(from, to);
                continue;
            }
            // Each line's dashes start at its own origin, the offset's run along it included.
            double t = std::floor(from / period) * period;
            while (t < to) {
                for (double d : family.dashes) {
                    double length = std::fabs(d);
                    if (d > 0) {
                        double t0 = std::fmax(t, from), t1 = std::fmin(t + length, to);
                        if (t1 > t0) emit(t0, t1);
                    } else if (d == 0 && t >= from && t <= to) {
                        emit(t, t + dotLength);
                    }
                    t += length;
                    if (t >= to) break;
                }
            }
        }
    }
}

}  // namespace render
