#include "gis/GisImport.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <map>
#include <memory>

#include "gis/GisFields.h"
#include "gis/GisSession.h"
#include "host/arx/dbpl.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "standard/KovaAttribSet.h"

namespace gis {

namespace {

using Ring = std::vector<AcGePoint2d>;

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

bool ringPoints(const OGRLinearRing& ring, Ring& points) {
    for (int i = 0; i < ring.getNumPoints(); ++i)
        points.emplace_back(ring.getX(i), ring.getY(i));
    if (points.size() > 1 && points.front().isEqualTo(points.back())) points.pop_back();
    return points.size() >= 3;
}

bool addPolygon(const OGRPolygon& polygon, Parcel parcel, std::vector<Parcel>& parcels) {
    if (polygon.getExteriorRing() == nullptr) return false;
    parcel.rings.emplace_back();
    if (!ringPoints(*polygon.getExteriorRing(), parcel.rings.back())) return false;
    for (int i = 0; i < polygon.getNumInteriorRings(); ++i) {
        parcel.rings.emplace_back();
        if (!ringPoints(*polygon.getInteriorRing(i), parcel.rings.back())) return false;
    }
    parcels.push_back(std::move(parcel));
    return true;
}

// The polygons of one feature; 0 when it has none, -1 when one is not valid.
int readGeometry(const OGRGeometry* geometry, const Parcel& fields, std::vector<Parcel>& parcels) {
    if (geometry == nullptr || geometry->IsEmpty()) return 0;
    std::unique_ptr<OGRGeometry> linear(geometry->getLinearGeometry());
    if (!linear) return 0;
    OGRwkbGeometryType type = wkbFlatten(linear->getGeometryType());
    if (type != wkbPolygon && type != wkbMultiPolygon) return 0;
    if (!linear->IsValid()) return -1;
    int made = 0;
    if (type == wkbPolygon) {
        if (!addPolygon(*linear->toPolygon(), fields, parcels)) return -1;
        return 1;
    }
    for (const OGRPolygon* part : *linear->toMultiPolygon()) {
        if (!addPolygon(*part, fields, parcels)) return -1;
        ++made;
    }
    return made;
}

AcDbObjectId addPolyline(const Ring& ring, AcDbDatabase& database) {
    auto* pline = new AcDbPolyline(static_cast<unsigned int>(ring.size()));
    for (std::size_t i = 0; i < ring.size(); ++i)
        pline->addVertexAt(static_cast<unsigned int>(i), ring[i]);
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    return kova::ent::SafeAddToDb(entity, &database);
}

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

    for (Parcel& parcel : parcels) {
        AcDbObjectId id = addPolyline(parcel.rings[0], database);
        AcDbObjectIdArray islands;
        for (std::size_t r = 1; r < parcel.rings.size(); ++r)
            islands.append(addPolyline(parcel.rings[r], database));
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
