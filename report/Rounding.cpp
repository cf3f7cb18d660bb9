#include "report/Rounding.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kplan::report {

namespace {

double scaleOf(int decimals) {
    return std::pow(10.0, decimals);
}

}  // namespace

double roundTo(double value, int decimals) {
    if (isBlank(value)) return value;
    double scale = scaleOf(decimals);
    // A little above the representation error of the figures (0.125 stored as 0.12499...).
    double units = std::round(value * scale + (value >= 0 ? 1e-9 : -1e-9));
    return units / scale;
}

std::vector<double> roundToTotal(const std::vector<double>& values, double total, int decimals) {
    double scale = scaleOf(decimals);
    std::vector<long long> units(values.size());
    std::vector<double> lost(values.size());
    long long sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        double scaled = values[i] * scale;
        units[i] = static_cast<long long>(std::floor(scaled + 1e-9));
        lost[i] = scaled - static_cast<double>(units[i]);
        sum += units[i];
    }
    long long missing = std::llround(total * scale) - sum;
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        if (lost[a] != lost[b]) return lost[a] > lost[b];
        return values[a] > values[b];
    });
    if (missing < 0) std::reverse(order.begin(), order.end());
    for (std::size_t k = 0; missing != 0 && !order.empty(); ++k) {
        std::size_t i = order[k % order.size()];
        units[i] += missing > 0 ? 1 : -1;
        missing += missing > 0 ? -1 : 1;
    }
    std::vector<double> rounded(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        rounded[i] = static_cast<double>(units[i]) / scale;
    return rounded;
}

void roundTable(Table& table) {
    std::vector<bool> isPart(table.rows.size(), false);
    for (const Row& row : table.rows) {
        for (int part : row.parts)
            isPart[static_cast<std::size_t>(part)] = true;
    }
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        int decimals = table.columns[c].decimals;
        std::vector<double> exact(table.rows.size());
        for (std::size_t r = 0; r < table.rows.size(); ++r)
            exact[r] = table.rows[r].values[c];
        std::vector<std::size_t> queue;
        for (std::size_t r = 0; r < table.rows.size(); ++r) {
            if (!isPart[r]) {
                table.rows[r].values[c] = roundTo(exact[r], decimals);
                queue.push_back(r);
            }
        }
        for (std::size_t k = 0; k < queue.size(); ++k) {
            const Row& row = table.rows[queue[k]];
            std::vector<double> parts;
            double sum = 0;
            bool blank = isBlank(exact[queue[k]]);
            for (int part : row.parts) {
                double value = exact[static_cast<std::size_t>(part)];
                blank = blank || isBlank(value);
                parts.push_back(value);
                sum += blank ? 0 : value;
            }
            // Parts that did not add up exactly are rounded each on its own.
            bool addsUp = !blank && std::fabs(sum - exact[queue[k]]) <=
                                        1e-7 * (std::max)(1.0, std::fabs(exact[queue[k]]));
            std::vector<double> rounded =
                addsUp ? roundToTotal(parts, row.values[c], decimals) : parts;
            for (std::size_t p = 0; p < row.parts.size(); ++p) {
                auto part = static_cast<std::size_t>(row.parts[p]);
                table.rows[part].values[c] = addsUp ? rounded[p] : roundTo(parts[p], decimals);
                queue.push_back(part);
            }
        }
    }
}

}  // namespace kplan::report
