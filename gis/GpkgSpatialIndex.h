#pragma once
// The spatial index of GeoPackage layers written in one pass from the envelopes of their
// features, instead of GDAL inserting row after row into SQLite's R-tree once the layer is
// complete. The result is the table set GDAL makes: the rtree_<table>_<column> virtual
// table, its gpkg_rtree_index entry in gpkg_extensions and the triggers that keep it right
// when GDAL, QGIS or any other GeoPackage writer edits the layer later.
#include <string>
#include <vector>

namespace gis {

struct IndexEntry {
    long long fid = 0;
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
};

struct LayerIndex {
    std::string table;                // "planned_parcels"
    std::string geometryColumn;       // "geom"
    std::string fidColumn;            // "fid"
    std::vector<IndexEntry> entries;  // one per feature with a non-empty geometry
};

// Adds the index of each layer to the GeoPackage at path, which no other connection may
// hold open (GDAL closes it first). The tree is packed by sort-tile-recursive: nodes of a
// level are filled evenly, each tile spatially compact. All layers or none: false with
// SQLite's message when the file cannot be written.
bool writeSpatialIndexes(const std::string& path, const std::vector<LayerIndex>& layers,
                         std::string& error);

}  // namespace gis
