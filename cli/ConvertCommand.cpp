#include <iostream>
#include <memory>
#include <string>

#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/OptionValues.h"
#include "host/dxf/Dxf.h"

namespace kplan::cli {

namespace {

struct ConvertArgs {
    std::string in, out, version, codePage;
    bool recover = false, force = false;
};

int runConvert(const ConvertArgs& args) {
    const std::string &in = args.in, &out = args.out, &version = args.version;
    if (int refused = checkDxfOutput(out, args.force)) return refused;
    std::string error;
    std::unique_ptr<AcDbDatabase> database = loadDrawing(in, args.recover, args.codePage, error);
    if (!database) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    dxf::SaveOptions options;
    options.version = version;
    bool saved = out == "-" ? dxf::write(*database, std::cout, error, options) && std::cout.flush()
                            : dxf::save(*database, out, error, options);
    if (!saved) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    return 0;
}

}  // namespace

void addConvertCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand("convert", "Load a drawing and save it again");
    auto args = std::make_shared<ConvertArgs>();
    command->add_option("IN", args->in, "DXF file to read (-: standard input)")
        ->type_name(kDrawingValue)
        ->required();
    command->add_option("OUT,-o,--output", args->out, "DXF file to write (-: standard output)")
        ->type_name(kDrawingValue)
        ->required();
    command->add_option("--dxf-version", args->version,
                        "AC1015 to AC1032 (default: AC1024, or the input's when newer)");
    addReadOptions(*command, args->recover, args->codePage);
    addForceOption(*command, args->force);
    command->callback([args, &exitCode] { exitCode = runConvert(*args); });
}

}  // namespace kplan::cli
