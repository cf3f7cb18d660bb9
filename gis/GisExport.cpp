#include "gis/GisExport.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include "gis/FeatureWriter.h"
#include "gis/GisFields.h"
#include "gis/GisSession.h"
#include "gis/GpkgSpatialIndex.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/outline.h"
#include "host/arx/peek.h"
#include "host/db/TextCodec.h"
#include "host/db/Utf8Path.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaCad.h"
#include "host/kova/SelectByApplications.h"
#include "host/kova/XdataBlocks.h"
#include "record/BoundaryRecord.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DYBJInfo.h"
#include "record/GHHXInfo.h"
#include "record/JFBJInfo.h"
#include "record/JZBJInfo.h"
#include "record/LabelList.h"
#include "record/XDataAccess.h"
#include "standard/KovaAttribSet.h"

namespace gis {

namespace fs = std::filesystem;

namespace {

// Arcs become chords whose sagitta stays within this many drawing units (metres).
constexpr double kChordTolerance = 0.01;

struct Field {
    std::string name;
    FieldType type = FieldType::Text;
    std::string alias;
};

// One outline's fields, by field name, as the record holds them.
using Values = std::vector<std::pair<std::string, std::string>>;

struct Feature {
    AcDbObjectId id;
    Values values;
    int generation = -1;  // of a parcel's record; -1 when not read yet
};

std::string utf8(const CString& text) {
    return text.ToUtf8();
}

std::string handleOf(AcDbObjectId id) {
    ACHAR buffer[17] = {};
    id.handle().getIntoAsciiBuffer(buffer);
    return utf8(CString(buffer));
}

std::string trimmedText(CString value) {
    value.Trim();
    return utf8(value);
}

void addValue(Values& values, const std::string& name, std::string value) {
    for (const auto& known : values) {
        if (known.first == name) return;  // the first record holding a field wins
    }
    values.emplace_back(name, std::move(value));
}

// What CString::Trim takes off both ends.
bool isWhite(char32_t c) {
    if (c == U' ' || (c >= 0x09 && c <= 0x0D)) return true;
    return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

// A value of UTF-8 trimmed as trimmedText trims it, without going through wide text.
std::string trimmedUtf8(std::string_view text) {
    auto first = [&](std::size_t& length) -> char32_t {
        auto b = static_cast<unsigned char>(text.front());
        length = b < 0x80 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : 4;
        if (length > text.size()) return 0;
        char32_t c = length == 1 ? b : b & (0xFF >> (length + 1));
        for (std::size_t i = 1; i < length; ++i)
            c = (c << 6) | (static_cast<unsigned char>(text[i]) & 0x3F);
        return c;
    };
    auto last = [&](std::size_t& length) -> char32_t {
        length = 1;
        while (length < text.size() && length < 4 &&
               (static_cast<unsigned char>(text[text.size() - length]) & 0xC0) == 0x80)
            ++length;
        std::string_view tail = text.substr(text.size() - length);
        auto b = static_cast<unsigned char>(tail.front());
        char32_t c = length == 1 ? b : b & (0xFF >> (length + 1));
        for (std::size_t i = 1; i < length; ++i)
            c = (c << 6) | (static_cast<unsigned char>(tail[i]) & 0x3F);
        return c;
    };
    std::size_t length = 0;
    while (!text.empty() && isWhite(last(length)))
        text.remove_suffix(length);
    while (!text.empty() && isWhite(first(length)))
        text.remove_prefix(length);
    return std::string(text);
}

// Every field of the entity's GIS records, as CFGisXData::GetAllXDatas lists them, read on
// the packed bytes while the loader's compact form is unused: no record is decoded. The
// packed form holds its texts in UTF-8 already (host/db/PackedXdata.h).
void gisRecordValues(AcDbObjectId id, Values& values) {
    auto add = [&](std::string name, std::string value) {
        name = keyOfFieldName(name);
        if (!name.empty()) addValue(values, name, std::move(value));
    };
    kova::xdata::forEachBlock(
        id,
        [&](const std::wstring&, std::span<const db::Value> items) {
            kova::xdata::Record record;
            if (kova::xdata::parseRecord(items, record)) {
                for (const auto& [key, value] : record.fields)
                    add(db::wideToUtf8(key), trimmedText(CString(value)));
            }
            return true;
        },
        [&](std::string_view, std::span<const kova::xdata::PackedItem> items) {
            // A GIS record: a head, "{", pairs of texts, "}" and nothing after.
            auto text = [&](std::size_t i) { return items[i].code == 1000; };
            auto brace = [&](std::size_t i, std::string_view b) {
                return items[i].code == 1002 && items[i].text == b;
            };
            std::size_t i = 0, n = items.size();
            if (i < n && text(i)) ++i;
            if (i >= n || !brace(i, "{")) return true;
            std::size_t from = ++i;
            while (i + 1 < n && text(i) && text(i + 1))
                i += 2;
            if (i >= n || !brace(i, "}") || i + 1 != n) return true;
            for (std::size_t k = from; k < i; k += 2)
                add(std::string(items[k].text), trimmedUtf8(items[k + 1].text));
            return true;
        });
}

Values recordValues(const ExportLayer& layer, AcDbObjectId id, int generation) {
    Values values;
    // Current records and the other kinds' records are GIS records; older parcels go
    // through their record class.
    if (layer.kind == LayerKind::Outline || (layer.kind == LayerKind::Parcel && generation != 1)) {
        gisRecordValues(id, values);
        return values;
    }
    CStringArray names, texts, apps;
    if (layer.kind == LayerKind::Parcel) {
        CDKBJXDInfo(id).GetData(names, texts, apps);
    } else {
        dk::ReadListPairs(id, dk::APP_GHHX, names, texts);
    }
    for (INT_PTR i = 0; i < names.GetSize() && i < texts.GetSize(); ++i) {
        std::string name = utf8(names[i]);
        if (layer.kind != LayerKind::RedLine) name = keyOfFieldName(name);
        if (!name.empty()) addValue(values, name, trimmedText(texts[i]));
    }
    return values;
}

std::string labelOfKey(const std::string& key) {
    CString wide = CString::FromUtf8(key);
    for (const dk::LabelKey& label : dk::LABEL_KEYS) {
        if (wide == label.key) return utf8(CString(label.label));
    }
    return {};
}

// The kplan fields first, then the fields the attribute file switches on, in its order,
// then whatever else the records hold, in the order met.
std::vector<Field> layerFields(const ExportLayer& layer, const std::vector<Feature>& features) {
    std::vector<Field> fields = {{"handle", FieldType::Text, "句柄"}};
    if (layer.kind == LayerKind::Parcel) {
        fields.push_back({"generation", FieldType::Integer, "记录版本"});
        fields.push_back({"class_name", FieldType::Text, "类别名称"});
        fields.push_back({"class_colour", FieldType::Text, "类别颜色"});
    }
    if (layer.kind != LayerKind::RedLine)
        fields.push_back({"area_ha", FieldType::Real, "面积(公顷)"});
    std::size_t own = fields.size();
    std::unordered_set<std::string> names;
    for (const Field& field : fields)
        names.insert(field.name);
    auto known = [&names](const std::string& name) { return !names.insert(name).second; };
    CString path;
    CStringArray keys, aliases;
    CKovaAttribSet::FGetAttFileAndAppName(layer.app.c_str(), path, keys, aliases);
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        std::string key = utf8(keys[i]);
        if (!known(key)) fields.push_back({key, fieldTypeOfKey(key), trimmedText(aliases[i])});
    }
    for (const Feature& feature : features) {
        for (const auto& value : feature.values) {
            if (known(value.first)) continue;
            FieldType type =
                layer.kind == LayerKind::RedLine ? FieldType::Text : fieldTypeOfKey(value.first);
            fields.push_back({value.first, type, ""});
        }
    }
    for (std::size_t i = own; i < fields.size(); ++i) {
        if (fields[i].alias.empty()) fields[i].alias = labelOfKey(fields[i].name);
    }
    return fields;
}

bool outlineRing(AcDbObjectId id, OGRLinearRing& ring) {
    auto* entity = AcDbEntity::cast(arx::peekObject(id));
    std::vector<AcGePoint2d> points;
    bool closed = false;
    if (entity == nullptr || !arx::entityOutline(entity, points, closed, kChordTolerance) ||
        points.size() < 3)
        return false;
    ring.setNumPoints(static_cast<int>(points.size()), FALSE);
    for (std::size_t i = 0; i < points.size(); ++i)
        ring.setPoint(static_cast<int>(i), points[i].x, points[i].y);
    ring.closeRings();
    return true;
}

OGRCircularString* arcThrough(double x0, double y0, double xm, double ym, double x1, double y1) {
    auto* arc = new OGRCircularString();
    arc->addPoint(x0, y0);
    arc->addPoint(xm, ym);
    arc->addPoint(x1, y1);
    return arc;
}

// The outline with its arcs kept: line and arc pieces (a circle is one arc through its
// opposite point). Null for outlines not drawn in the plane's own orientation or by other
// entities than polylines and circles: those go as chords.
std::unique_ptr<OGRCompoundCurve> curveRing(AcDbObjectId id) {
    AcDbObject* object = arx::peekObject(id);
    auto ring = std::make_unique<OGRCompoundCurve>();
    if (auto* circle = AcDbCircle::cast(object)) {
        if (circle->normal().z <= 0) return nullptr;
        AcGePoint3d c = circle->center();
        double r = circle->radius();
        ring->addCurveDirectly(arcThrough(c.x + r, c.y, c.x - r, c.y, c.x + r, c.y));
        return ring;
    }
    auto* pline = AcDbPolyline::cast(object);
    if (pline == nullptr || !pline->isClosed() || pline->normal().z <= 0) return nullptr;
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
    pline->collect(points, bulges);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const AcGePoint2d& p = points[i];
        const AcGePoint2d& q = points[(i + 1) % points.size()];
        if (p.isEqualTo(q)) continue;
        double bulge = i < bulges.size() ? bulges[i] : 0.0;
        OGRErr added = OGRERR_NONE;
        if (bulge == 0) {
            auto* line = new OGRLineString();
            line->addPoint(p.x, p.y);
            line->addPoint(q.x, q.y);
            added = ring->addCurveDirectly(line);
        } else {
            // The arc's middle stands bulge * half the chord off it, to the right of p-q for
            // a counter-clockwise arc.
            double mx = (p.x + q.x) / 2 + bulge / 2 * (q.y - p.y);
            double my = (p.y + q.y) / 2 - bulge / 2 * (q.x - p.x);
            added = ring->addCurveDirectly(arcThrough(p.x, p.y, mx, my, q.x, q.y));
        }
        if (added != OGRERR_NONE) return nullptr;
    }
    if (ring->getNumCurves() == 0) return nullptr;
    return ring;
}

std::unique_ptr<OGRGeometry> curvedPolygon(const ExportLayer& layer, AcDbObjectId id) {
    auto polygon = std::make_unique<OGRCurvePolygon>();
    auto ringOf = [](AcDbObjectId outline) -> std::unique_ptr<OGRCurve> {
        if (std::unique_ptr<OGRCompoundCurve> curve = curveRing(outline)) return curve;
        auto chords = std::make_unique<OGRLinearRing>();
        if (!outlineRing(outline, *chords)) return nullptr;
        return chords;
    };
    std::unique_ptr<OGRCurve> outer = ringOf(id);
    if (!outer || polygon->addRingDirectly(outer.release()) != OGRERR_NONE) return nullptr;
    if (layer.kind == LayerKind::Parcel) {
        AcDbObjectIdArray islands;
        CDKBJXDInfo(id).GetIsland(islands);
        for (AcDbObjectId island : islands) {
            std::unique_ptr<OGRCurve> hole = ringOf(island);
            if (hole && polygon->addRingDirectly(hole.get()) == OGRERR_NONE) hole.release();
        }
    }
    return polygon;
}

std::unique_ptr<OGRGeometry> geometryOf(const ExportLayer& layer, AcDbObjectId id, bool curves) {
    if (curves && layer.kind != LayerKind::RedLine) return curvedPolygon(layer, id);
    if (layer.kind == LayerKind::RedLine) {
        auto* entity = AcDbEntity::cast(arx::peekObject(id));
        std::vector<AcGePoint2d> points;
        bool closed = false;
        if (entity == nullptr || !arx::entityOutline(entity, points, closed, kChordTolerance) ||
            points.size() < 2)
            return nullptr;
        auto line = std::make_unique<OGRLineString>();
        for (const AcGePoint2d& p : points)
            line->addPoint(p.x, p.y);
        if (closed) line->addPoint(points.front().x, points.front().y);
        return line;
    }
    auto polygon = std::make_unique<OGRPolygon>();
    auto outer = std::make_unique<OGRLinearRing>();
    if (!outlineRing(id, *outer)) return nullptr;
    polygon->addRingDirectly(outer.release());
    if (layer.kind == LayerKind::Parcel) {
        AcDbObjectIdArray islands;
        CDKBJXDInfo(id).GetIsland(islands);
        for (AcDbObjectId island : islands) {
            auto hole = std::make_unique<OGRLinearRing>();
            if (outlineRing(island, *hole)) polygon->addRingDirectly(hole.release());
        }
    }
    return polygon;
}

double areaOf(const ExportLayer& layer, AcDbObjectId id) {
    double area = 0;
    if (layer.kind == LayerKind::Parcel) {
        CDKBJXDInfo(id).GetArea(area);
    } else {
        dk::OutlineArea(id, area);
    }
    return area;
}

bool isUnderground(const ExportLayer& layer) {
    return layer.app == dk::FAPP_GHDK_DX || layer.app == dk::FAPP_XZDK_DX;
}

std::string classCode(const ExportLayer& layer, const Values& values) {
    bool underground = isUnderground(layer);
    std::string code;
    for (const auto& value : values) {
        if (underground && value.first == "FS_DXKJXZ" && !value.second.empty()) return value.second;
        if (value.first == "FS_DKXZ") code = value.second;
    }
    return code;
}

OGRFieldType ogrType(FieldType type) {
    switch (type) {
        case FieldType::Real:
            return OFTReal;
        case FieldType::Integer:
            return OFTInteger64;
        case FieldType::Text:
            break;
    }
    return OFTString;
}

struct LayerOutput {
    const ExportLayer* layer;
    std::vector<Feature> features;
    std::vector<Field> fields;
};

std::string sqlText(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) {
        quoted += c;
        if (c == '\'') quoted += '\'';
    }
    return quoted + "'";
}

// GeoPackage keeps a column's human-readable name as the title of its schema entry (GDAL
// reads it back as the alternative name from 3.7 on; 3.6 does not write it).
void writeGpkgTitles(GDALDataset& dataset, const std::string& table,
                     const std::vector<Field>& fields) {
    const char* statements[] = {
        "CREATE TABLE IF NOT EXISTS gpkg_data_columns (table_name TEXT NOT NULL,column_name "
        "TEXT NOT NULL,name TEXT UNIQUE,title TEXT,description TEXT,mime_type TEXT,"
        "constraint_name TEXT,CONSTRAINT pk_gdc PRIMARY KEY (table_name, column_name),"
        "CONSTRAINT gdc_tn UNIQUE (table_name, name))",
        "INSERT INTO gpkg_extensions (table_name,column_name,extension_name,definition,scope) "
        "SELECT 'gpkg_data_columns', NULL, 'gpkg_schema', "
        "'http://www.geopackage.org/spec121/#extension_schema', 'read-write' WHERE NOT EXISTS "
        "(SELECT 1 FROM gpkg_extensions WHERE table_name = 'gpkg_data_columns')",
    };
    for (const char* statement : statements)
        dataset.ReleaseResultSet(dataset.ExecuteSQL(statement, nullptr, nullptr));
    for (const Field& field : fields) {
        if (field.alias.empty()) continue;
        std::string insert =
            "INSERT OR REPLACE INTO gpkg_data_columns (table_name, column_name, title) VALUES (" +
            sqlText(table) + ", " + sqlText(field.name) + ", " + sqlText(field.alias) + ")";
        dataset.ReleaseResultSet(dataset.ExecuteSQL(insert.c_str(), nullptr, nullptr));
    }
}

// A GeoPackage layer's spatial index is left to writeSpatialIndexes, which builds it from
// the envelopes kept in index: GDAL 3.6 inserts them one by one into SQLite's R-tree.
bool writeLayer(GDALDataset& dataset, const LayerOutput& output, const OGRSpatialReference* srs,
                const ExportOptions& options, const std::string& file, ExportSummary& summary,
                std::vector<LayerIndex>& indexes, std::string& error) {
    const ExportLayer& layer = *output.layer;
    char** creation = nullptr;
    std::string driver = dataset.GetDriverName();
    const bool gpkg = driver == "GPKG";
    if (driver == "ESRI Shapefile") creation = CSLSetNameValue(creation, "ENCODING", "UTF-8");
    if (gpkg) creation = CSLSetNameValue(creation, "SPATIAL_INDEX", "NO");
    OGRLayer* out = dataset.CreateLayer(layer.name.c_str(), const_cast<OGRSpatialReference*>(srs),
                                        layer.kind == LayerKind::RedLine ? wkbLineString
                                        : options.curves                 ? wkbCurvePolygon
                                                                         : wkbPolygon,
                                        creation);
    CSLDestroy(creation);
    if (out == nullptr) {
        error = file + ": cannot create layer " + layer.name + ": " + CPLGetLastErrorMsg();
        return false;
    }
    std::vector<int> index;
    for (const Field& field : output.fields) {
        OGRFieldDefn definition(field.name.c_str(), ogrType(field.type));
        if (!field.alias.empty()) definition.SetAlternativeName(field.alias.c_str());
        if (out->CreateField(&definition) != OGRERR_NONE) {
            error = file + ": cannot create field " + field.name + " in layer " + layer.name +
                    ": " + CPLGetLastErrorMsg();
            return false;
        }
        index.push_back(out->GetLayerDefn()->GetFieldCount() - 1);
    }
    // Shapefiles shorten long names: look each field up by position, not by name.
    const bool transaction =
        dataset.TestCapability(ODsCTransactions) && dataset.StartTransaction() == OGRERR_NONE;
    std::unordered_map<std::string, std::size_t> position;
    for (std::size_t f = 0; f < output.fields.size(); ++f)
        position.emplace(output.fields[f].name, f);
    std::vector<const std::string*> recorded(output.fields.size());
    // What fills each field, settled once rather than by its name for every feature; the
    // generation and area go in as numbers, not through text.
    enum class Role { Handle, Generation, Area, ClassName, ClassColour, Recorded };
    std::vector<Role> roles;
    for (const Field& field : output.fields) {
        roles.push_back(field.name == "handle"         ? Role::Handle
                        : field.name == "generation"   ? Role::Generation
                        : field.name == "area_ha"      ? Role::Area
                        : field.name == "class_name"   ? Role::ClassName
                        : field.name == "class_colour" ? Role::ClassColour
                                                       : Role::Recorded);
    }
    FeatureWriter writer(*out, gpkg);
    for (const Feature& feature : output.features) {
        std::fill(recorded.begin(), recorded.end(), nullptr);
        for (const auto& known : feature.values)
            recorded[position.at(known.first)] = &known.second;
        std::unique_ptr<OGRGeometry> geometry = geometryOf(layer, feature.id, options.curves);
        if (!geometry) {
            summary.warnings.push_back(layer.name + ": " + handleOf(feature.id) +
                                       " has no outline to write; left out");
            continue;
        }
        auto made = std::make_unique<OGRFeature>(out->GetLayerDefn());
        OGRFeature& row = *made;
        row.SetGeometryDirectly(geometry.release());
        auto refuse = [&](const Field& field, const std::string& value) {
            summary.warnings.push_back(layer.name + ": " + handleOf(feature.id) + " " + field.name +
                                       " = \"" + value + "\" is not a " +
                                       (field.type == FieldType::Real ? "number" : "whole number") +
                                       "; left empty");
        };
        for (std::size_t f = 0; f < output.fields.size(); ++f) {
            const Field& field = output.fields[f];
            std::string value;
            switch (roles[f]) {
                case Role::Handle:
                    value = handleOf(feature.id);
                    break;
                case Role::Generation: {
                    int generation =
                        feature.generation >= 0 ? feature.generation : CheckDKDataVer(feature.id);
                    if (field.type != FieldType::Integer) {
                        value = std::to_string(generation);
                        break;
                    }
                    row.SetField(index[f], static_cast<GIntBig>(generation));
                    continue;
                }
                case Role::Area: {
                    double area = areaOf(layer, feature.id);
                    if (field.type != FieldType::Real) {
                        value = realText(area);
                        break;
                    }
                    if (std::isfinite(area)) {
                        row.SetField(index[f], area);
                    } else {
                        refuse(field, realText(area));
                    }
                    continue;
                }
                case Role::ClassName: {
                    std::string code = classCode(layer, feature.values);
                    if (options.className && !code.empty()) value = options.className(code);
                    break;
                }
                case Role::ClassColour: {
                    std::string code = classCode(layer, feature.values);
                    if (options.classColour && !code.empty())
                        value = options.classColour(code, !isUnderground(layer));
                    break;
                }
                case Role::Recorded:
                    if (recorded[f] != nullptr) value = *recorded[f];
                    break;
            }
            if (value.empty()) continue;
            double real = 0;
            long long whole = 0;
            if (field.type == FieldType::Text) {
                row.SetField(index[f], value.c_str());
            } else if (field.type == FieldType::Real && parseReal(value, real)) {
                row.SetField(index[f], real);
            } else if (field.type == FieldType::Integer && parseInteger(value, whole)) {
                row.SetField(index[f], static_cast<GIntBig>(whole));
            } else {
                refuse(field, value);
            }
        }
        if (!writer.put(std::move(made))) break;
    }
    std::string failure;
    if (!writer.finish(failure)) {
        error = file + ": cannot write to layer " + layer.name + ": " + failure;
        if (transaction) dataset.RollbackTransaction();
        return false;
    }
    if (transaction && dataset.CommitTransaction() != OGRERR_NONE) {
        error = file + ": cannot write layer " + layer.name + ": " + CPLGetLastErrorMsg();
        return false;
    }
    if (gpkg) {
        writeGpkgTitles(dataset, layer.name, output.fields);
        indexes.push_back({out->GetName(), out->GetGeometryColumn(), out->GetFIDColumn(),
                           writer.takeEnvelopes()});
    }
    summary.layers.emplace_back(layer.name, writer.written());
    return true;
}

bool fileExists(const fs::path& path) {
    std::error_code ec;
    return fs::exists(path, ec);
}

// A folder beside the target for the files being written, removed with this object.
class StagingFolder {
  public:
    explicit StagingFolder(const fs::path& beside) {
        // create_directory fails on a name that exists: a few random tries find a free one.
        std::random_device random;
        for (int attempt = 0; attempt < 16 && path_.empty(); ++attempt) {
            fs::path candidate = beside / (".kplan-export-" + std::to_string(random()));
            std::error_code ec;
            if (fs::create_directory(candidate, ec) && !ec) path_ = candidate;
        }
    }
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;
    ~StagingFolder() {
        std::error_code ec;
        if (!path_.empty()) fs::remove_all(path_, ec);
    }
    const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

}  // namespace

std::vector<ExportLayer> drawingLayers() {
    std::vector<ExportLayer> layers = {
        {"planned_parcels", dk::FAPP_GHDK, LayerKind::Parcel, {}},
        {"current_parcels", dk::FAPP_XZDK, LayerKind::Parcel, {}},
        {"underground_planned", dk::FAPP_GHDK_DX, LayerKind::Parcel, {}},
        {"underground_current", dk::FAPP_XZDK_DX, LayerKind::Parcel, {}},
        {"scope_lines", dk::FAPP_GHFWX, LayerKind::Outline, {}},
        {"units", dk::FAPP_GHDY, LayerKind::Outline, {}},
        {"blocks", dk::FAPP_GHJF, LayerKind::Outline, {}},
        {"buildings", dk::FAPP_JZLKX, LayerKind::Outline, {}},
        {"red_lines", dk::APP_GHHX, LayerKind::RedLine, {}},
    };
    // Xdata names only registered applications: a kind whose applications the drawing
    // never registered has no records, and its scan of every entity can be spared.
    CStringArray registered;
    kova::cad::GetSymTable(L"APPID", registered);
    auto any = [&registered](std::initializer_list<const wchar_t*> apps) {
        for (const wchar_t* app : apps) {
            for (const CString& name : registered) {
                if (name.CompareNoCase(app) == 0) return true;
            }
        }
        return false;
    };
    // The four kinds of parcels in one walk: what CDKBJXDInfo::GetDkbj, GetAllXZYD and
    // GetDXKJ find.
    if (any({dk::FAPP_GHDK, dk::FAPP_GHDK_FG, dk::FAPP_GHDK_ZG, dk::FAPP_GHDK_TX, dk::FAPP_XZDK,
             dk::FAPP_GHDK_DX, dk::FAPP_XZDK_DX})) {
        std::vector<AcDbObjectIdArray> parcels;
        kova::SelectByApplications(
            dk::TYPES_PARCEL, {dk::LIST_GHDK, dk::FAPP_XZDK, dk::FAPP_GHDK_DX, dk::FAPP_XZDK_DX},
            parcels);
        for (std::size_t i = 0; i < parcels.size(); ++i)
            layers[i].ids = std::move(parcels[i]);
    }
    if (any({dk::FAPP_GHFWX})) dk::SelectOutlines(dk::FAPP_GHFWX, layers[4].ids);
    if (any({dk::FAPP_GHDY, dk::APP_DYSX})) CDYBJInfo::GetDYbj(layers[5].ids);
    if (any({dk::FAPP_GHJF, dk::APP_JFSX})) CJFBJInfo::GetJFbj(layers[6].ids);
    if (any({dk::FAPP_JZLKX})) CJZBJInfo::GetJZbj(layers[7].ids);
    if (any({dk::APP_GHHX})) CGHHXInfo::GetGhhx(dk::GHHX_ALL, layers[8].ids);
    return layers;
}

std::string driverForPath(const std::string& path) {
    std::string ext = db::utf8Name(db::utf8Path(path).extension());
    for (char& c : ext)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ext == ".gpkg") return "GPKG";
    if (ext == ".geojson" || ext == ".json") return "GeoJSON";
    if (ext == ".shp") return "ESRI Shapefile";
    if (ext == ".fgb") return "FlatGeobuf";
    return {};
}

bool checkCrs(const std::string& text, std::string& error) {
    Session session;
    OGRSpatialReference srs;
    if (text.empty() || srs.SetFromUserInput(text.c_str()) != OGRERR_NONE) {
        error = "--crs " + text +
                ": not a coordinate system GDAL knows (use EPSG:NNNN, "
                "for example EPSG:4547 for CGCS2000 / 3-degree Gauss-Kruger CM 114E)";
        return false;
    }
    return true;
}

bool exportLayers(const std::vector<ExportLayer>& layers, const std::string& path,
                  const ExportOptions& options, ExportSummary& summary, std::string& error) {
    Session session;
    std::string driverName = driverForPath(path);
    if (driverName.empty()) {
        error = path + ": unknown output format; name a .gpkg, .geojson, .shp or .fgb file";
        return false;
    }
    if (options.curves && driverName != "GPKG") {
        error = path + ": --curves needs a GeoPackage (.gpkg); " + driverName + " keeps no arcs";
        return false;
    }
    OGRSpatialReference srs;
    if (!options.crs.empty()) {
        if (!checkCrs(options.crs, error)) return false;
        srs.SetFromUserInput(options.crs.c_str());
        srs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    }
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(driverName.c_str());
    if (driver == nullptr) {
        error = path + ": this GDAL has no " + driverName + " driver";
        return false;
    }
    std::vector<LayerOutput> outputs;
    for (const ExportLayer& layer : layers) {
        if (layer.ids.isEmpty()) {
            summary.emptyLayers.push_back(layer.name);
            continue;
        }
        LayerOutput output{&layer, {}, {}};
        for (AcDbObjectId id : layer.ids) {
            int generation = layer.kind == LayerKind::Parcel ? CheckDKDataVer(id) : -1;
            output.features.push_back({id, recordValues(layer, id, generation), generation});
        }
        output.fields = layerFields(layer, output.features);
        outputs.push_back(std::move(output));
    }
    if (outputs.empty()) {
        error = path + ": the drawing holds no records to export";
        return false;
    }
    fs::path target = db::utf8Path(path);
    fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    const bool oneFile = driverName == "GPKG";
    std::vector<std::string> names;  // final file names, in folder
    if (oneFile) {
        names.push_back(db::utf8Name(target.filename()));
    } else {
        for (const LayerOutput& output : outputs)
            names.push_back(db::utf8Name(target.stem()) + "_" + output.layer->name +
                            db::utf8Name(target.extension()));
    }
    for (const std::string& name : names) {
        if (fileExists(folder / db::utf8Path(name)) && !options.overwrite) {
            error = db::utf8Name(folder / db::utf8Path(name)) + " exists (--force replaces it)";
            return false;
        }
    }
    StagingFolder staging(folder);
    if (staging.path().empty()) {
        error = db::utf8Name(folder) + ": cannot write there";
        return false;
    }
    const OGRSpatialReference* crs = options.crs.empty() ? nullptr : &srs;
    // The class table answers from its file each time: a drawing has few classes and many
    // parcels, so each code is asked once.
    ExportOptions layerOptions = options;
    if (options.className) {
        layerOptions.className = [names = std::unordered_map<std::string, std::string>(),
                                  &options](const std::string& code) mutable {
            auto known = names.find(code);
            if (known == names.end()) known = names.emplace(code, options.className(code)).first;
            return known->second;
        };
    }
    if (options.classColour) {
        layerOptions.classColour = [colours = std::map<std::pair<std::string, bool>, std::string>(),
                                    &options](const std::string& code, bool above) mutable {
            auto known = colours.find({code, above});
            if (known == colours.end())
                known =
                    colours.emplace(std::pair(code, above), options.classColour(code, above)).first;
            return known->second;
        };
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (oneFile && i > 0) break;
        std::string file = db::utf8Name(staging.path() / db::utf8Path(names[i]));
        std::unique_ptr<GDALDataset> dataset(
            driver->Create(file.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
        if (!dataset) {
            error = path + ": cannot create: " + CPLGetLastErrorMsg();
            return false;
        }
        std::size_t first = oneFile ? 0 : i, last = oneFile ? outputs.size() : i + 1;
        std::vector<LayerIndex> indexes;
        for (std::size_t l = first; l < last; ++l) {
            if (!writeLayer(*dataset, outputs[l], crs, layerOptions, path, summary, indexes, error))
                return false;
        }
        CPLErrorReset();
        GDALClose(dataset.release());
        if (CPLGetLastErrorType() == CE_Failure) {
            error = path + ": cannot finish: " + CPLGetLastErrorMsg();
            return false;
        }
        std::string failure;
        if (!indexes.empty() && !writeSpatialIndexes(file, indexes, failure)) {
            error = path + ": " + failure;
            return false;
        }
    }
    // Every file is complete: move them in, the shapefile's companions with them.
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(staging.path(), ec)) {
        fs::rename(entry.path(), folder / entry.path().filename(), ec);
        if (ec) {
            error =
                db::utf8Name(folder / entry.path().filename()) + ": cannot write: " + ec.message();
            return false;
        }
    }
    for (const std::string& name : names)
        summary.files.push_back(db::utf8Name(folder / db::utf8Path(name)));
    return true;
}

}  // namespace gis
