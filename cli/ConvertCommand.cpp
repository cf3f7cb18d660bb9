#include <iostream>
#include <memory>
#include <string>

#include "cli/Commands.h"
#include "host/dxf/Dxf.h"

namespace kplan::cli {

namespace {

int runConvert(const std::string& in, const std::string& out, const std::string& version) {
    std::string error;
    std::unique_ptr<AcDbDatabase> database = dxf::load(in, error);
    if (!database) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    dxf::SaveOptions options;
    options.version = version;
    if (!dxf::save(*database, out, error, options)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    return 0;
}

}  // namespace

void addConvertCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand("convert", "Load a drawing and save it again");
    struct Args {
        std::string in, out, version;
    };
    auto args = std::make_shared<Args>();
    command->add_option("IN", args->in, "DXF file to read")->required();
    command->add_option("OUT", args->out, "DXF file to write")->required();
    command->add_option("--dxf-version", args->version,
                        "AC1015 to AC1032 (default: AC1024, or the input's when newer)");
    command->callback(
        [args, &exitCode] { exitCode = runConvert(args->in, args->out, args->version); });
}

}  // namespace kplan::cli
