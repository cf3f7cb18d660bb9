#pragma once
// What the GIS tests share: kplan run as a user runs it, GDAL's own Python reading what
// it wrote, and kplan list as the record of what the drawing holds.
#include <filesystem>
#include <string>

#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"

inline std::string samplePlan() {
    return std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.dxf";
}

// A drawing with no records (one line, one point, one polyline, one text).
inline std::string emptyDrawing() {
    return std::string(KPLAN_TEST_DATA) + "/dxf/minimal_r12.dxf";
}

inline std::string shellPath(const std::string& path) {
    return "'" + path + "'";
}

// Layers, fields and features of a GIS file as GDAL reads them (tests/gis/ogr_dump.py).
inline Json readWithGdal(const std::string& path) {
    std::string out = testFolder() + "/ogr.json";
    std::string command = "/usr/bin/python3 '" + std::string(KPLAN_SOURCE_DIR) +
                          "/tests/gis/ogr_dump.py' " + shellPath(path) + " >" + shellPath(out);
    if (std::system(command.c_str()) != 0) return Json::parse("");
    return Json::parse(slurp(out));
}

inline const Json& layerNamed(const Json& dump, const std::string& name) {
    static const Json none;
    const Json& layers = dump["layers"];
    for (std::size_t i = 0; i < layers.size(); ++i) {
        if (layers[i]["name"].string() == name) return layers[i];
    }
    return none;
}

inline Json listJson(const std::string& drawing, const std::string& kind = "parcel") {
    Outcome run = kplan("list " + shellPath(drawing) + " --kind " + kind + " --format json");
    return run.exitCode == 0 ? Json::parse(run.out) : Json::parse("");
}

// Files of a folder, hidden ones too.
inline std::size_t filesIn(const std::string& folder) {
    std::size_t n = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder))
        ++n;
    return n;
}
