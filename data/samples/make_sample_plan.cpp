// Builds the bundled sample plan: the regulatory plan of a small district, drawn as a
// planner draws it and written through kplan's own record classes, then saved with the
// DXF writer. Everything comes from the tables below, with no randomness and no clock, so
// the same program always writes the same bytes.
//
// Usage: make_sample_plan OUT.dxf [RECORDS.json]
// RECORDS.json receives every record written, kind by kind, for the test that reads them
// back with `kplan list --kind`.
#include <array>
#include <cmath>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <numbers>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/acutads.h"
#include "host/arx/dbents.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/db/Leaks.h"
#include "host/db/TextCodec.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaDataSet.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKTCInfo.h"
#include "record/DYBJInfo.h"
#include "record/GHHXInfo.h"
#include "record/JFBJInfo.h"
#include "record/JZBJInfo.h"
#include "record/XDataAccess.h"

namespace {

// Laid out in metres from the district's south-west road junction; the file carries
// projected coordinates.
constexpr double kOriginX = 500000.0;
constexpr double kOriginY = 3500000.0;

// ------------------------------------------------------------------ classes

struct ClassInfo {
    const wchar_t* code;
    const wchar_t* name;
    const wchar_t* layerCode;  // a layer name cannot hold "/": a compound class uses its first
    unsigned char red, green, blue;
    // Default indicators, null where the class carries none.
    const wchar_t* floorAreaRatio;
    const wchar_t* greenRatio;
    const wchar_t* density;
    const wchar_t* height;
    double housingShare;  // share of the floor area that is housing
};

// Names and colours as the 2011 class table of the default standard gives them.
const ClassInfo kClasses[] = {
    {L"R21", L"住宅用地", L"R21", 255, 255, 0, L"2.5", L"35", L"22", L"80", 1.0},
    {L"R22", L"服务设施用地", L"R22", 255, 220, 0, L"1.2", L"30", L"35", L"24", 0.0},
    {L"A1", L"行政办公用地", L"A1", 255, 0, 191, L"1.8", L"35", L"30", L"50", 0.0},
    {L"A33", L"中小学用地", L"A33", 255, 175, 200, L"0.9", L"35", L"28", L"24", 0.0},
    {L"A5", L"医疗卫生用地", L"A5", 255, 63, 127, L"1.6", L"35", L"35", L"45", 0.0},
    {L"B1", L"商业用地", L"B1", 255, 0, 0, L"3.0", L"20", L"45", L"60", 0.0},
    {L"B2", L"商务用地", L"B2", 255, 95, 0, L"3.5", L"25", L"40", L"100", 0.0},
    {L"B1/R2", L"商业用地/二类居住用地", L"B1", 255, 0, 0, L"3.2", L"25", L"35", L"80", 0.6},
    {L"B41", L"加油加气站用地", L"B41", 200, 0, 0, L"0.4", L"15", L"30", L"12", 0.0},
    {L"M1", L"一类工业用地", L"M1", 191, 140, 89, L"1.5", L"15", L"45", L"24", 0.0},
    {L"W1", L"一类物流仓储用地", L"W1", 191, 159, 255, L"1.0", L"15", L"50", L"24", 0.0},
    {L"S42", L"社会停车场用地", L"S42", 200, 200, 200, L"0.2", L"20", L"10", L"12", 0.0},
    {L"U12", L"供电用地", L"U12", 0, 95, 255, L"0.8", L"20", L"40", L"18", 0.0},
    {L"G1", L"公园绿地", L"G1", 0, 255, 0, L"0.05", L"70", L"3", L"9", 0.0},
    {L"G2", L"防护绿地", L"G2", 0, 159, 0, nullptr, nullptr, nullptr, nullptr, 0.0},
    {L"G3", L"广场用地", L"G3", 200, 230, 200, L"0.1", L"35", L"5", L"9", 0.0},
    {L"H9", L"其他建设用地", L"H9", 204, 178, 153, L"0.6", L"30", L"30", L"15", 0.0},
    {L"E1", L"水域", L"E1", 127, 223, 255, nullptr, nullptr, nullptr, nullptr, 0.0},
    {L"E2", L"农林用地", L"E2", 204, 255, 153, nullptr, nullptr, nullptr, nullptr, 0.0},
    // Current status only.
    {L"H14", L"村庄建设用地", L"H14", 255, 223, 159, nullptr, nullptr, nullptr, nullptr, 0.0},
    {L"M2", L"二类工业用地", L"M2", 153, 102, 51, nullptr, nullptr, nullptr, nullptr, 0.0},
    {L"E13", L"坑塘沟渠", L"E13", 153, 223, 255, nullptr, nullptr, nullptr, nullptr, 0.0},
};

const ClassInfo* findClass(const std::wstring& code) {
    for (const ClassInfo& c : kClasses) {
        if (code == c.code) return &c;
    }
    return nullptr;
}

// ------------------------------------------------------------------ layout

struct Pt {
    double x, y;
};

struct Vertex {
    Pt p;
    double bulge = 0;
};
using Outline = std::vector<Vertex>;

// A line running north, a red line or a centre line: x as a function of y.
struct Side {
    double x0, slope;
    double at(double y) const { return x0 + slope * y; }
};

enum class Cut { Square, Chamfer, Arc };

// How a block corner at a junction is cut back, and how far along each side.
struct Corner {
    Cut cut = Cut::Square;
    double setback = 0;
};

enum class Generation { Current, Second, First };

struct Plot {
    double u0 = 0, u1 = 1;  // share of the block's width, west to east
    const wchar_t* cls = nullptr;
    const wchar_t* floorAreaRatio = nullptr;  // the class default when null
    const wchar_t* height = nullptr;
    const wchar_t* remark = nullptr;
    const wchar_t* facilities = nullptr;
    Generation generation = Generation::Current;
    bool holdsSubstation = false;

    Plot& withFar(const wchar_t* value) {
        floorAreaRatio = value;
        return *this;
    }
    Plot& withHeight(const wchar_t* value) {
        height = value;
        return *this;
    }
    Plot& note(const wchar_t* value) {
        remark = value;
        return *this;
    }
    Plot& serving(const wchar_t* value) {
        facilities = value;
        return *this;
    }
    Plot& drawnAs(Generation value) {
        generation = value;
        return *this;
    }
    Plot& aroundSubstation() {
        holdsSubstation = true;
        return *this;
    }
};

Plot plot(double u0, double u1, const wchar_t* cls) {
    Plot p;
    p.u0 = u0;
    p.u1 = u1;
    p.cls = cls;
    return p;
}

// A band of parcels, in metres north of the block's south red line.
struct Row {
    double y0, y1;
    std::vector<Plot> plots;
};

struct Road {
    const wchar_t* name;
    int width;
    bool inner;  // the outer roads' red lines belong to the neighbouring plans
};

enum RoadId { JinXi, HuBin, XiYuan, DongHuan, ZhongHe, WenChang, XinQiao };

const Road kRoads[] = {
    {L"锦溪大道", 40, false}, {L"湖滨路", 40, false}, {L"西园路", 40, false},
    {L"东环路", 40, false},   {L"中和路", 30, true},  {L"文昌路", 30, true},
    {L"新桥路", 24, true},
};

struct Block {
    const wchar_t* letter;
    const wchar_t* function;
    double y0, y1;
    // Red lines on the west and east; the centre lines for the block outline.
    Side west, east, westCentre, eastCentre;
    double yCentre0, yCentre1;
    std::array<Corner, 4> corners;  // south-west, south-east, north-east, north-west
    RoadId roads[4];                // along the south, east, north and west sides
    std::vector<Row> rows;
};

// The road grid. Running north: 西园路 x = 0, 文昌路 x = 420, 新桥路 from (800, 0) to
// (760, 900), 东环路 x = 1200; running east: 锦溪大道 y = 0, 中和路 y = 460, 湖滨路 y = 900.
struct Avenue {
    RoadId road;
    Side centre;
    double half;  // measured along x: half the width over the cosine of the slant
};
struct Street {
    RoadId road;
    double y;
    double half;
};

constexpr double kXinQiaoSlope = -40.0 / 900.0;
const Avenue kAvenues[] = {
    {XiYuan, {0, 0}, 20},
    {WenChang, {420, 0}, 15},
    {XinQiao, {800, kXinQiaoSlope}, 12 * std::sqrt(1 + kXinQiaoSlope * kXinQiaoSlope)},
    {DongHuan, {1200, 0}, 20},
};
const Street kStreets[] = {{JinXi, 0, 20}, {ZhongHe, 460, 15}, {HuBin, 900, 20}};

constexpr Corner kChamfer8{Cut::Chamfer, 8}, kChamfer10{Cut::Chamfer, 10}, kArc15{Cut::Arc, 15},
    kArc20{Cut::Arc, 20};

const Generation kSecond = Generation::Second, kFirst = Generation::First;

// The block between the streets of row and row + 1 and the avenues of column and
// column + 1, bounded by their red lines.
Block block(const wchar_t* letter, const wchar_t* function, int row, int column,
            const std::array<Corner, 4>& corners) {
    const Street& south = kStreets[row];
    const Street& north = kStreets[row + 1];
    const Avenue& west = kAvenues[column];
    const Avenue& east = kAvenues[column + 1];
    Block b{letter,
            function,
            south.y + south.half,
            north.y - north.half,
            {west.centre.x0 + west.half, west.centre.slope},
            {east.centre.x0 - east.half, east.centre.slope},
            west.centre,
            east.centre,
            south.y,
            north.y,
            corners,
            {south.road, east.road, north.road, west.road},
            {}};
    return b;
}

void addRow(Block& block, double y0, double y1, std::vector<Plot> plots) {
    block.rows.push_back({y0, y1, std::move(plots)});
}

std::vector<Block> layoutBlocks() {
    std::vector<Block> blocks;
    Block a = block(L"A", L"居住", 0, 0, {kArc20, kChamfer10, kChamfer10, kArc15});
    addRow(a, 0, 135,
           {plot(0, .33, L"B1").note(L"沿街商业"), plot(.33, .66, L"R21"),
            plot(.66, 1, L"R21").withFar(L"2.2").withHeight(L"54")});
    addRow(a, 135, 275, {plot(0, .45, L"R21"), plot(.45, 1, L"A33").note(L"24班小学")});
    // 275 to 291: a branch road.
    addRow(
        a, 291, 425,
        {plot(0, .3, L"R22").note(L"社区服务中心").serving(L"社区卫生服务站=文化活动站=养老服务站"),
         plot(.3, .65, L"R21"), plot(.65, 1, L"G1").note(L"街头绿地")});
    blocks.push_back(a);

    Block b = block(L"B", L"商业服务", 0, 1, {kChamfer10, kArc15, kChamfer8, kChamfer10});
    addRow(b, 0, 150, {plot(0, .5, L"B2").note(L"商务办公"), plot(.5, 1, L"B1")});
    addRow(b, 150, 290,
           {plot(0, .5, L"B1/R2").note(L"商住混合，底层商业"),
            plot(.5, .72, L"S42").note(L"公共停车场"), plot(.72, 1, L"R21")});
    addRow(b, 290, 425,
           {plot(0, .4, L"R21"), plot(.4, .7, L"R22").note(L"9班幼儿园"), plot(.7, 1, L"R21")});
    blocks.push_back(b);

    Block c = block(L"C", L"工业仓储", 0, 2, {kArc15, kArc20, kChamfer10, kChamfer8});
    addRow(c, 0, 140,
           {plot(0, .15, L"B41").note(L"加油加气站"), plot(.15, .55, L"M1"),
            plot(.55, .9, L"M1").withFar(L"1.2"), plot(.9, 1, L"G2").note(L"沿东环路防护绿带")});
    addRow(c, 140, 290, {plot(0, .45, L"M1"), plot(.45, .9, L"W1"), plot(.9, 1, L"G2")});
    addRow(c, 290, 425, {plot(0, .35, L"W1"), plot(.35, .9, L"M1"), plot(.9, 1, L"G2")});
    blocks.push_back(c);

    Block d = block(L"D", L"居住", 1, 0, {kArc15, kChamfer10, kChamfer10, kArc20});
    addRow(d, 0, 130,
           {plot(0, .4, L"A1").note(L"街道办事处"), plot(.4, .7, L"R21"),
            plot(.7, 1, L"R21").withFar(L"2.0").withHeight(L"45")});
    // Parcels drawn with earlier releases of the planning software.
    addRow(d, 130, 265,
           {plot(0, .35, L"R21").withFar(L"1.8").withHeight(L"45").drawnAs(kSecond),
            plot(.35, .65, L"R22").drawnAs(kSecond),
            plot(.65, 1, L"R21").withFar(L"1.6").withHeight(L"36").drawnAs(kFirst)});
    addRow(d, 265, 405,
           {plot(0, .3, L"R21").withFar(L"1.6").withHeight(L"36").drawnAs(kFirst),
            plot(.3, .65, L"A33").note(L"36班初级中学"),
            plot(.65, 1, L"R21").withFar(L"1.8").withHeight(L"45").drawnAs(kSecond)});
    blocks.push_back(d);

    Block e = block(L"E", L"公共服务", 1, 1, {kChamfer10, kChamfer8, kArc15, kChamfer10});
    addRow(e, 0, 140,
           {plot(0, .35, L"A5").note(L"社区医院"), plot(.35, .7, L"A1"), plot(.7, 1, L"B1")});
    addRow(e, 140, 300,
           {plot(0, .6, L"G1").note(L"中心公园").aroundSubstation(),
            plot(.6, 1, L"G3").note(L"市民广场")});
    addRow(e, 300, 405,
           {plot(0, .35, L"R22").serving(L"社区服务中心=菜市场"), plot(.35, .7, L"B1"),
            plot(.7, 1, L"R21")});
    blocks.push_back(e);

    Block f = block(L"F", L"居住", 1, 2, {kChamfer8, kChamfer10, kArc20, kArc15});
    addRow(f, 0, 135, {plot(0, .35, L"B2"), plot(.35, .7, L"R21"), plot(.7, 1, L"R21")});
    addRow(f, 135, 270,
           {plot(0, .5, L"A33").note(L"24班小学"),
            plot(.5, 1, L"R21").withFar(L"2.8").withHeight(L"100")});
    addRow(f, 270, 405,
           {plot(0, .3, L"R22"), plot(.3, .65, L"R21"), plot(.65, 1, L"B1").note(L"邻里中心")});
    blocks.push_back(f);
    return blocks;
}

// The substation inside the central park, an island of its parcel.
const Pt kSubstation[2] = {{465, 640}, {515, 680}};

// Parcels east of 东环路, outside the planning unit, and the land still as it is further
// east: rectangles and polygons in local metres.
struct LoosePlot {
    std::vector<Pt> points;
    Plot plot;
};

std::vector<LoosePlot> layoutEastStrip() {
    auto rect = [](double x0, double y0, double x1, double y1) {
        return std::vector<Pt>{{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    };
    return {
        {rect(1220, 20, 1254, 880), plot(0, 1, L"G2").note(L"沿东环路防护绿带")},
        {rect(1254, 20, 1288, 880), plot(0, 1, L"E1").note(L"锦溪河")},
        {rect(1288, 20, 1430, 230), plot(0, 1, L"E2")},
        {rect(1288, 230, 1430, 440), plot(0, 1, L"E2")},
        {rect(1288, 440, 1430, 560), plot(0, 1, L"H9").note(L"郊野公园服务站")},
        {rect(1288, 560, 1430, 720), plot(0, 1, L"E2")},
        {rect(1288, 720, 1430, 880), plot(0, 1, L"E2")},
    };
}

struct CurrentPlot {
    std::vector<Pt> points;
    const wchar_t* cls;
    const wchar_t* people;  // null: nobody lives there
    const wchar_t* remark;
};

const CurrentPlot kCurrent[] = {
    {{{1470, 60}, {1610, 50}, {1630, 210}, {1560, 260}, {1480, 240}}, L"H14", L"420", L"李家村"},
    {{{1480, 300}, {1640, 300}, {1640, 470}, {1480, 470}}, L"M2", nullptr, L"原农机厂，拟搬迁"},
    {{{1500, 520}, {1600, 510}, {1620, 600}, {1520, 620}}, L"E13", nullptr, L"鱼塘"},
    {{{1470, 660}, {1650, 660}, {1650, 870}, {1470, 870}}, L"E2", nullptr, L"基本农田"},
};

// The planning boundary of this plan: along the south, west and north centre lines, and
// on the east a line across the industrial block and the river.
const Pt kScope[] = {{0, 0}, {1120, 0}, {1270, 900}, {0, 900}};

// ------------------------------------------------------------------ geometry

Pt add(Pt a, Pt b) {
    return {a.x + b.x, a.y + b.y};
}
Pt sub(Pt a, Pt b) {
    return {a.x - b.x, a.y - b.y};
}
Pt scale(Pt a, double k) {
    return {a.x * k, a.y * k};
}
double length(Pt a) {
    return std::hypot(a.x, a.y);
}

// To the millimetre, as survey drawings carry them.
double mm(double v) {
    return std::round(v * 1000) / 1000;
}

AcGePoint2d world(Pt p) {
    return AcGePoint2d(mm(kOriginX + p.x), mm(kOriginY + p.y));
}

// A block corner as drawn: the corner itself, or the two points where the cut leaves the
// sides, with the bulge of the arc between them.
struct CornerCut {
    Pt before, after;  // on the side coming in and on the side going out (anticlockwise)
    double bulge = 0;
    bool cut = false;
};

CornerCut cutCorner(Pt prev, Pt at, Pt next, Corner how) {
    CornerCut c{at, at};
    if (how.cut == Cut::Square) return c;
    Pt in = sub(prev, at), out = sub(next, at);
    c.before = add(at, scale(in, how.setback / length(in)));
    c.after = add(at, scale(out, how.setback / length(out)));
    c.cut = true;
    if (how.cut == Cut::Arc) {
        double angle = std::acos((in.x * out.x + in.y * out.y) / (length(in) * length(out)));
        c.bulge = std::tan((std::numbers::pi - angle) / 4);
    }
    return c;
}

struct BlockGeometry {
    Pt corners[4];
    CornerCut cuts[4];
};

BlockGeometry geometryOf(const Block& b) {
    BlockGeometry g{};
    g.corners[0] = {b.west.at(b.y0), b.y0};
    g.corners[1] = {b.east.at(b.y0), b.y0};
    g.corners[2] = {b.east.at(b.y1), b.y1};
    g.corners[3] = {b.west.at(b.y1), b.y1};
    for (int i = 0; i < 4; ++i) {
        g.cuts[i] =
            cutCorner(g.corners[(i + 3) % 4], g.corners[i], g.corners[(i + 1) % 4], b.corners[i]);
    }
    return g;
}

// The cell of a plot, anticlockwise from its south-west corner; a cell corner that is a
// block corner takes the block's cut.
Outline plotOutline(const Block& b, const BlockGeometry& g, const Row& row, const Plot& p) {
    double ya = b.y0 + row.y0, yb = b.y0 + row.y1;
    auto at = [&](double u, double y) {
        double w = b.west.at(y);
        return Pt{w + u * (b.east.at(y) - w), y};
    };
    const double height = b.y1 - b.y0;
    Pt cell[4] = {at(p.u0, ya), at(p.u1, ya), at(p.u1, yb), at(p.u0, yb)};
    int blockCorner[4] = {
        p.u0 == 0 && row.y0 == 0 ? 0 : -1,
        p.u1 == 1 && row.y0 == 0 ? 1 : -1,
        p.u1 == 1 && row.y1 == height ? 2 : -1,
        p.u0 == 0 && row.y1 == height ? 3 : -1,
    };
    Outline outline;
    for (int i = 0; i < 4; ++i) {
        const CornerCut* c = blockCorner[i] >= 0 ? &g.cuts[blockCorner[i]] : nullptr;
        if (c != nullptr && c->cut) {
            outline.push_back({c->before, c->bulge});
            outline.push_back({c->after, 0});
        } else {
            outline.push_back({cell[i], 0});
        }
    }
    return outline;
}

Outline polygon(const std::vector<Pt>& points) {
    Outline outline;
    for (Pt p : points)
        outline.push_back({p, 0});
    return outline;
}

Pt centroid(const Outline& outline) {
    Pt sum{0, 0};
    for (const Vertex& v : outline)
        sum = add(sum, v.p);
    return scale(sum, 1.0 / static_cast<double>(outline.size()));
}

// ------------------------------------------------------------------ the drawing

using Fields = std::vector<std::pair<const wchar_t*, std::wstring>>;

// What the plan recorded, kind by kind ("unit", "block", ...): each record's entity and
// its values by column, as `kplan list --kind` names the columns.
struct WrittenRecord {
    AcDbObjectId id;
    std::vector<std::pair<std::wstring, std::wstring>> values;
};
using Written = std::vector<std::pair<std::string, std::vector<WrittenRecord>>>;

std::string jsonText(const std::wstring& text) {
    std::string out = "\"";
    for (char c : db::wideToUtf8(text)) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

std::wstring handleOf(AcDbObjectId id) {
    ACHAR text[17] = {};
    id.handle().getIntoAsciiBuffer(text);
    return text;
}

// The records as JSON: {"unit": [{"handle": "17", "FS_DYBH": "JX-02", ...}], ...}.
std::string writtenJson(const Written& written) {
    std::string out = "{";
    for (std::size_t k = 0; k < written.size(); ++k) {
        out += (k ? ",\n " : "\n ") + jsonText(db::utf8ToWide(written[k].first)) + ": [";
        const auto& records = written[k].second;
        for (std::size_t r = 0; r < records.size(); ++r) {
            out += (r ? ",\n  {" : "\n  {") + jsonText(L"handle") + ": " +
                   jsonText(handleOf(records[r].id));
            for (const auto& [key, value] : records[r].values)
                out += ", " + jsonText(key) + ": " + jsonText(value);
            out += "}";
        }
        out += "]";
    }
    return out + "\n}\n";
}

// A parcel as drawn, for the totals of its block and unit and for what stands on it.
struct DrawnParcel {
    AcDbObjectId id;
    std::wstring number;
    const ClassInfo* cls;
    Plot plot;
    double area, floorArea, people;  // m², m², persons
    Pt middle;
    bool hasIslands;
    AcDbObjectIdArray islands;
};

// Buildings of a few parcels: a rectangle of w x h metres whose south-west corner lies
// (dx, dy) from the parcel's centroid, clear of its labels.
struct Building {
    const wchar_t* parcel;
    double dx, dy, w, h;
    const wchar_t* number;
    const wchar_t* name;
    const wchar_t* storeys;
    const wchar_t* height;
    const wchar_t* use;
};

const Building kBuildings[] = {
    {L"A-02", -40, 15, 18, 45, L"A-02-1", L"锦溪花园1号楼", L"26", L"79.9", L"住宅"},
    {L"A-02", 10, 15, 18, 45, L"A-02-2", L"锦溪花园2号楼", L"26", L"79.9", L"住宅"},
    {L"A-05", -30, 15, 60, 25, L"A-05-1", L"锦溪小学教学楼", L"4", L"18.0", L"教育"},
    {L"B-01", -25, 15, 50, 35, L"B-01-1", L"锦溪商务中心", L"22", L"98.5", L"商务办公"},
    {L"E-01", -30, 15, 55, 30, L"E-01-1", L"锦溪社区医院", L"8", L"33.6", L"医疗卫生"},
    {L"E-05", -15, 8, 30, 12, L"E-05-1", L"110kV锦溪变电站", L"2", L"12.0", L"市政公用"},
};

// Red-line kinds ("规划类型") this plan uses.
constexpr const wchar_t* kRoadRedLine = L"1";  // 道路红线
constexpr const wchar_t* kSiteRedLine = L"2";  // 用地红线

// Parcels given out for development get a site red line along their outline.
const wchar_t* const kSiteRedLines[] = {L"B-01", L"F-01"};

// The pattern, scale and angle of the classes hatched, as the class table gives them.
struct HatchStyle {
    const wchar_t* cls;
    const wchar_t* pattern;
    double scale, angle;
};
const HatchStyle kHatchStyles[] = {
    {L"G1", L"GRASS", 4, 0},
    {L"G2", L"ANSI37", 20, 0},
    {L"G3", L"NET", 20, 0},
    {L"E1", L"DASH", 20, 0},
};

std::wstring whole(double v) {
    return std::to_wstring(std::llround(v));
}

class SamplePlan {
  public:
    explicit SamplePlan(AcDbDatabase& database) : database_(database) {}

    bool build() {
        // Whatever was added later comes last, so that the handles of the earlier content
        // (which the README quotes) stay as they were.
        return addLinetypes() && addFrameworkLayers() && addUnitAndBlocks() && addScope() &&
               addRedLines() && addBlockParcels() && addEastStrip() && addCurrentStatus() &&
               addIndicators() && addRedLineKinds() && addBuildings() && addHatches();
    }
    const std::string& error() const { return error_; }
    // Every record written, for the test that reads them back with kplan list.
    std::string recordsJson() const { return writtenJson(written_); }

  private:
    bool fail(const std::string& what) {
        if (error_.empty()) error_ = what;
        return false;
    }
    static std::string utf8(const std::wstring& text) { return db::wideToUtf8(text); }

    // -------------------------------------------------------------- tables

    bool addLinetype(const wchar_t* name, const wchar_t* comments, std::vector<double> dashes) {
        AcDbLinetypeTable* table = nullptr;
        if (database_.getLinetypeTable(table, AcDb::kForWrite) != Acad::eOk) {
            return fail("cannot open the linetype table");
        }
        auto* record = new AcDbLinetypeTableRecord();
        record->setName(name);
        record->setComments(comments);
        record->setNumDashes(static_cast<int>(dashes.size()));
        for (std::size_t i = 0; i < dashes.size(); ++i)
            record->setDashLengthAt(static_cast<int>(i), dashes[i]);
        Acad::ErrorStatus es = table->add(record);
        if (es == Acad::eOk) {
            record->close();
        } else {
            delete record;
        }
        table->close();
        return es == Acad::eOk || fail("cannot add the linetype " + utf8(name));
    }

    // The linetypes of the layer standard, with the dashes of the metric linetype file.
    bool addLinetypes() {
        return addLinetype(L"DASHED", L"Dashed __ __ __ __", {12.7, -6.35}) &&
               addLinetype(L"DASHDOT", L"Dash dot __ . __ .", {12.7, -6.35, 0, -6.35}) &&
               addLinetype(L"PHANTOM", L"Phantom ______  __  __",
                           {31.75, -6.35, 6.35, -6.35, 6.35, -6.35});
    }

    bool addLayer(const std::wstring& name, const AcCmColor& color, const wchar_t* linetype,
                  Adesk::Int16 lineWeight) {
        AcDbLinetypeTable* linetypes = nullptr;
        AcDbObjectId linetypeId;
        if (database_.getLinetypeTable(linetypes, AcDb::kForRead) == Acad::eOk) {
            linetypes->getAt(linetype, linetypeId);
            linetypes->close();
        }
        if (linetypeId.isNull()) return fail("no linetype " + utf8(linetype));
        AcDbLayerTable* table = nullptr;
        if (database_.getLayerTable(table, AcDb::kForWrite) != Acad::eOk) {
            return fail("cannot open the layer table");
        }
        if (table->has(name.c_str())) {
            table->close();
            return true;
        }
        auto* record = new AcDbLayerTableRecord();
        record->setName(name.c_str());
        record->setColor(color);
        record->setLinetypeObjectId(linetypeId);
        record->setLineWeight(lineWeight);
        Acad::ErrorStatus es = table->add(record);
        if (es == Acad::eOk) {
            record->close();
        } else {
            delete record;
        }
        table->close();
        return es == Acad::eOk || fail("cannot add the layer " + utf8(name));
    }

    static AcCmColor indexColor(Adesk::UInt16 index) {
        AcCmColor color;
        color.setColorIndex(index);
        return color;
    }

    // Names, colours, linetypes and widths of the layer standard of the default standard.
    bool addFrameworkLayers() {
        return addLayer(kScopeLayer, indexColor(1), L"DASHDOT", 70) &&
               addLayer(kRedLineLayer, indexColor(1), L"Continuous", 35) &&
               addLayer(kUnitLayer, indexColor(6), L"PHANTOM", 50) &&
               addLayer(kBlockLayer, indexColor(5), L"DASHED", 35) &&
               addLayer(kNumberLayer, indexColor(7), L"Continuous", -3) &&
               addLayer(kCodeLayer, indexColor(7), L"Continuous", -3);
    }

    // Parcels sit on the layer of their class: the class table's affixes around the code.
    bool classLayer(const ClassInfo& c, bool planned, std::wstring& name) {
        name = std::wstring(planned ? L"GH-" : L"XZ-") + c.layerCode;
        AcCmColor color;
        color.setRGB(c.red, c.green, c.blue);
        return addLayer(name, color, L"Continuous", planned ? 25 : 18);
    }

    // -------------------------------------------------------------- entities

    AcDbObjectId addOutline(const Outline& outline, const std::wstring& layer, bool closed) {
        auto* pline = new AcDbPolyline(static_cast<unsigned int>(outline.size()));
        for (std::size_t i = 0; i < outline.size(); ++i) {
            pline->addVertexAt(static_cast<unsigned int>(i), world(outline[i].p), outline[i].bulge);
        }
        pline->setClosed(closed);
        pline->setLayer(layer.c_str());
        AcDbEntity* entity = pline;
        AcDbObjectId id = kova::ent::SafeAddToDb(entity, &database_);
        if (id.isNull()) fail("cannot add a polyline on " + utf8(layer));
        return id;
    }

    bool addLabel(Pt at, const std::wstring& text, const wchar_t* layer, double height) {
        AcGePoint2d p = world(at);
        AcGePoint3d point(p.x, p.y, 0);
        auto* label = new AcDbText(point, text.c_str(), AcDbObjectId(), height);
        label->setHorizontalMode(AcDb::kTextCenter);
        label->setVerticalMode(AcDb::kTextVertMid);
        label->setAlignmentPoint(point);
        label->setLayer(layer);
        AcDbEntity* entity = label;
        return !kova::ent::SafeAddToDb(entity, &database_).isNull() ||
               fail("cannot add the label " + utf8(text));
    }

    // A GIS record of the application with its type label, then its fields in one write.
    bool writeRecord(AcDbObjectId id, const wchar_t* app, const wchar_t* typeLabel,
                     const std::vector<std::pair<const wchar_t*, std::wstring>>& fields) {
        if (!ARX_DATA::CFGisXData::SetTo(id, app, L"", typeLabel)) {
            return fail("cannot create the record " + utf8(app));
        }
        CStringArray apps, keys, values;
        for (const auto& [key, value] : fields) {
            apps.Add(app);
            keys.Add(key);
            values.Add(value.c_str());
        }
        return ARX_DATA::CFGisXData::SetTo(id, apps, keys, values) ||
               fail("cannot write the fields of " + utf8(app));
    }

    // -------------------------------------------------------------- framework

    // Unit and block records through their classes: wrapping stamps the record, then the
    // fields; the indicators follow once the parcels are drawn (addIndicators).
    bool addUnitAndBlocks() {
        Outline unit = polygon({{0, 0}, {1200, 0}, {1200, 900}, {0, 900}});
        unitId_ = addOutline(unit, kUnitLayer, true);
        if (unitId_.isNull() ||
            !writeFields(CDYBJInfo(unitId_), {{dk::FS_DYBH, kUnitNumber},
                                              {dk::FS_ZDGN, L"居住、公共服务、工业"},
                                              {dk::FS_BZ, L"锦溪片区02单元"}})) {
            return fail("cannot write the unit");
        }
        for (const Block& b : blocks_) {
            Outline outline = polygon({{b.westCentre.at(b.yCentre0), b.yCentre0},
                                       {b.eastCentre.at(b.yCentre0), b.yCentre0},
                                       {b.eastCentre.at(b.yCentre1), b.yCentre1},
                                       {b.westCentre.at(b.yCentre1), b.yCentre1}});
            AcDbObjectId id = addOutline(outline, kBlockLayer, true);
            if (id.isNull() || !writeFields(CJFBJInfo(id), {{dk::FS_JFBH, blockNumber(b)},
                                                            {dk::FS_DYBH, kUnitNumber},
                                                            {dk::FS_ZDGN, b.function}})) {
                return fail("cannot write the block " + utf8(b.letter));
            }
            blockIds_.append(id);
        }
        return true;
    }

    static std::wstring blockNumber(const Block& b) {
        return std::wstring(kUnitNumber) + L"-" + b.letter;
    }

    static bool writeFields(CBoundaryRecord&& record, const Fields& fields) {
        CStringArray keys, values;
        for (const auto& [key, value] : fields) {
            keys.Add(key);
            values.Add(value.c_str());
        }
        return record.SetData(keys, values) == 1;
    }

    bool addScope() {
        AcDbObjectId id =
            addOutline(polygon({std::begin(kScope), std::end(kScope)}), kScopeLayer, true);
        return !id.isNull() && writeRecord(id, dk::FAPP_GHFWX, L"规划范围线",
                                           {{dk::FS_XMMC, L"锦溪片区控制性详细规划"},
                                            {dk::FS_GHSJ, L"2024年6月"},
                                            {dk::FS_BZ, L"含锦溪河东岸防护绿带"}});
    }

    // The red lines of the inner roads, one open polyline per block side: from where the
    // corner before it leaves the previous side, round that corner, to where the next
    // corner begins.
    bool addRedLines() {
        for (const Block& b : blocks_) {
            BlockGeometry g = geometryOf(b);
            for (int side = 0; side < 4; ++side) {
                const Road& road = kRoads[b.roads[side]];
                if (!road.inner) continue;
                const CornerCut& from = g.cuts[side];
                const CornerCut& to = g.cuts[(side + 1) % 4];
                Outline line;
                if (from.cut) line.push_back({from.before, from.bulge});
                line.push_back({from.after, 0});
                line.push_back({to.before, 0});
                AcDbObjectId id = addOutline(line, kRedLineLayer, false);
                roadRedLines_.append(id);
                if (id.isNull() ||
                    !writeRecord(
                        id, dk::FAPP_KXROAD, L"道路红线",
                        {{dk::FS_NAME, road.name},
                         {dk::FS_BZ, L"红线宽度" + std::to_wstring(road.width) + L"米"}})) {
                    return false;
                }
            }
        }
        return true;
    }

    // -------------------------------------------------------------- parcels

    bool addBlockParcels() {
        for (const Block& b : blocks_) {
            BlockGeometry g = geometryOf(b);
            int number = 0;
            for (const Row& row : b.rows) {
                for (const Plot& p : row.plots) {
                    AcDbObjectIdArray islands;
                    if (p.holdsSubstation) {
                        // Numbered after its park, drawn first so the park can link it.
                        Outline outline = polygon({kSubstation[0],
                                                   {kSubstation[1].x, kSubstation[0].y},
                                                   kSubstation[1],
                                                   {kSubstation[0].x, kSubstation[1].y}});
                        Plot substation = plot(0, 1, L"U12").note(L"110kV变电站");
                        AcDbObjectId id;
                        if (!addPlanned(outline, parcelNumber(b.letter, number + 2), substation, {},
                                        5, id)) {
                            return false;
                        }
                        islands.append(id);
                    }
                    AcDbObjectId id;
                    if (!addPlanned(plotOutline(b, g, row, p), parcelNumber(b.letter, ++number), p,
                                    islands, 8, id)) {
                        return false;
                    }
                    if (p.holdsSubstation) ++number;
                }
            }
        }
        return true;
    }

    bool addEastStrip() {
        int number = 0;
        for (const LoosePlot& loose : eastStrip_) {
            AcDbObjectId id;
            if (!addPlanned(polygon(loose.points), parcelNumber(L"G", ++number), loose.plot, {}, 8,
                            id)) {
                return false;
            }
        }
        return true;
    }

    static std::wstring parcelNumber(const wchar_t* letter, int number) {
        return std::wstring(letter) + (number < 10 ? L"-0" : L"-") + std::to_wstring(number);
    }

    bool addPlanned(const Outline& outline, const std::wstring& number, const Plot& p,
                    const AcDbObjectIdArray& islands, double labelHeight, AcDbObjectId& id) {
        const ClassInfo* c = findClass(p.cls);
        if (c == nullptr) return fail("no class " + utf8(p.cls));
        std::wstring layer;
        if (!classLayer(*c, true, layer)) return false;
        id = addOutline(outline, layer, true);
        double area = 0;
        if (id.isNull()) return false;
        if (!kova::ent::GetArea(id, area)) return fail("no area for " + utf8(number));

        // The record's area is the outline's own, islands included: they carry theirs.
        const wchar_t* floorAreaRatio = p.floorAreaRatio ? p.floorAreaRatio : c->floorAreaRatio;
        std::wstring entered = whole(area);
        std::vector<std::pair<const wchar_t*, std::wstring>> fields = {
            {dk::FS_DKBH, number}, {dk::FS_DKXZ, c->code}, {dk::FS_XZMC, c->name}};
        if (floorAreaRatio) {
            fields.push_back({dk::FD_RJL, floorAreaRatio});
            fields.push_back({dk::FD_LDL, c->greenRatio});
            fields.push_back({dk::FD_JZMD, c->density});
            fields.push_back({dk::FD_JZXG, p.height ? p.height : c->height});
        }
        fields.push_back({dk::FD_YDMJ, entered});
        if (floorAreaRatio) {
            double floor = std::round(area) * std::wcstod(floorAreaRatio, nullptr);
            fields.push_back({dk::FD_JZMJ, whole(floor)});
            if (c->housingShare > 0) {
                // 100 m² a household, 2.8 people a household.
                double households = std::round(floor * c->housingShare / 100);
                fields.push_back({dk::FN_ZHS, whole(households)});
                fields.push_back({dk::FN_ZRKS, whole(households * 2.8)});
            }
        }
        if (std::wstring(c->code).find(L'/') != std::wstring::npos) {
            fields.push_back({dk::FS_HHBL, L"4:6"});
        }
        if (p.facilities) fields.push_back({dk::FS_PTSS, p.facilities});
        if (p.remark) fields.push_back({dk::FS_BZ, p.remark});

        bool written = false;
        switch (p.generation) {
            case Generation::Current:
                written = writeCurrentGeneration(id, fields, islands);
                break;
            case Generation::Second:
                written = writeSecondGeneration(id, fields);
                break;
            case Generation::First:
                written = writeFirstGeneration(id, fields);
                break;
        }
        if (!written) return fail("cannot write the record of " + utf8(number));
        Pt middle = centroid(outline);
        double floorArea =
            floorAreaRatio ? std::round(area) * std::wcstod(floorAreaRatio, nullptr) : 0;
        double people = 0;
        for (const auto& [key, value] : fields) {
            if (std::wstring(key) == dk::FN_ZRKS) people = std::wcstod(value.c_str(), nullptr);
        }
        parcels_.push_back({id, number, c, p, std::round(area), floorArea, people, middle,
                            !islands.isEmpty(), islands});
        const wchar_t* generation = p.generation == Generation::Current  ? L"3"
                                    : p.generation == Generation::Second ? L"2"
                                                                         : L"1";
        kind("parcel").push_back({id,
                                  {{L"generation", generation},
                                   {L"kind", L"planned"},
                                   {L"number", number},
                                   {L"class", c->code}}});
        return addLabel({middle.x, middle.y + labelHeight * 0.7}, number, kNumberLayer,
                        labelHeight) &&
               addLabel({middle.x, middle.y - labelHeight * 0.7}, c->code, kCodeLayer, labelHeight);
    }

    // The record of the planning type in force, created by the record class itself.
    static bool writeCurrentGeneration(
        AcDbObjectId id, const std::vector<std::pair<const wchar_t*, std::wstring>>& fields,
        const AcDbObjectIdArray& islands) {
        CStringArray keys, values;
        for (const auto& [key, value] : fields) {
            keys.Add(key);
            values.Add(value.c_str());
        }
        CDKBJXDInfo parcel(id);
        return islands.isEmpty() ? parcel.SetData(keys, values) == 1
                                 : parcel.SetData(keys, values, islands) == 1;
    }

    // What an older release called a field.
    static const wchar_t* oldLabel(const wchar_t* key, int generation) {
        for (const dk::OldLabels& entry : dk::OLD_LABELS) {
            if (std::wstring(key) == entry.key) return generation == 1 ? entry.first : entry.second;
        }
        return nullptr;
    }

    // "地块属性": a GIS record keyed by the old labels; fields that had no label of their
    // own kept their key.
    static bool writeSecondGeneration(
        AcDbObjectId id, const std::vector<std::pair<const wchar_t*, std::wstring>>& fields) {
        if (!ARX_DATA::CFGisXData::SetTo(id, dk::APP_DKSX, L"", L"二代地块")) return false;
        for (const auto& [key, value] : fields) {
            const wchar_t* label = oldLabel(key, 2);
            if (!ARX_DATA::CFGisXData::SetTo(id, label ? label : key, value.c_str(),
                                             dk::APP_DKSX)) {
                return false;
            }
        }
        return true;
    }

    // "地块边界": label and value strings in one list, with the area as "用地面积";
    // households and the class name were simple items of their own. Fields the first
    // release did not know are left out.
    static bool writeFirstGeneration(
        AcDbObjectId id, const std::vector<std::pair<const wchar_t*, std::wstring>>& fields) {
        resbuf* head = nullptr;
        resbuf* tail = nullptr;
        bool ok = true;
        for (const auto& [key, value] : fields) {
            std::wstring k = key;
            if (k == dk::FN_ZHS) {
                ok = ARX_DATA::CFSimpleXData::SetTo(id, dk::LBL_HS, value.c_str()) && ok;
                continue;
            }
            if (k == dk::FS_XZMC) {
                ok = ARX_DATA::CFSimpleXData::SetTo(id, dk::LBL_XZMC, value.c_str()) && ok;
                continue;
            }
            const wchar_t* label = k == dk::FD_YDMJ ? dk::LBL_YDMJ : oldLabel(key, 1);
            if (label == nullptr || k == dk::FN_ZRKS) continue;  // the old slot means slope
            resbuf* pair = acutBuildList(1000, label, 1000, value.c_str(), 0);
            (tail ? tail->rbnext : head) = pair;
            tail = pair->rbnext;
        }
        ok = head != nullptr && kova::dat::AddObjXdata(id, dk::APP_DKBJ, head) == 1 && ok;
        acutRelRb(head);
        return ok;
    }

    bool addCurrentStatus() {
        int number = 0;
        for (const CurrentPlot& plot : kCurrent) {
            const ClassInfo* c = findClass(plot.cls);
            if (c == nullptr) return fail("no class " + utf8(plot.cls));
            std::wstring layer;
            if (!classLayer(*c, false, layer)) return false;
            AcDbObjectId id = addOutline(polygon(plot.points), layer, true);
            double area = 0;
            if (id.isNull() || !kova::ent::GetArea(id, area)) return fail("no current parcel");
            CStringArray keys, values;
            auto field = [&](const wchar_t* key, const std::wstring& value) {
                keys.Add(key);
                values.Add(value.c_str());
            };
            field(dk::FS_DKBH, parcelNumber(L"XZ", ++number));
            field(dk::FS_DKXZ, c->code);
            field(dk::FS_XZMC, c->name);
            field(dk::FD_YDMJ, whole(area));
            if (plot.people) field(dk::FN_ZRKS, plot.people);
            field(dk::FS_DKZT, L"现状");
            field(dk::FS_BZ, plot.remark);
            if (CDKBJXDInfo(id).SetXZData(keys, values) != 1) {
                return fail("cannot write current parcel " + std::to_string(number));
            }
            kind("parcel").push_back({id,
                                      {{L"generation", L"3"},
                                       {L"kind", L"current status"},
                                       {L"number", parcelNumber(L"XZ", number)},
                                       {L"class", c->code}}});
        }
        return true;
    }

    // -------------------------------------------------------------- later records

    // The parcels of a block ("A-") or of the whole unit (all blocks).
    std::vector<const DrawnParcel*> parcelsOf(const std::wstring& prefix) const {
        std::vector<const DrawnParcel*> found;
        for (const DrawnParcel& p : parcels_) {
            bool inUnit = prefix.empty() && p.number.size() > 1 && p.number[0] >= L'A' &&
                          p.number[0] <= L'F' && p.number[1] == L'-';
            if (inUnit || (!prefix.empty() && p.number.rfind(prefix, 0) == 0)) found.push_back(&p);
        }
        return found;
    }

    static std::wstring decimals(double v, int places) {
        wchar_t text[32];
        std::swprintf(text, 32, L"%.*f", places, v);
        return text;
    }

    // Totals of a set of parcels as a unit or block records them.
    static Fields totals(const std::vector<const DrawnParcel*>& parcels) {
        double site = 0, floor = 0, people = 0, green = 0, ratioArea = 0, ratioSum = 0;
        std::wstring facilities;
        for (const DrawnParcel* p : parcels) {
            site += p->area;
            floor += p->floorArea;
            people += p->people;
            if (p->cls->code[0] == L'G') green += p->area;
            if (p->cls->greenRatio) {
                ratioArea += p->area;
                ratioSum += p->area * std::wcstod(p->cls->greenRatio, nullptr);
            }
            if (p->plot.facilities) {
                facilities += (facilities.empty() ? L"" : L"=") + std::wstring(p->plot.facilities);
            }
        }
        Fields fields = {{dk::FDC_ZJRK, whole(people)},
                         {dk::FDC_ZYDMJ, whole(site)},
                         {dk::FDC_ZJJZMJ, whole(floor)},
                         {dk::FDC_GYLDMJ, whole(green)},
                         {dk::FDC_PJRJL, decimals(floor / site, 2)},
                         {dk::FDC_PJLDL, decimals(ratioSum / ratioArea, 1)}};
        if (!facilities.empty()) fields.push_back({dk::FS_PTSS, facilities});
        return fields;
    }

    // The indicators of the unit and its blocks, from the parcels drawn in them.
    bool addIndicators() {
        std::vector<WrittenRecord>& blocks = kind("block");
        for (std::size_t i = 0; i < blocks_.size(); ++i) {
            std::wstring prefix = std::wstring(blocks_[i].letter) + L"-";
            Fields fields = totals(parcelsOf(prefix));
            fields.push_back({dk::FS_SJDX, kGuidance[i]});
            fields.push_back({dk::FS_GXSJ, L"2024年6月"});
            fields.push_back({dk::FS_SJSJ, L"2024年3月"});
            AcDbObjectId id = blockIds_[static_cast<int>(i)];
            if (!writeFields(CJFBJInfo(id), fields)) {
                return fail("cannot write the indicators of block " + utf8(blocks_[i].letter));
            }
            blocks.push_back(areaRecord(id,
                                        {{dk::FS_JFBH, blockNumber(blocks_[i])},
                                         {dk::FS_DYBH, kUnitNumber},
                                         {dk::FS_ZDGN, blocks_[i].function}},
                                        fields, prefix));
        }
        Fields fields = totals(parcelsOf(L""));
        fields.push_back({dk::FDC_JSYDMJ, fields[1].second});
        fields.push_back({dk::FD_FJSYDMJ, L"0"});
        fields.push_back({dk::FS_PZWH, L"锦政规〔2024〕18号"});
        fields.push_back({dk::FS_GXSJ, L"2024年6月"});
        fields.push_back({dk::FS_SJSJ, L"2024年3月"});
        kind("unit").push_back(areaRecord(unitId_,
                                          {{dk::FS_DYBH, kUnitNumber},
                                           {dk::FS_ZDGN, L"居住、公共服务、工业"},
                                           {dk::FS_BZ, L"锦溪片区02单元"}},
                                          fields, L""));
        return writeFields(CDYBJInfo(unitId_), fields) ||
               fail("cannot write the unit's indicators");
    }

    std::vector<WrittenRecord>& kind(const std::string& name) {
        for (auto& [kindName, records] : written_) {
            if (kindName == name) return records;
        }
        written_.push_back({name, {}});
        return written_.back().second;
    }

    // A unit or block as listed: its fields, and the current-generation parcels it holds.
    WrittenRecord areaRecord(AcDbObjectId id, const Fields& first, const Fields& then,
                             const std::wstring& prefix) const {
        WrittenRecord record{id, {}};
        for (const Fields* fields : {&first, &then}) {
            for (const auto& [key, value] : *fields)
                record.values.push_back({key, value});
        }
        std::wstring numbers;
        int count = 0;
        for (const DrawnParcel* p : parcelsOf(prefix)) {
            if (p->plot.generation != Generation::Current) continue;
            numbers += (numbers.empty() ? L"" : L" ") + p->number;
            ++count;
        }
        record.values.push_back({L"parcels", std::to_wstring(count)});
        record.values.push_back({L"parcel_numbers", numbers});
        return record;
    }

    // Road red lines are red-line records of the road kind; the sites given out for
    // development get red lines of the site kind along their outline.
    bool addRedLineKinds() {
        std::vector<WrittenRecord>& lines = kind("redline");
        for (AcDbObjectId id : roadRedLines_) {
            if (!CGHHXInfo(id).SetData(dk::LBL_GHLX, kRoadRedLine)) {
                return fail("cannot write a road red line's kind");
            }
            lines.push_back({id, {{dk::LBL_GHLX, kRoadRedLine}, {L"space", L"model"}}});
        }
        for (const wchar_t* number : kSiteRedLines) {
            const DrawnParcel* parcel = findParcel(number);
            if (parcel == nullptr) return fail("no parcel " + utf8(number));
            AcDbObjectId id = kova::ent::Copy(parcel->id);
            if (id.isNull() || !FDelXData(id, CString(dk::FAPP_GHDK)) ||
                !setLayer(id, kRedLineLayer) ||
                !CGHHXInfo(id).SetData(dk::LBL_GHLX, kSiteRedLine)) {
                return fail("cannot draw the site red line of " + utf8(number));
            }
            lines.push_back({id, {{dk::LBL_GHLX, kSiteRedLine}, {L"space", L"model"}}});
        }
        return true;
    }

    const DrawnParcel* findParcel(const std::wstring& number) const {
        for (const DrawnParcel& p : parcels_) {
            if (p.number == number) return &p;
        }
        return nullptr;
    }

    bool setLayer(AcDbObjectId id, const wchar_t* layer) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) return false;
        Acad::ErrorStatus es = entity->setLayer(layer);
        entity->close();
        return es == Acad::eOk;
    }

    bool addBuildings() {
        if (!addLayer(kBuildingLayer, indexColor(8), L"Continuous", 18)) return false;
        for (const Building& b : kBuildings) {
            const DrawnParcel* parcel = findParcel(b.parcel);
            if (parcel == nullptr) return fail("no parcel " + utf8(b.parcel));
            Pt p0 = add(parcel->middle, {b.dx, b.dy});
            AcDbObjectId id = addOutline(
                polygon({p0, {p0.x + b.w, p0.y}, {p0.x + b.w, p0.y + b.h}, {p0.x, p0.y + b.h}}),
                kBuildingLayer, true);
            double floors = std::wcstod(b.storeys, nullptr);
            if (id.isNull() ||
                !writeFields(CJZBJInfo(id), {{dk::FS_JZBH, b.number},
                                             {dk::FS_JZMC, b.name},
                                             {dk::FN_JZCS, b.storeys},
                                             {dk::FD_JZGD, b.height},
                                             {dk::FD_JZZDMJ, whole(b.w * b.h)},
                                             {dk::FD_JZMJ, whole(b.w * b.h * floors)},
                                             {dk::FS_JZXZ, b.use}})) {
                return fail("cannot write the building " + utf8(b.number));
            }
            kind("building")
                .push_back({id,
                            {{dk::FS_JZBH, b.number},
                             {dk::FS_JZMC, b.name},
                             {dk::FN_JZCS, b.storeys},
                             {dk::FD_JZGD, b.height},
                             {dk::FD_JZZDMJ, whole(b.w * b.h)},
                             {dk::FD_JZMJ, whole(b.w * b.h * floors)},
                             {dk::FS_JZXZ, b.use}}});
        }
        return true;
    }

    // The green, plaza and water parcels hatched in their class's pattern on the class's
    // hatch layer, each hatch made from its parcel's outline (and islands) and recording
    // the parcel's number and class.
    bool addHatches() {
        for (const DrawnParcel& p : parcels_) {
            const HatchStyle* style = nullptr;
            for (const HatchStyle& h : kHatchStyles) {
                if (std::wstring(h.cls) == p.cls->code) style = &h;
            }
            if (style == nullptr || p.plot.generation != Generation::Current) continue;
            std::wstring layer = std::wstring(L"GH-") + p.cls->layerCode + L"-TC";
            AcCmColor color;
            color.setRGB(p.cls->red, p.cls->green, p.cls->blue);
            if (!addLayer(layer, color, L"Continuous", -3)) return false;
            auto* hatch = new AcDbHatch();
            hatch->setPatternScale(style->scale);
            hatch->setPatternAngle(style->angle);
            hatch->setPattern(AcDbHatch::kPreDefined, style->pattern);
            hatch->setLayer(layer.c_str());
            AcDbObjectIdArray outer;
            outer.append(p.id);
            hatch->appendLoop(AcDbHatch::kExternal, outer);
            if (p.hasIslands) hatch->appendLoop(AcDbHatch::kDefault, p.islands);
            AcDbEntity* entity = hatch;
            AcDbObjectId id = kova::ent::SafeAddToDb(entity, &database_);
            CStringArray labels, values;
            labels.Add(dk::LBL_DKBH);
            values.Add(p.number.c_str());
            labels.Add(dk::LBL_DKLB);
            values.Add(p.cls->code);
            if (id.isNull() || CDKTCInfo(id).SetData(labels, values) != 1) {
                return fail("cannot hatch " + utf8(p.number));
            }
            kind("hatch").push_back({id,
                                     {{dk::FS_DKBH, p.number},
                                      {dk::FS_DKXZ, p.cls->code},
                                      {L"pattern", style->pattern},
                                      {L"parcel", handleOf(p.id)}}});
        }
        return true;
    }

    static constexpr const wchar_t* kGuidance[] = {
        L"沿街商业与住区结合，小学居中布置", L"商务商业沿湖滨路集中，内部为住区",
        L"工业仓储集中，东侧设防护绿带",     L"新旧住区结合，保留既有住宅",
        L"中心公园与市民广场为核心",         L"以住区为主，设邻里中心",
    };
    static constexpr const wchar_t* kBuildingLayer = L"GH-建筑轮廓线";
    static constexpr const wchar_t* kScopeLayer = L"GH-规划范围线";
    static constexpr const wchar_t* kRedLineLayer = L"GH-道路红线";
    static constexpr const wchar_t* kUnitLayer = L"GH-规划单元";
    static constexpr const wchar_t* kBlockLayer = L"GH-规划街坊";
    static constexpr const wchar_t* kNumberLayer = L"GH-地块编号";
    static constexpr const wchar_t* kCodeLayer = L"GH-用地代码";
    static constexpr const wchar_t* kUnitNumber = L"JX-02";

    AcDbDatabase& database_;
    Written written_;
    AcDbObjectId unitId_;
    AcDbObjectIdArray blockIds_, roadRedLines_;
    std::vector<DrawnParcel> parcels_;
    std::vector<Block> blocks_ = layoutBlocks();
    std::vector<LoosePlot> eastStrip_ = layoutEastStrip();
    std::string error_;
};

int run(const std::string& path, const std::string& recordsPath) {
    db::LeakCounts before = db::leakCounts();
    // Records are created for the planning type in force: a regulatory plan.
    CKovaDataSet::FSetNameDict_GHType(L"KG,控制性详细规划");
    AcApDocument* document = acDocManager->appendDocument();
    AcDbDatabase& database = *document->database();
    SamplePlan plan(database);
    std::string error;
    bool ok = plan.build();
    if (!ok) error = plan.error();
    db::LeakCounts after = db::leakCounts();
    if (ok && !(after == before)) {
        error = "the drawing was left with " + db::describeLeaks(before, after);
        ok = false;
    }
    if (ok) {
        dxf::setInsUnits(database, 6);
        dxf::setView(database, kOriginX + 850, kOriginY + 450, 1000, 1.9);
        std::error_code ec;
        bool hadBackup = std::filesystem::exists(path + ".bak", ec);
        ok = dxf::save(database, path, error);
        if (ok && !recordsPath.empty()) {
            std::ofstream out(recordsPath, std::ios::binary);
            out << plan.recordsJson();
            out.close();
            if (!out) {
                error = recordsPath + ": cannot write the records";
                ok = false;
            }
        }
        // The previous sample is in version control: a backup beside it would only be
        // committed by mistake.
        if (ok && !hadBackup) std::filesystem::remove(path + ".bak", ec);
    }
    acDocManager->closeDocument(document);
    if (!ok) {
        std::cerr << "make_sample_plan: " << error << "\n";
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: make_sample_plan OUT.dxf [RECORDS.json]\n";
        return 1;
    }
    return run(argv[1], argc == 3 ? argv[2] : "");
}
