// "kplan import": a GIS layer of polygons as parcels of a drawing (gis/GisImport.h).
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/OptionValues.h"
#include "gis/GisImport.h"
#include "host/dxf/Dxf.h"

namespace kplan::cli {

namespace {

struct ImportArgs {
    std::string source, into, out, layer, kind = "planned";
    std::vector<std::string> map;
    StandardOptions standard;
    bool force = false;
};

int runImport(const ImportArgs& args) {
    if (int refused = checkDxfOutput(args.out, args.force)) return refused;
    gis::ImportOptions options;
    options.layer = args.layer;
    options.current = args.kind == "current";
    for (const std::string& pair : args.map) {
        std::size_t at = pair.find('=');
        if (at == std::string::npos || at == 0 || at + 1 == pair.size()) {
            std::cerr << "kplan: --map " << pair << ": expected FIELD=KEY\n";
            return 2;
        }
        options.map.emplace_back(pair.substr(0, at), pair.substr(at + 1));
    }
    std::string error;
    LoadedDrawing drawing;
    if (int failed = openWithStandard(args.into, args.standard, drawing)) return failed;
    gis::ImportSummary summary;
    if (!gis::importLayer(args.source, *drawing.database(), options, summary, error) ||
        !dxf::save(*drawing.database(), args.out, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    std::cout << "layer " << summary.layer << ": " << summary.parcels
              << (options.current ? " current-status" : " planned")
              << (summary.parcels == 1 ? " parcel" : " parcels") << ", " << summary.islands
              << (summary.islands == 1 ? " island\n" : " islands\n");
    if (summary.skipped > 0)
        std::cout << "left out " << summary.skipped
                  << (summary.skipped == 1 ? " feature" : " features") << " without a polygon\n";
    std::cout << "fields:";
    for (const auto& [field, key] : summary.matched)
        std::cout << " " << field << (field == key ? "" : "=" + key);
    std::cout << (summary.matched.empty() ? " none\n" : "\n");
    if (!summary.layers.empty()) {
        std::cout << "drawing layers:";
        for (const std::string& name : summary.layers)
            std::cout << " " << name;
        std::cout << "\n";
    }
    if (!summary.unmatched.empty()) {
        std::cout << "not imported (no key matches; --map FIELD=KEY):";
        for (const std::string& field : summary.unmatched)
            std::cout << " " << field;
        std::cout << "\n";
    }
    std::cout << "wrote " << args.out << "\n";
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace

void addImportCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand("import", "GIS polygons as parcels with records");
    auto args = std::make_shared<ImportArgs>();
    command->add_option("LAYER", args->source, "GeoPackage, shapefile, GeoJSON, ... to read")
        ->type_name(kFileValue)
        ->required();
    command->add_option("--into", args->into, "DXF drawing to add the parcels to")
        ->type_name(kDrawingValue)
        ->required();
    command->add_option("-o,--out", args->out, "DXF file to write")
        ->type_name(kDrawingValue)
        ->required();
    command->add_option("--layer", args->layer, "Layer of the source (default: of polygons)");
    command->add_option("--map", args->map, "FIELD=KEY: the record key of a field (repeatable)");
    command->add_option("--kind", args->kind, "planned or current")
        ->check(CLI::IsMember({"planned", "current"}))
        ->capture_default_str();
    addStandardOptions(*command, args->standard);
    addForceOption(*command, args->force);
    command->callback([args, &exitCode] { exitCode = runImport(*args); });
}

}  // namespace kplan::cli
