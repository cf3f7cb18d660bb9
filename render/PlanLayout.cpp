#include "render/PlanLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace render {

namespace {

// Share of the map's width the scale bar may take.
constexpr double kScaleBarShare = 0.3;

}  // namespace

std::string legendText(const ClassStyle& style) {
    if (style.code.empty()) return "(no class)";  // parcels whose record names none
    return style.name.empty() ? style.code : style.code + "  " + style.name;
}

PanelSize measurePanel(const PlanScene& scene, const PictureOptions& options, Canvas& measure,
                       double f) {
    PanelSize panel;
    double text = measure.textWidth(1.2 * f, "图例", true);
    for (const ClassStyle& style : scene.styles)
        text = (std::max)(text, measure.textWidth(f, legendText(style)));
    panel.legendWidth = 2.2 * f + 0.6 * f + text;
    panel.height = 2.2 * f + kLegendRow * f * static_cast<double>(scene.styles.size());
    const BalanceTable* table = options.table;
    if (table != nullptr && !table->empty()) {
        double size = kTableFont * f;
        std::size_t columns = table->headers.size();
        for (const TableRow& row : table->rows)
            columns = (std::max)(columns, row.cells.size());
        panel.columns.assign(columns, 0);
        for (std::size_t c = 0; c < table->headers.size(); ++c)
            panel.columns[c] = measure.textWidth(size, table->headers[c], true);
        for (const TableRow& row : table->rows) {
            for (std::size_t c = 0; c < row.cells.size(); ++c) {
                double indent = c == 0 ? row.indent * size : 0;
                panel.columns[c] =
                    (std::max)(panel.columns[c], indent + measure.textWidth(size, row.cells[c]));
            }
        }
        for (double& w : panel.columns)
            w += 0.9 * size;
        for (double w : panel.columns)
            panel.tableWidth += w;
        panel.tableWidth =
            (std::max)(panel.tableWidth, measure.textWidth(1.1 * f, table->title, true));
        panel.height +=
            1.5 * f + 2.0 * f + kTableRow * size * static_cast<double>(table->rows.size() + 1);
    }
    return panel;
}

double roundLength(double atMost) {
    if (!(atMost > 0)) return 0;
    double power = std::pow(10.0, std::floor(std::log10(atMost)));
    // A hair of slack, so that 50 asked for exactly gives 50 and not 20.
    for (double step : {5.0, 2.0, 1.0}) {
        if (step * power <= atMost * (1 + 1e-9)) return step * power;
    }
    return power;
}

std::string lengthLabel(double metres) {
    char buffer[32];
    if (metres >= 1000) {
        std::snprintf(buffer, sizeof buffer, "%g km", metres / 1000);
    } else {
        std::snprintf(buffer, sizeof buffer, "%g m", metres);
    }
    return buffer;
}

PictureLayout layoutPicture(const PlanScene& scene, const PictureOptions& options,
                            Canvas& measure) {
    PictureLayout layout;
    double width = (std::max)(200.0, options.width);
    double f = (std::max)(9.0, width / 110);
    double m = (std::max)(10.0, 1.2 * f);
    layout.width = width;
    layout.fontSize = f;
    PanelSize panel = measurePanel(scene, options, measure, f);
    double panelWidth = (std::max)(panel.legendWidth, panel.tableWidth);
    layout.mapLeft = m;
    layout.mapTop = m + 2.6 * f;
    layout.mapWidth = (std::max)(0.35 * width, width - 3 * m - panelWidth);
    double minX = 0, minY = 0, maxX = 1, maxY = 1;
    if (!scene.empty()) {
        minX = scene.extents.minPoint().x;
        minY = scene.extents.minPoint().y;
        maxX = scene.extents.maxPoint().x;
        maxY = scene.extents.maxPoint().y;
    }
    double spanX = (std::max)(maxX - minX, 1e-6), spanY = (std::max)(maxY - minY, 1e-6);
    // A margin inside the frame, so that outlines on the extents are not cut.
    double pad = 0.03 * (std::max)(spanX, spanY);
    layout.minX = minX - pad;
    layout.minY = minY - pad;
    spanX += 2 * pad;
    spanY += 2 * pad;
    layout.scale = layout.mapWidth / spanX;
    layout.mapHeight = spanY * layout.scale;
    layout.originX = layout.mapLeft;
    layout.originY = layout.mapTop + layout.mapHeight;
    double bottom = layout.mapTop + layout.mapHeight + 3.2 * f + m;
    layout.height = std::ceil((std::max)(bottom, layout.mapTop + panel.height + m));
    layout.scaleBarMetres = roundLength(kScaleBarShare * layout.mapWidth / layout.scale);
    layout.scaleBarPixels = layout.scaleBarMetres * layout.scale;
    layout.scaleBarLabel = lengthLabel(layout.scaleBarMetres);
    layout.scaleBarStart = {layout.mapLeft, layout.mapTop + layout.mapHeight + 1.6 * f};
    for (const ClassStyle& style : scene.styles)
        layout.legendCodes.push_back(style.code);
    return layout;
}

}  // namespace render
