#include "gis/GisImport.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>

#include "draw/Layers.h"
#include "draw/ParcelLayerNames.h"
#include "gis/GisFields.h"
#include "gis/GisSession.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "standard/KovaAttribSet.h"

namespace gis {

namespace {

// Vertices and the bulge of the segment from each to the next.
struct Ring {
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
};

struct Parcel {
    std::vector<Ring> rings;  // the outline, then the holes
    CStringArray keys, values;
};

struct FieldUse {
    int index = -1;
    std::string name, key;
    OGRFieldType type = OFTString;
};

struct DatasetCloser {
    void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};

std::string featureName(const OGRFeature& feature) {
    return "feature " + std::to_string(feature.GetFID());
}

bool isPolygonLayer(OGRLayer& layer) {
    OGRwkbGeometryType type = wkbFlatten(layer.GetGeomType());
    return type == wkbPolygon || type == wkbMultiPolygon || type == wkbCurvePolygon ||
           type == wkbMultiSurface;
}

OGRLayer* chooseLayer(GDALDataset& dataset, const ImportOptions& options, const std::string& source,
                      std::string& error) {
    if (!options.layer.empty()) {
        OGRLayer* layer = dataset.GetLayerByName(options.layer.c_str());
        if (layer == nullptr) error = source + ": no layer " + options.layer;
        return layer;
    }
    if (dataset.GetLayerCount() == 1) return dataset.GetLayer(0);
    for (int i = 0; i < dataset.GetLayerCount(); ++i) {
        if (isPolygonLayer(*dataset.GetLayer(i))) return dataset.GetLayer(i);
    }
    error = source + ": no layer of polygons; name one with --layer";
    return nullptr;
}

// The key each field goes to; unmatched fields are listed in the summary.
bool matchFields(OGRFeatureDefn& definition, const ImportOptions& options,
                 const std::string& source, std::vector<FieldUse>& uses, ImportSummary& summary,
                 std::string& error) {
    for (const auto& [field, key] : options.map) {
        if (definition.GetFieldIndex(field.c_str()) < 0) {
            error = "--map " + field + "=" + key + ": " + source + " layer " + summary.layer +
                    " has no field " + field;
            return false;
        }
    }
    CString path;
    CStringArray keys, aliases;
    CKovaAttribSet::FGetAttFileAndAppName(options.current ? dk::FAPP_XZDK : dk::FAPP_GHDK, path,
                                          keys, aliases);
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        OGRFieldDefn* field = definition.GetFieldDefn(i);
        std::string name = field->GetNameRef(), key;
        for (const auto& mapped : options.map) {
            if (mapped.first == name) key = mapped.second;
        }
        if (key.empty() && looksLikeKey(name)) key = name;
        for (INT_PTR a = 0; key.empty() && a < aliases.GetSize(); ++a) {
            CString alias = aliases[a];
            alias.Trim();
            if (!alias.IsEmpty() && alias.ToUtf8() == name) key = keys[a].ToUtf8();
        }
        if (key.empty() && keyOfFieldName(name) != name) key = keyOfFieldName(name);
        if (key.empty()) {
            summary.unmatched.push_back(name);
            continue;
        }
        OGRFieldType type = field->GetType();
        bool usable = type == OFTString || type == OFTInteger || type == OFTInteger64 ||
                      type == OFTReal || fieldTypeOfKey(key) == FieldType::Text;
        if (!usable) {
            error = source + ": field " + name + " is of type " +
                    OGRFieldDefn::GetFieldTypeName(type) + "; " + key +
                    " takes numbers (--map another key, or convert the field)";
            return false;
        }
        uses.push_back({i, name, key, type});
        summary.matched.emplace_back(name, key);
    }
    return true;
}

// The value as the record stores it; false when the key's type cannot take it.
bool valueText(const OGRFeature& feature, const FieldUse& use, std::string& text) {
    FieldType wanted = fieldTypeOfKey(use.key);
    if (use.type == OFTInteger || use.type == OFTInteger64) {
        text = std::to_string(feature.GetFieldAsInteger64(use.index));
        return true;
    }
    if (use.type == OFTReal) {
        double value = feature.GetFieldAsDouble(use.index);
        text = realText(value);
        long long whole = 0;
        return wanted != FieldType::Integer || parseInteger(text, whole);
    }
    text = feature.GetFieldAsString(use.index);
    double real = 0;
    long long whole = 0;
    if (wanted == FieldType::Real) return text.empty() || parseReal(text, real);
    if (wanted == FieldType::Integer) return text.empty() || parseInteger(text, whole);
    return true;
}

// The bulge of the arc from p through m to q: the tangent of a quarter of its angle,
// positive counter-clockwise; 0 when the three points lie on a line.
double bulgeThrough(const OGRPoint& p, const OGRPoint& m, const OGRPoint& q) {
    constexpr double kPi = 3.14159265358979323846;
    double ax = m.getX() - p.getX(), ay = m.getY() - p.getY();
    double bx = q.getX() - p.getX(), by = q.getY() - p.getY();
    double turn = ax * by - ay * bx;
    double d = 2 * turn;
    if (std::fabs(d) < 1e-12 * (ax * ax + ay * ay + bx * bx + by * by)) return 0;
    // The centre, relative to p.
    double cx = (by * (ax * ax + ay * ay) - ay * (bx * bx + by * by)) / d;
    double cy = (ax * (bx * bx + by * by) - bx * (ax * ax + ay * ay)) / d;
    double from = std::atan2(-cy, -cx), to = std::atan2(by - cy, bx - cx);
    double sweep = turn > 0 ? to - from : from - to;
    while (sweep <= 0)
        sweep += 2 * kPi;
    return (turn > 0 ? 1 : -1) * std::tan(sweep / 4);
}

void addVertex(Ring& ring, const OGRPoint& point, double bulge) {
    ring.points.emplace_back(point.getX(), point.getY());
    ring.bulges.push_back(bulge);
}

// Appends the curve without its last point (the next piece, or the ring's start, has it).
bool appendCurve(const OGRCurve& curve, Ring& ring) {
    OGRwkbGeometryType type = wkbFlatten(curve.getGeometryType());
    if (type == wkbCompoundCurve) {
        for (const OGRCurve* part : *curve.toCompoundCurve()) {
            if (!appendCurve(*part, ring)) return false;
        }
        return true;
    }
    const OGRSimpleCurve& simple = *curve.toSimpleCurve();
    int n = simple.getNumPoints();
    OGRPoint p, m, q;
    if (type == wkbCircularString) {
        for (int i = 0; i + 2 < n; i += 2) {
            simple.getPoint(i, &p);
            simple.getPoint(i + 1, &m);
            simple.getPoint(i + 2, &q);
            if (p.Equals(&q)) {  // a whole circle: two half circles through m
                addVertex(ring, p, 1.0);
                addVertex(ring, m, 1.0);
            } else {
                addVertex(ring, p, bulgeThrough(p, m, q));
            }
        }
        return n >= 3 && n % 2 == 1;
    }
    for (int i = 0; i + 1 < n; ++i) {
        simple.getPoint(i, &p);
        addVertex(ring, p, 0.0);
    }
    return n >= 2;
}

bool ringFrom(const OGRCurve& curve, Ring& ring) {
    if (!appendCurve(curve, ring)) return false;
    // Repeated vertices would make zero-length segments.
    Ring clean;
    for (std::size_t i = 0; i < ring.points.size(); ++i) {
        if (!clean.points.empty() && clean.points.back().isEqualTo(ring.points[i])) continue;
        clean.points.push_back(ring.points[i]);
        clean.bulges.push_back(ring.bulges[i]);
    }
    ring = std::move(clean);
    bool arcs = false;
    for (double bulge : ring.bulges)
        arcs = arcs || bulge != 0;
    return ring.points.size() >= (arcs ? 2u : 3u);
}

bool addPolygon(const OGRCurvePolygon& polygon, Parcel parcel, std::vector<Parcel>& parcels) {
    if (polygon.getExteriorRingCurve() == nullptr) return false;
    for (const OGRCurve* curve : polygon) {
        parcel.rings.emplace_back();
        if (!ringFrom(*curve, parcel.rings.back())) return false;
    }
    parcels.push_back(std::move(parcel));
    return true;
}

// The polygons of one feature, arcs kept as arcs; 0 when it has none, -1 when one is not
// valid.
int readGeometry(const OGRGeometry* geometry, const Parcel& fields, std::vector<Parcel>& parcels) {
    if (geometry == nullptr || geometry->IsEmpty()) return 0;
    OGRwkbGeometryType type = wkbFlatten(geometry->getGeometryType());
    bool single = type == wkbPolygon || type == wkbCurvePolygon;
    bool multi = type == wkbMultiPolygon || type == wkbMultiSurface;
    if (!single && !multi) return 0;
    if (!geometry->IsValid()) return -1;
    if (single) return addPolygon(*geometry->toCurvePolygon(), fields, parcels) ? 1 : -1;
    int made = 0;
    for (const OGRGeometry* part : *geometry->toGeometryCollection()) {
        OGRwkbGeometryType partType = wkbFlatten(part->getGeometryType());
        if (partType != wkbPolygon && partType != wkbCurvePolygon) continue;
        if (!addPolygon(*part->toCurvePolygon(), fields, parcels)) return -1;
        ++made;
    }
    return made;
}

AcDbObjectId addPolyline(const Ring& ring, AcDbDatabase& database, AcDbObjectId layer) {
    auto* pline = new AcDbPolyline(static_cast<unsigned int>(ring.points.size()));
    for (std::size_t i = 0; i < ring.points.size(); ++i)
        pline->addVertexAt(static_cast<unsigned int>(i), ring.points[i], ring.bulges[i]);
    pline->setClosed(true);
    if (!layer.isNull()) pline->setLayer(layer);
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity, &database);
}

CString classOf(const Parcel& parcel) {
    for (INT_PTR i = 0; i < parcel.keys.GetSize() && i < parcel.values.GetSize(); ++i) {
        if (parcel.keys[i] == dk::FS_DKXZ) {
            CString code = parcel.values[i];
            code.Trim();
            return code;
        }
    }
    return CString();
}

// The boundary layer of each class, made as the symbolize command makes it: in the class's
// boundary colour, white when the table gives none.
class ClassLayers {
  public:
    ClassLayers(AcDbDatabase& database, bool planned, ImportSummary& summary)
        : database_(database), planned_(planned), summary_(summary) {}

    // Null for a parcel without a class, left on the drawing's current layer.
    AcDbObjectId of(const CString& code) {
        auto known = layers_.find(code.GetString());
        if (known != layers_.end()) return known->second;
        return layers_[code.GetString()] = make(code);
    }

  private:
    AcDbObjectId make(const CString& code) {
        CString name;
        if (code.IsEmpty() || FGetDKLayer(code, name, planned_ ? 1 : 0) != 1) return {};
        AcCmColor colour = CKovaAttribSet::FGetDKBJCmColorFromCur(code, 1);
        if (colour.isByLayer() || colour.isByBlock() || colour.isNone()) colour.setColorIndex(7);
        AcDbLayerTable* table = nullptr;
        AcDbObjectId id;
        if (!FMakeLayer(name, colour, L"CONTINUOUS") ||
            database_.getLayerTable(table, AcDb::kForRead) != Acad::eOk)
            return {};
        if (table->getAt(name, id) != Acad::eOk) id = AcDbObjectId();
        table->close();
        std::string text = name.ToUtf8();
        if (!id.isNull() && std::find(summary_.layers.begin(), summary_.layers.end(), text) ==
                                summary_.layers.end())
            summary_.layers.push_back(text);
        return id;
    }

    AcDbDatabase& database_;
    bool planned_;
    ImportSummary& summary_;
    std::map<std::wstring, AcDbObjectId> layers_;
};

}  // namespace

bool importLayer(const std::string& source, AcDbDatabase& database, const ImportOptions& options,
                 ImportSummary& summary, std::string& error) {
    Session session;
    std::unique_ptr<GDALDataset, DatasetCloser> dataset(GDALDataset::Open(
        source.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr));
    if (!dataset) {
        error = source + ": cannot read as a GIS layer: " + CPLGetLastErrorMsg();
        return false;
    }
    OGRLayer* layer = chooseLayer(*dataset, options, source, error);
    if (layer == nullptr) return false;
    summary.layer = layer->GetName();
    const OGRSpatialReference* srs = layer->GetSpatialRef();
    // A GeoPackage without a CRS says "undefined geographic": the extent tells degrees.
    OGREnvelope extent;
    bool degrees = layer->GetExtent(&extent, TRUE) == OGRERR_NONE && extent.MinX >= -180 &&
                   extent.MaxX <= 180 && extent.MinY >= -90 && extent.MaxY <= 90;
    if (srs != nullptr && srs->IsGeographic() && degrees) {
        error = source + ": layer " + summary.layer +
                " is in longitude and latitude; a drawing is in metres: reproject it first "
                "(ogr2ogr -t_srs EPSG:NNNN)";
        return false;
    }
    std::vector<FieldUse> uses;
    if (!matchFields(*layer->GetLayerDefn(), options, source, uses, summary, error)) return false;

    // Everything is read and checked before the drawing changes.
    std::vector<Parcel> parcels;
    layer->ResetReading();
    for (auto& feature : *layer) {
        Parcel fields;
        for (const FieldUse& use : uses) {
            if (!feature->IsFieldSetAndNotNull(use.index)) continue;
            std::string text;
            if (!valueText(*feature, use, text)) {
                error = source + ": " + featureName(*feature) + ": field " + use.name + " = \"" +
                        text + "\" is not a " +
                        (fieldTypeOfKey(use.key) == FieldType::Real ? "number" : "whole number") +
                        ", as " + use.key + " needs";
                return false;
            }
            fields.keys.Add(CString::FromUtf8(use.key));
            fields.values.Add(CString::FromUtf8(text));
        }
        int made = readGeometry(feature->GetGeometryRef(), fields, parcels);
        if (made < 0) {
            error = source + ": " + featureName(*feature) +
                    ": the polygon is not valid (a ring crosses itself or another ring, or has "
                    "fewer than three points)";
            return false;
        }
        if (made == 0) ++summary.skipped;
    }
    if (parcels.empty()) {
        error = source + ": layer " + summary.layer + " holds no polygons";
        return false;
    }

    ClassLayers layers(database, !options.current, summary);
    for (Parcel& parcel : parcels) {
        AcDbObjectId layer = layers.of(classOf(parcel));
        AcDbObjectId id = addPolyline(parcel.rings[0], database, layer);
        AcDbObjectIdArray islands;
        for (std::size_t r = 1; r < parcel.rings.size(); ++r)
            islands.append(addPolyline(parcel.rings[r], database, layer));
        if (id.isNull() || islands.contains(AcDbObjectId())) {
            error = "cannot add polylines to the drawing";
            return false;
        }
        CDKBJXDInfo record(id);
        bool written = false;
        if (options.current) {
            written = record.SetXZData(parcel.keys, parcel.values) == 1 &&
                      (islands.isEmpty() || record.SetIsland(islands) == 1);
        } else {
            written =
                (islands.isEmpty() ? record.SetData(parcel.keys, parcel.values)
                                   : record.SetData(parcel.keys, parcel.values, islands)) == 1;
        }
        if (!written) {
            error = "cannot write the record of a parcel from " + source;
            return false;
        }
        ++summary.parcels;
        summary.islands += islands.length();
    }
    return true;
}

}  // namespace gis
