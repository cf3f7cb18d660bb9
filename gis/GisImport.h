#pragma once
// A GIS layer of polygons as parcels of the current drawing: each polygon a closed
// polyline with a current-generation record on its class's layer, each hole an island
// polyline linked to its parcel, the layer's fields written under the keys they match.
#include <string>
#include <utility>
#include <vector>

#include "host/arx/dbmain.h"

namespace gis {

struct ImportOptions {
    std::string layer;  // "" : the only layer, or the first of polygons
    // FIELD=KEY pairs that name the key of a field whatever its name.
    std::vector<std::pair<std::string, std::string>> map;
    bool current = false;  // current-status parcels instead of planned ones
};

struct ImportSummary {
    std::string layer;
    long long parcels = 0, islands = 0;
    long long skipped = 0;                                     // features without a polygon
    std::vector<std::pair<std::string, std::string>> matched;  // field, key
    std::vector<std::string> unmatched;                        // fields not written
    std::vector<std::string> layers;  // drawing layers the parcels went on, first use first
};

// Fields are matched to keys by --map first, then by key name ("FD_RJL"), then by the
// alias of the attribute file of the record's application, then by the record labels
// ("容积率"). The whole layer is read and checked before the drawing is touched: a layer
// without polygons, a field whose values the key's type cannot take, an invalid
// (self-intersecting) polygon or a --map naming no field give false with a message
// naming the file, the feature and the field, and the drawing stays as it was.
// Each parcel and its islands go on the boundary layer of its class (FGetDKLayer, planned
// or current: "GH-R21" with the shipped tables), made in the class's boundary colour when
// missing; a parcel without a class stays on the current layer. The layer functions work
// on the working drawing: database must be it.
bool importLayer(const std::string& source, AcDbDatabase& database, const ImportOptions& options,
                 ImportSummary& summary, std::string& error);

}  // namespace gis
