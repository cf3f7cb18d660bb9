// "kplan export": a drawing's records as GIS layers (gis/GisExport.h).
#include <iostream>
#include <memory>
#include <string>

#include "cli/ClassNames.h"
#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/Messages.h"
#include "cli/OptionValues.h"
#include "gis/ClassColour.h"
#include "gis/GisExport.h"

namespace kplan::cli {

namespace {

struct ExportArgs {
    std::string drawing, out, crs;
    bool overwrite = false, curves = false;
    StandardOptions standard;
};

int runExport(const ExportArgs& args) {
    std::string error;
    if (gis::driverForPath(args.out).empty()) {
        std::cerr << "kplan: " << args.out
                  << ": unknown output format; name a .gpkg, .geojson, .shp or .fgb file\n";
        return 2;
    }
    if (!args.crs.empty() && !gis::checkCrs(args.crs, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 2;
    }
    LoadedDrawing drawing;
    if (int failed = openWithStandard(args.drawing, args.standard, drawing)) return failed;
    std::vector<gis::ExportLayer> layers = gis::drawingLayers();
    // Parcels of older releases are planned parcels too; the current scans miss them.
    layers[0].ids.append(olderGenerationParcels(*drawing.database(), layers[0].ids));
    ClassNames names;
    gis::ExportOptions options;
    options.crs = args.crs;
    options.overwrite = args.overwrite;
    options.curves = args.curves;
    options.className = [&names](const std::string& code) { return names.of(code); };
    options.classColour = gis::classColourText;
    gis::ExportSummary summary;
    if (!gis::exportLayers(layers, args.out, options, summary, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    for (const std::string& warning : summary.warnings)
        warn() << "kplan: " << warning << "\n";
    for (const auto& [name, count] : summary.layers)
        std::cout << name << ": " << count << (count == 1 ? " feature\n" : " features\n");
    if (!summary.emptyLayers.empty()) {
        std::cout << "not written (no records):";
        for (const std::string& name : summary.emptyLayers)
            std::cout << " " << name;
        std::cout << "\n";
    }
    for (const std::string& file : summary.files)
        std::cout << "wrote " << file << "\n";
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace

void addExportCommand(CLI::App& app, int& exitCode) {
    auto* command =
        app.add_subcommand("export", "Records as GIS layers: GeoPackage, GeoJSON, shapefile");
    auto args = std::make_shared<ExportArgs>();
    command->add_option("DRAWING", args->drawing, "DXF file to read")
        ->type_name(kDrawingValue)
        ->required();
    command->add_option("OUT,-o,--output", args->out, "OUT.gpkg, .geojson, .shp or .fgb")
        ->type_name(kFileValue)
        ->required();
    command->add_option("--crs", args->crs,
                        "Coordinate system of the drawing, e.g. EPSG:4547 (CGCS2000 3-degree "
                        "Gauss-Kruger CM 114E)");
    command->add_flag("--force", args->overwrite, "Replace existing output files");
    command->add_flag("--curves", args->curves,
                      "Keep arcs as arcs (GeoPackage only) instead of chords within 1 cm");
    addStandardOptions(*command, args->standard);
    command->callback([args, &exitCode] { exitCode = runExport(*args); });
}

}  // namespace kplan::cli
