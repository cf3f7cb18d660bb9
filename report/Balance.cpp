#include "report/Balance.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

#include "report/Rounding.h"
#include "report/StandardRanges.h"

namespace kplan::report {

namespace {

// Below this an area is no area (as the statistics take it).
constexpr double kNoArea = 1e-9;
// The share of the scope above which land no parcel covers is worth a warning.
constexpr double kRemainderWarningPercent = 1.0;

// The classes of one column group: each class's own land (parcels coded with exactly it),
// and the land of no class.
struct Sums {
    std::vector<double> own;
    double unknown = 0, remainder = 0, overlap = 0;
    bool scoped = false;
    long population = 0;
};

std::vector<std::string> splitCodes(const std::string& code) {
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (;;) {
        std::size_t slash = code.find('/', from);
        parts.push_back(trimCode(code.substr(from, slash - from)));
        if (slash == std::string::npos) break;
        from = slash + 1;
    }
    return parts;
}

// "4:6", "4：6" or "40%:60%" as weights; empty when it does not give count positive numbers.
std::vector<double> parseRatio(const std::string& text, std::size_t count) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 3, "\xEF\xBC\x9A") == 0) {  // full-width colon
            plain += ':';
            i += 2;
        } else {
            plain += text[i];
        }
    }
    std::vector<double> weights;
    std::size_t from = 0;
    for (;;) {
        std::size_t colon = plain.find_first_of(":/", from);
        std::string part = trimCode(plain.substr(from, colon - from));
        if (!part.empty() && part.back() == '%') part.pop_back();
        char* end = nullptr;
        double w = std::strtod(part.c_str(), &end);
        if (part.empty() || end != part.c_str() + part.size() || !(w > 0)) return {};
        weights.push_back(w);
        if (colon == std::string::npos) break;
        from = colon + 1;
    }
    return weights.size() == count ? weights : std::vector<double>{};
}

class Builder {
  public:
    Builder(const ClassHierarchy& classes, const std::vector<Measured>& measured,
            const BalanceOptions& options, Report& report)
        : classes_(classes), measured_(measured), options_(options), report_(report) {}

    bool run(std::string& error) {
        int remainderClass = -1;
        if (!options_.remainderCode.empty()) {
            remainderClass = classes_.find(options_.remainderCode);
            if (remainderClass < 0) {
                error =
                    "--remainder " + options_.remainderCode + ": the class table has no such class";
                return false;
            }
        }
        for (const Measured& m : measured_)
            sums_.push_back(sum(m, remainderClass));
        layOut();
        for (Table& table : report_.tables) {
            roundTable(table);
            // The standard's ranges hold for the city's construction land of a 2011 plan.
            if (table.key == "urban_construction") checkRanges(table, rangesOf2011());
        }
        return true;
    }

  private:
    Warning& warn(std::map<std::string, std::size_t>& seen, const std::string& kind,
                  Scenario scenario, const std::string& code) {
        auto key = kind + "\n" + code;
        auto found = seen.find(key);
        if (found != seen.end()) return report_.warnings[found->second];
        seen.emplace(key, report_.warnings.size());
        Warning w;
        w.kind = kind;
        w.scenario = scenario;
        w.code = code;
        report_.warnings.push_back(w);
        return report_.warnings.back();
    }

    Sums sum(const Measured& m, int remainderClass) {
        Sums s;
        s.own.assign(classes_.nodes().size(), 0.0);
        s.scoped = m.scoped;
        s.population = m.population;
        std::map<std::string, std::size_t> seen;
        BalanceLine line;
        line.scenario = m.scenario;
        line.scoped = m.scoped;
        line.scopeHectares = m.scopeHectares;
        line.parcels = static_cast<long>(m.parcels.size());
        line.population = m.population;
        for (const ParcelArea& p : m.parcels) {
            line.parcelHectares += p.hectares;
            std::vector<std::string> codes = splitCodes(p.code);
            std::vector<double> weights(1, 1.0);
            if (options_.mixed == MixedCodes::First || codes.size() == 1) {
                codes.resize(1);
            } else {
                weights = parseRatio(p.ratio, codes.size());
                if (weights.empty()) {
                    Warning& w = warn(seen, "mixed_ratio", m.scenario, trimCode(p.code));
                    w.hectares += p.hectares;
                    w.handles.push_back(p.handle);
                    weights.assign(codes.size(), 1.0);
                }
            }
            double weightSum = 0;
            for (double w : weights)
                weightSum += w;
            for (std::size_t k = 0; k < codes.size(); ++k) {
                double share = p.hectares * weights[k] / weightSum;
                int index = classes_.find(codes[k]);
                if (index >= 0) {
                    s.own[static_cast<std::size_t>(index)] += share;
                    if (classes_.node(index).code != codes[k]) {
                        Warning& w = warn(seen, "code_case", m.scenario, codes[k]);
                        w.hectares += share;
                        w.handles.push_back(p.handle);
                    }
                    continue;
                }
                s.unknown += share;
                Warning& w = warn(seen, codes[k].empty() ? "empty_code" : "unknown_code",
                                  m.scenario, p.code);
                w.hectares += share;
                w.handles.push_back(p.handle);
            }
        }
        if (!m.openOutlines.empty()) {
            Warning w;
            w.kind = "left_out";
            w.scenario = m.scenario;
            w.detail = "边界线不闭合";
            w.detailEn = "the outline is not closed";
            w.handles = m.openOutlines;
            report_.warnings.push_back(w);
        }
        if (!m.zeroAreas.empty()) {
            Warning w;
            w.kind = "zero_area";
            w.scenario = m.scenario;
            w.handles = m.zeroAreas;
            report_.warnings.push_back(w);
        }
        s.overlap = m.overlapHectares;
        if (s.overlap > kNoArea) {
            Warning w;
            w.kind = "overlap";
            w.scenario = m.scenario;
            w.hectares = s.overlap;
            w.handles = m.overlapping;
            report_.warnings.push_back(w);
        }
        if (m.scoped) {
            s.remainder = m.scopeHectares - (line.parcelHectares - m.overlapHectares);
            if (std::fabs(s.remainder) < kNoArea) s.remainder = 0;
            double percent = m.scopeHectares > 0 ? s.remainder / m.scopeHectares * 100 : 0;
            if (percent > kRemainderWarningPercent) {
                Warning w;
                w.kind = "remainder";
                w.scenario = m.scenario;
                w.code = options_.remainderCode;
                w.hectares = s.remainder;
                w.percent = percent;
                report_.warnings.push_back(w);
            }
            if (remainderClass >= 0) {
                s.own[static_cast<std::size_t>(remainderClass)] += s.remainder;
                s.remainder = 0;
            }
        }
        line.remainderHectares = m.scoped ? m.scopeHectares - (line.parcelHectares - s.overlap) : 0;
        line.overlapHectares = s.overlap;
        line.unknownHectares = s.unknown;
        report_.balance.push_back(line);
        return s;
    }

    // The land of a class with all classes under it; extra adds classes the layout puts
    // under another one (the city construction classes under H11).
    double subtotal(const Sums& s, int index) const {
        double total = s.own[static_cast<std::size_t>(index)];
        for (int child : classes_.node(index).children)
            total += subtotal(s, child);
        auto extra = under_.find(index);
        if (extra != under_.end()) {
            for (int child : extra->second)
                total += subtotal(s, child);
        }
        return total;
    }

    bool anyArea(const std::function<double(const Sums&)>& area) const {
        return std::any_of(sums_.begin(), sums_.end(),
                           [&](const Sums& s) { return std::fabs(area(s)) > kNoArea; });
    }

    // A table under construction: rows with their hectares per column group.
    struct Draft {
        Table table;
        std::vector<std::vector<double>> hectares;  // per row, per column group
        std::vector<bool> inBase;                   // the row's share and per-person count
        int base = -1;                              // the row whose area is the share base
        bool perPerson = false;
    };

    int addRow(Draft& d, Row row, const std::function<double(const Sums&)>& area,
               bool inBase = true) {
        std::vector<double> values;
        for (const Sums& s : sums_)
            values.push_back(area(s));
        return push(d, std::move(row), std::move(values), inBase);
    }

    static int push(Draft& d, Row row, std::vector<double> hectares, bool inBase) {
        d.table.rows.push_back(std::move(row));
        d.hectares.push_back(std::move(hectares));
        d.inBase.push_back(inBase);
        return static_cast<int>(d.table.rows.size()) - 1;
    }

    int addClass(Draft& d, int index, int level, bool among) {
        Row row;
        row.level = level;
        row.among = among;
        row.code = classes_.node(index).code;
        row.name = classes_.node(index).name;
        return addRow(d, row, [this, index](const Sums& s) { return subtotal(s, index); });
    }

    // A class and its mid classes that hold land, as "其中" rows.
    int addClassWithAmong(Draft& d, int index) {
        int row = addClass(d, index, 0, false);
        for (int child : classes_.node(index).children) {
            if (anyArea([this, child](const Sums& s) { return subtotal(s, child); }))
                addClass(d, child, 1, true);
        }
        return row;
    }

    // Rows of land in no class: codes no class holds, land no parcel covers, land counted
    // twice.
    void addOtherLand(Draft& d, std::vector<int>& parts, bool inBase) {
        if (anyArea([](const Sums& s) { return s.unknown; })) {
            Row row;
            row.name = "未识别用地代码";
            row.nameEn = "unrecognised class codes";
            parts.push_back(addRow(
                d, row, [](const Sums& s) { return s.unknown; }, inBase));
        }
        if (anyArea([](const Sums& s) { return s.remainder; })) {
            Row row;
            row.name = "范围内未划定地块";
            row.nameEn = "land in the scope without parcels";
            parts.push_back(addRow(
                d, row, [](const Sums& s) { return s.remainder; }, inBase));
        }
        if (anyArea([](const Sums& s) { return s.overlap; })) {
            Row row;
            row.name = "地块重叠（重复计入部分）";
            row.nameEn = "parcel overlaps (counted twice)";
            parts.push_back(addRow(
                d, row, [](const Sums& s) { return -s.overlap; }, inBase));
        }
    }

    int addTotal(Draft& d, const std::string& code, const std::string& name,
                 const std::string& nameEn, const std::vector<int>& parts, bool inBase = true) {
        Row row;
        row.total = true;
        row.code = code;
        row.name = name;
        row.nameEn = nameEn;
        row.parts = parts;
        // The sum of its parts in each column group.
        std::vector<double> values(sums_.size(), 0.0);
        for (int p : parts) {
            for (std::size_t g = 0; g < sums_.size(); ++g)
                values[g] += d.hectares[static_cast<std::size_t>(p)][g];
        }
        return push(d, std::move(row), std::move(values), inBase);
    }

    // The classes a row of a class splits into wholly, for rounding.
    void linkParts(Draft& d) {
        std::map<std::string, int> byCode;
        for (std::size_t r = 0; r < d.table.rows.size(); ++r) {
            if (!d.table.rows[r].code.empty() && !d.table.rows[r].total)
                byCode.emplace(d.table.rows[r].code, static_cast<int>(r));
        }
        for (std::size_t r = 0; r < d.table.rows.size(); ++r) {
            Row& row = d.table.rows[r];
            if (row.total || row.code.empty() || !row.parts.empty()) continue;
            int index = classes_.find(row.code);
            std::vector<int> parts;
            bool whole = true;
            for (int child : classes_.node(index).children) {
                auto found = byCode.find(classes_.node(child).code);
                if (found != byCode.end()) {
                    parts.push_back(found->second);
                } else if (anyArea([this, child](const Sums& s) { return subtotal(s, child); })) {
                    whole = false;
                }
            }
            if (whole && !parts.empty()) row.parts = parts;
        }
    }

    void finish(Draft& d) {
        linkParts(d);
        Table& t = d.table;
        t.unit = options_.unit;
        for (std::size_t g = 0; g < sums_.size(); ++g) {
            Scenario scenario = measured_[g].scenario;
            t.columns.push_back({Measure::Area, scenario, options_.decimals});
            t.columns.push_back({Measure::Share, scenario, 2});
            if (d.perPerson) t.columns.push_back({Measure::PerPerson, scenario, 2});
        }
        double factor = perHectare(options_.unit);
        for (std::size_t r = 0; r < t.rows.size(); ++r) {
            Row& row = t.rows[r];
            for (std::size_t g = 0; g < sums_.size(); ++g) {
                double hectares = d.hectares[r][g];
                double base = d.hectares[static_cast<std::size_t>(d.base)][g];
                row.values.push_back(hectares * factor);
                row.values.push_back(d.inBase[r] && base > kNoArea ? hectares / base * 100
                                                                   : kBlank);
                if (d.perPerson) {
                    long people = sums_[g].population;
                    row.values.push_back(d.inBase[r] && people > 0 ? hectares * 10000 / people
                                                                   : kBlank);
                }
            }
        }
        report_.tables.push_back(std::move(d.table));
    }

    bool hasAll(std::initializer_list<const char*> codes) const {
        return std::all_of(codes.begin(), codes.end(),
                           [this](const char* c) { return classes_.find(c) >= 0; });
    }

    void layOut() {
        if (hasAll({"H", "H1", "H11", "E"})) {
            layOut2011();
        } else if (hasAll({"R", "C", "T", "D", "E"}) && classes_.find("H") < 0) {
            layOut1990();
        } else {
            layOutGeneric();
        }
    }

    // GB 50137-2011 tables A.0.1 and A.0.2. The city construction classes R to G stand
    // in the class table as major classes of their own; their land is part of H11.
    void layOut2011() {
        int h = classes_.find("H"), e = classes_.find("E"), h1 = classes_.find("H1"),
            h11 = classes_.find("H11");
        std::vector<int> city;
        for (int root : classes_.roots()) {
            if (root != h && root != e) city.push_back(root);
        }
        under_[h11] = city;

        Draft rural;
        rural.table.key = "rural_urban";
        rural.table.title = "城乡用地汇总表";
        rural.table.titleEn = "Rural and urban land";
        rural.table.shareBase = "城乡用地";
        rural.table.shareBaseEn = "rural and urban land";
        std::vector<int> top;
        for (int root : {h, e}) {
            top.push_back(addClass(rural, root, 0, false));
            for (int mid : classes_.node(root).children) {
                addClass(rural, mid, 1, false);
                if (mid != h1) continue;
                for (int leaf : classes_.node(mid).children)
                    addClass(rural, leaf, 2, true);
            }
        }
        addOtherLand(rural, top, true);
        rural.base = addTotal(rural, "", "城乡用地", "rural and urban land", top);
        finish(rural);

        Draft urban;
        urban.table.key = "urban_construction";
        urban.table.title = "城市建设用地平衡表";
        urban.table.titleEn = "Urban construction land balance";
        urban.table.shareBase = classes_.node(h11).name;
        urban.table.shareBaseEn = "urban construction land";
        urban.perPerson = true;
        std::vector<int> majors;
        for (int root : city)
            majors.push_back(addClassWithAmong(urban, root));
        if (anyArea([h11](const Sums& s) { return s.own[static_cast<std::size_t>(h11)]; })) {
            Row row;
            row.code = classes_.node(h11).code;
            row.name = classes_.node(h11).name;
            row.nameEn = "not divided into classes";
            majors.push_back(addRow(
                urban, row, [h11](const Sums& s) { return s.own[static_cast<std::size_t>(h11)]; }));
        }
        urban.base = addTotal(urban, classes_.node(h11).code, classes_.node(h11).name,
                              "urban construction land", majors);
        finish(urban);
    }

    // GBJ 137-90: the city's construction land by major class, then water and other land.
    void layOut1990() {
        int e = classes_.find("E");
        Draft d;
        d.table.key = "urban_land";
        d.table.title = "城市用地平衡表";
        d.table.titleEn = "Urban land balance";
        d.table.shareBase = "城市建设用地";
        d.table.shareBaseEn = "urban construction land";
        d.perPerson = true;
        std::vector<int> majors;
        for (int root : classes_.roots()) {
            if (root != e) majors.push_back(addClassWithAmong(d, root));
        }
        std::vector<int> all;
        d.base = addTotal(d, "", "城市建设用地", "urban construction land", majors);
        all.push_back(d.base);
        int water = addClass(d, e, 0, false);
        d.inBase[static_cast<std::size_t>(water)] = false;
        all.push_back(water);
        addOtherLand(d, all, false);
        addTotal(d, "", "城市用地", "urban land", all, false);
        finish(d);
    }

    // Any other class table: its major classes in its order.
    void layOutGeneric() {
        Draft d;
        d.table.key = "land_use";
        d.table.title = "用地平衡表";
        d.table.titleEn = "Land-use balance";
        d.table.shareBase = "合计";
        d.table.shareBaseEn = "total";
        std::vector<int> majors;
        for (int root : classes_.roots())
            majors.push_back(addClassWithAmong(d, root));
        addOtherLand(d, majors, true);
        d.base = addTotal(d, "", "合计", "total", majors);
        finish(d);
    }

    const ClassHierarchy& classes_;
    const std::vector<Measured>& measured_;
    const BalanceOptions& options_;
    Report& report_;
    std::vector<Sums> sums_;
    std::map<int, std::vector<int>> under_;
};

std::string number(double value, int decimals) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    return buffer;
}

std::string handles(const std::vector<std::string>& list) {
    std::string text;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i == 20) return text + " …";
        text += (i ? " " : "") + list[i];
    }
    return text;
}

}  // namespace

bool buildReport(const ClassHierarchy& classes, const std::vector<Measured>& measured,
                 const BalanceOptions& options, Report& report, std::string& error) {
    report = Report();
    return Builder(classes, measured, options, report).run(error);
}

std::string describe(const Warning& w, bool english) {
    std::string what = english ? (w.scenario == Scenario::Current ? "current status: " : "")
                               : (w.scenario == Scenario::Current ? "现状：" : "");
    std::string area = number(w.hectares, 4) + (english ? " ha" : " 公顷");
    std::string list =
        w.handles.empty() ? "" : (english ? "; parcels " : "；地块 ") + handles(w.handles);
    if (w.kind == "empty_code") {
        return what +
               (english ? "parcels without a class code, " + area + ", in no class"
                        : "地块无用地代码，" + area + "，未计入任何类别") +
               list;
    }
    if (w.kind == "unknown_code") {
        return what +
               (english
                    ? "class code \"" + w.code + "\" is not in the class table, " + area +
                          ", in no class"
                    : "用地代码“" + w.code + "”不在用地类别表中，" + area + "，未计入任何类别") +
               list;
    }
    if (w.kind == "code_case") {
        return what +
               (english ? "class code \"" + w.code + "\" counted as the table's class, " + area
                        : "用地代码“" + w.code + "”按类别表中的代码计入，" + area) +
               list;
    }
    if (w.kind == "mixed_ratio") {
        return what +
               (english
                    ? "compound code \"" + w.code +
                          "\" has no usable mix ratio (FS_HHBL); split evenly, " + area
                    : "混合用地“" + w.code + "”无有效混合比例（FS_HHBL），按均分计入，" + area) +
               list;
    }
    if (w.kind == "remainder") {
        std::string into = w.code.empty() ? (english ? "a row of its own" : "单列一行")
                                          : (english ? "class " + w.code : "计入 " + w.code);
        return what + (english ? "land in the scope without parcels: " + area + ", " +
                                     number(w.percent, 2) + " % of the scope (" + into + ")"
                               : "范围内未划定地块 " + area + "，占范围 " + number(w.percent, 2) +
                                     "%（" + into + "）");
    }
    if (w.kind == "overlap") {
        return what +
               (english ? "parcels overlap: " + area + " would be counted twice; taken off once"
                        : "地块相互重叠 " + area + "，重复部分已扣除一次") +
               list;
    }
    if (w.kind == "zero_area") {
        return what + (english ? "parcels without area, counted as 0" : "地块面积为零，按 0 计入") +
               list;
    }
    if (w.kind == "left_out") {
        return what +
               (english ? "parcels left out: " + w.detailEn : "未参与统计的地块：" + w.detail) +
               list;
    }
    return what + (english ? w.detailEn : w.detail);
}

}  // namespace kplan::report
