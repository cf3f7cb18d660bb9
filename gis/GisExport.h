#pragma once
// A drawing's records as GIS layers (GDAL): one layer per kind of record, one feature per
// outline with its islands as holes and arcs as chords within 1 cm, one typed field per
// record key with the attribute files' aliases as alternative names, and the handle and
// record generation of each outline; parcels also carry their class name and colour.
#include <functional>
#include <string>
#include <vector>

#include "host/arx/dbmain.h"

namespace gis {

enum class LayerKind {
    Parcel,   // parcels of the four kinds: polygons with islands, generation, class name
    Outline,  // scope lines, units, blocks, buildings: polygons
    RedLine,  // red lines: lines, fields from their label list
};

struct ExportLayer {
    std::string name;  // "planned_parcels"
    std::wstring app;  // whose attribute file gives the fields and aliases
    LayerKind kind = LayerKind::Parcel;
    AcDbObjectIdArray ids;
};

// The layers of the current drawing in their fixed order: planned_parcels,
// current_parcels, underground_planned, underground_current, scope_lines, units, blocks,
// buildings, red_lines (each possibly empty).
std::vector<ExportLayer> drawingLayers();

struct ExportOptions {
    std::string crs;  // "EPSG:4547"; empty writes no CRS
    bool overwrite = false;
    // Arcs and circles of parcel, unit, block and building outlines kept as arcs (curve
    // polygons; GeoPackage only) instead of chords. Red lines stay chords.
    bool curves = false;
    // The class table's name of a class code ("" when unknown); fills class_name.
    std::function<std::string(const std::string&)> className;
    // The fill colour of a class code as "#RRGGBB", above or below ground ("" when it has
    // none); fills class_colour. Asked once per code and layer kind.
    std::function<std::string(const std::string&, bool aboveGround)> classColour;
};

struct ExportSummary {
    std::vector<std::pair<std::string, long long>> layers;  // written, with features
    std::vector<std::string> emptyLayers;                   // not written
    std::vector<std::string> files;
    std::vector<std::string> warnings;  // values a typed field cannot hold, left null
};

// The driver for the file name's extension: "GPKG" (.gpkg), "GeoJSON" (.geojson, .json),
// "ESRI Shapefile" (.shp), "FlatGeobuf" (.fgb); "" for any other.
std::string driverForPath(const std::string& path);

// Writes the non-empty layers to path. GeoPackage holds them all; the formats of one
// layer per file get one file per layer, named "<stem>_<layer><ext>" beside path. Every
// file is written under a temporary name and renamed when complete: on failure nothing
// is left and nothing existing is changed. Existing outputs are replaced only with
// overwrite. False with a message naming the file on failure.
bool exportLayers(const std::vector<ExportLayer>& layers, const std::string& path,
                  const ExportOptions& options, ExportSummary& summary, std::string& error);

// False with a message when text is not a coordinate system GDAL knows ("EPSG:4547").
bool checkCrs(const std::string& text, std::string& error);

}  // namespace gis
