#include <iostream>

#include "cli/Commands.h"

int main(int argc, char** argv) {
    CLI::App app{"kplan: planning data in CAD drawings"};
    app.require_subcommand(1);
    int exitCode = 0;
    kplan::cli::addInfoCommand(app, exitCode);
    kplan::cli::addConvertCommand(app, exitCode);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    } catch (const std::exception& e) {
        std::cerr << "kplan: " << e.what() << "\n";
        return 1;
    }
    return exitCode;
}
