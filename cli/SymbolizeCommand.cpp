// "kplan symbolize DRAWING -o OUT.dxf": bare parcel outlines into a land-use map. Each
// parcel goes onto its class's boundary layer and gets an associative fill on its class's
// hatch layer, fills behind the linework; fills a parcel already has are kept.
#include <cmath>
#include <iostream>
#include <map>
#include <memory>
#include <numbers>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>

#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/Messages.h"
#include "draw/DrawOrder.h"
#include "draw/Hatching.h"
#include "draw/Layers.h"
#include "draw/ParcelLayerNames.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbsymtb.h"
#include "host/dxf/Dxf.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKTCInfo.h"
#include "record/ObjectIdHash.h"
#include "standard/KovaAttribSet.h"

namespace kplan::cli {

namespace {

struct SymbolizeArgs {
    std::string drawing, out;
    bool status = false, noHatch = false, solid = false, force = false;
    StandardOptions standard;
};

enum class Ground { Planned, Current, Underground };

// What a class looks like, looked up once per class and kind of parcel.
struct ClassStyle {
    AcDbObjectId boundaryLayer, hatchLayer;  // the hatch layer is made with the first fill
    CString hatchLayerName;
    AcCmColor fillColor;
    std::wstring pattern;  // empty for a solid fill
    double scale = 1, angle = 0;
    AcCmColor patternColor;  // by layer when the table gives none
};

struct Summary {
    int parcels = 0, patterned = 0, solid = 0, kept = 0;
    int noClass = 0, noLayer = 0, notFillable = 0;
    std::set<AcDbObjectId> layersUsed;
    int layersMade = 0;
};

std::wstring trimmedField(const CDKBJXDInfo& parcel, const wchar_t* key) {
    CString value;
    parcel.GetData(key, value);
    value.Trim();
    return static_cast<const wchar_t*>(value);
}

std::wstring classOf(AcDbObjectId id, Ground ground) {
    CDKBJXDInfo parcel(id);
    if (ground == Ground::Current) {
        CString cls;
        parcel.GetXZYDDKData(cls);
        cls.Trim();
        return static_cast<const wchar_t*>(cls);
    }
    if (ground == Ground::Underground) {
        std::wstring use = trimmedField(parcel, dk::FS_DXKJXZ);
        if (!use.empty()) return use;
    }
    return trimmedField(parcel, dk::FS_DKXZ);
}

std::wstring numberOf(AcDbObjectId id, Ground ground) {
    CDKBJXDInfo parcel(id);
    if (ground == Ground::Underground) {
        std::wstring number = trimmedField(parcel, dk::FS_DXKJBH);
        if (!number.empty()) return number;
    }
    return trimmedField(parcel, dk::FS_DKBH);
}

// A colour the table did not give (left by layer) is white, as a new layer is by default.
AcCmColor layerColor(AcCmColor color) {
    if (color.isByLayer() || color.isByBlock() || color.isNone()) color.setColorIndex(7);
    return color;
}

// The layer, made in the colour when the drawing lacks it; null when it cannot be made.
AcDbObjectId ensureLayer(AcDbDatabase& database, const CString& name, const AcCmColor& color,
                         Summary& summary) {
    bool existed = FIsLayerExist(name);
    if (!FMakeLayer(name, color, L"CONTINUOUS")) return {};
    if (!existed) ++summary.layersMade;
    AcDbLayerTable* table = nullptr;
    AcDbObjectId id;
    if (database.getLayerTable(table, AcDb::kForRead) != Acad::eOk) return {};
    if (table->getAt(name, id) != Acad::eOk) id = AcDbObjectId();
    table->close();
    return id;
}

ClassStyle lookUpStyle(AcDbDatabase& database, const std::wstring& code, Ground ground,
                       bool wantHatch, Summary& summary) {
    ClassStyle style;
    CString cls = code.c_str(), boundaryName, hatchName;
    int aboveGround = ground == Ground::Underground ? 0 : 1;
    int planned = ground == Ground::Current ? 0 : 1;
    int named = ground == Ground::Underground ? FGetDXKJLayer(cls, boundaryName)
                                              : FGetDKLayer(cls, boundaryName, planned);
    if (named == 1) {
        style.boundaryLayer = ensureLayer(
            database, boundaryName,
            layerColor(CKovaAttribSet::FGetDKBJCmColorFromCur(cls, aboveGround)), summary);
    }
    if (!wantHatch) return style;
    named = ground == Ground::Underground ? FGetDXKJTCLayer(cls, hatchName)
                                          : FGetDKTCLayer(cls, hatchName, planned);
    if (named == 1) {
        style.hatchLayerName = hatchName;
        style.fillColor = layerColor(CKovaAttribSet::FGetCmColorFromCur(cls, aboveGround));
    }
    CString pattern;
    double scale = 1, angle = 0;
    if (ground == Ground::Underground) {
        CKovaAttribSet::FGetHatchFromCurDX(cls, pattern, scale, angle);
    } else {
        CKovaAttribSet::FGetHatchFromCur(cls, pattern, scale, angle);
    }
    pattern.Trim();
    if (!pattern.IsEmpty() && pattern.CompareNoCase(L"SOLID") != 0) {
        style.pattern = static_cast<const wchar_t*>(pattern);
        // A table's scale of 0 would draw the lines on top of each other.
        style.scale = scale > 0 ? scale : 1;
        style.angle = angle * std::numbers::pi / 180.0;  // the tables give degrees
        style.patternColor = CKovaAttribSet::FGetHatchCmColorFromCur(cls, aboveGround);
    }
    return style;
}

// Number and class of every parcel fill the drawing holds (the hatch records).
std::set<std::pair<std::wstring, std::wstring>> recordedFills() {
    std::set<std::pair<std::wstring, std::wstring>> fills;
    AcDbObjectIdArray hatches;
    CDKTCInfo::GetDktc(hatches);
    for (AcDbObjectId id : hatches) {
        CDKTCInfo fill(id);
        CString number, cls;
        fill.GetData(dk::LBL_DKBH, number);
        fill.GetData(dk::LBL_DKLB, cls);
        number.Trim();
        cls.Trim();
        if (!number.IsEmpty()) fills.emplace(number.GetString(), cls.GetString());
    }
    return fills;
}

// True when a live hatch fills the boundary: the boundary carries it as a reactor and is
// the hatch's first or an external loop (an island loop belongs to the parcel around it).
bool hasAssociatedFill(AcDbObjectId boundary) {
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, boundary, AcDb::kForRead) != Acad::eOk) return false;
    std::vector<AcDbObjectId> reactors = object->persistentReactorIds();
    object->close();
    for (AcDbObjectId id : reactors) {
        AcDbHatch* hatch = nullptr;
        if (id.isErased() || acdbOpenObject(hatch, id, AcDb::kForRead) != Acad::eOk) continue;
        bool fills = false;
        for (int i = 0; i < hatch->numLoops() && !fills; ++i) {
            if (i > 0 && !(hatch->loopTypeAt(i) & AcDbHatch::kExternal)) continue;
            AcDbObjectIdArray tied;
            hatch->getAssocObjIdsAt(i, tied);
            for (AcDbObjectId one : tied)
                fills = fills || one == boundary;
        }
        hatch->close();
        if (fills) return true;
    }
    return false;
}

bool putOnLayer(AcDbObjectId id, AcDbObjectId layer, const AcCmColor* color) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenObject(entity, id, AcDb::kForWrite) != Acad::eOk) return false;
    entity->setLayer(layer);
    AcCmColor byLayer;
    entity->setColor(color != nullptr ? *color : byLayer);
    entity->close();
    return true;
}

// Fills the parcel (with its islands left open) on the hatch layer and records on the fill
// which parcel it fills; false when no hatch could be made.
bool fill(AcDbObjectId parcel, const ClassStyle& style, bool solid, const std::wstring& number,
          const std::wstring& cls) {
    AcDbObjectIdArray islands;
    CDKBJXDInfo(parcel).GetIsland(islands);
    AcDbObjectIdArray loops;
    loops.append(parcel);
    loops.append(islands);
    bool patterned = !solid && !style.pattern.empty();
    AcDbObjectId hatch;
    int made = 0;
    if (islands.isEmpty()) {
        made = patterned ? FHatch(parcel, style.pattern.c_str(), style.scale, style.angle, hatch)
                         : FHatch(parcel, hatch);
    } else {
        made = patterned ? FHatch(loops, style.pattern.c_str(), style.scale, style.angle, hatch)
                         : FHatch(loops, hatch);
    }
    if (made != 1) return false;
    bool ownColor = patterned && !style.patternColor.isByLayer();
    putOnLayer(hatch, style.hatchLayer, ownColor ? &style.patternColor : nullptr);
    CStringArray labels, values;
    labels.Add(dk::LBL_DKBH);
    values.Add(number.c_str());
    labels.Add(dk::LBL_DKLB);
    values.Add(cls.c_str());
    CDKTCInfo(hatch).SetData(labels, values);
    return true;
}

// The parcels to symbolize, each once, with the kind of ground it stands for.
std::vector<std::pair<AcDbObjectId, Ground>> parcelsOf(AcDbDatabase& database, bool status) {
    std::vector<std::pair<AcDbObjectId, Ground>> parcels;
    std::unordered_set<AcDbObjectId, dk::ObjectIdHash> seen;
    auto add = [&](const AcDbObjectIdArray& ids, Ground ground) {
        for (AcDbObjectId id : ids) {
            if (seen.insert(id).second) parcels.emplace_back(id, ground);
        }
    };
    AcDbObjectIdArray ids;
    if (status) {
        CDKBJXDInfo::GetAllXZYD(ids);
        add(ids, Ground::Current);
        return parcels;
    }
    // Underground spaces first: a curve that is both keeps the underground layers.
    CDKBJXDInfo::GetDXKJ(ids, 1);
    add(ids, Ground::Underground);
    ids.removeAll();
    CDKBJXDInfo::GetDkbj(ids);
    ids.append(olderGenerationParcels(database, ids));
    add(ids, Ground::Planned);
    return parcels;
}

const char* plural(int count, const char* one, const char* many) {
    return count == 1 ? one : many;
}

void printSummary(const Summary& s, const SymbolizeArgs& args) {
    std::cout << "symbolized " << s.parcels << plural(s.parcels, " parcel", " parcels") << " on "
              << s.layersUsed.size() << plural(int(s.layersUsed.size()), " layer", " layers")
              << " (" << s.layersMade << " new): ";
    if (args.noHatch) {
        std::cout << "no hatches (--no-hatch)";
    } else {
        std::cout << s.patterned + s.solid << plural(s.patterned + s.solid, " hatch", " hatches")
                  << " (" << s.patterned << " patterned, " << s.solid << " solid), " << s.kept
                  << plural(s.kept, " fill", " fills") << " kept";
    }
    std::cout << ": " << args.out << "\n";
    if (s.noClass > 0) {
        warn() << "kplan: " << s.noClass << plural(s.noClass, " parcel has", " parcels have")
               << " no class and " << plural(s.noClass, "is", "are") << " left as "
               << plural(s.noClass, "it was", "they were") << "\n";
    }
    if (s.noLayer > 0) {
        warn() << "kplan: " << s.noLayer << plural(s.noLayer, " parcel's", " parcels'")
               << " class gives no valid layer name; left as "
               << plural(s.noLayer, "it was", "they were") << "\n";
    }
    if (s.notFillable > 0) {
        warn() << "kplan: " << s.notFillable
               << plural(s.notFillable, " parcel has an outline", " parcels have outlines")
               << " that cannot be filled (open or empty) and no hatch\n";
    }
}

int runSymbolize(const SymbolizeArgs& args) {
    if (int refused = checkDxfOutput(args.out, args.force)) return refused;
    std::string error;
    LoadedDrawing drawing;
    if (int failed = openWithStandard(args.drawing, args.standard, drawing)) return failed;
    AcDbDatabase& database = *drawing.database();
    bool hatching = !args.noHatch;
    Summary summary;
    std::map<std::pair<std::wstring, Ground>, ClassStyle> styles;
    std::set<std::pair<std::wstring, std::wstring>> filled;
    if (hatching) filled = recordedFills();
    for (auto [id, ground] : parcelsOf(database, args.status)) {
        std::wstring cls = classOf(id, ground);
        if (cls.empty()) {
            ++summary.noClass;
            continue;
        }
        auto found = styles.find({cls, ground});
        if (found == styles.end()) {
            found = styles
                        .emplace(std::make_pair(cls, ground),
                                 lookUpStyle(database, cls, ground, hatching, summary))
                        .first;
        }
        ClassStyle& style = found->second;
        if (style.boundaryLayer.isNull() || (hatching && style.hatchLayerName.IsEmpty())) {
            ++summary.noLayer;
            continue;
        }
        putOnLayer(id, style.boundaryLayer, nullptr);
        summary.layersUsed.insert(style.boundaryLayer);
        ++summary.parcels;
        if (!hatching) continue;
        std::wstring number = numberOf(id, ground);
        if ((!number.empty() && filled.count({number, cls})) || hasAssociatedFill(id)) {
            ++summary.kept;
            continue;
        }
        if (style.hatchLayer.isNull())
            style.hatchLayer =
                ensureLayer(database, style.hatchLayerName, style.fillColor, summary);
        if (style.hatchLayer.isNull()) {
            ++summary.noLayer;
            continue;
        }
        if (!fill(id, style, args.solid, number, cls)) {
            ++summary.notFillable;
            continue;
        }
        summary.layersUsed.insert(style.hatchLayer);
        ++(args.solid || style.pattern.empty() ? summary.solid : summary.patterned);
    }
    if (hatching) FSolidHatchDown();
    if (!dxf::save(database, args.out, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    printSummary(summary, args);
    return 0;
}

}  // namespace

void addSymbolizeCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand(
        "symbolize", "Put every parcel on its class's layers and fill it with its class's hatch");
    auto args = std::make_shared<SymbolizeArgs>();
    addDrawingInAndOut(*command, args->drawing, args->out);
    command->add_flag("--status", args->status,
                      "The current-status parcels instead of the planned ones");
    command->add_flag("--no-hatch", args->noHatch, "Only the layers; no fills");
    command->add_flag("--solid", args->solid, "Solid fills in the class colour, no patterns");
    // Tying a kept fill with FAssociHatch would give up its pattern for a solid fill.
    command->footer(
        "A parcel that already has a fill keeps it as it is: a kept fill not tied to its "
        "outline stays untied (tying it would turn a patterned fill solid), so it does not "
        "follow edits of the outline.\n\n" +
        app.get_footer());
    addForceOption(*command, args->force);
    addStandardOptions(*command, args->standard);
    addReadOptions(*command, args->standard.recover, args->standard.codePage);
    command->callback([args, &exitCode] { exitCode = runSymbolize(*args); });
}

}  // namespace kplan::cli
