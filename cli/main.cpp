#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "cli/Commands.h"
#include "cli/TerminalProgress.h"
#include "host/db/CommandLine.h"
#include "render/CjkFont.h"

#if defined(__SANITIZE_ADDRESS__)
// cairo 1.16 loses a little of its own memory while it finishes a PDF with a subset of a
// CJK font; the leak checker is told to leave what cairo allocates to cairo.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libcairo.so.2\n";
}
#endif

int main(int argc, char** argv) {
    CLI::App app{"kplan: planning data in CAD drawings"};
    app.require_subcommand(1);
    int exitCode = 0;
    kplan::cli::addInfoCommand(app, exitCode);
    kplan::cli::addConvertCommand(app, exitCode);
    kplan::cli::addStatsCommand(app, exitCode);
    kplan::cli::addListCommand(app, exitCode);
    kplan::cli::addLabelCommand(app, exitCode);
    kplan::cli::addExportCommand(app, exitCode);
    kplan::cli::addImportCommand(app, exitCode);
    kplan::cli::addRenderCommand(app, exitCode);
    kplan::cli::addSymbolizeCommand(app, exitCode);
    kplan::cli::TerminalProgress::installOnStderr();
    // The domain code's command-line messages are for a CAD user watching; here nobody is.
    db::commandLine().keepTranscript(false);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    } catch (const std::exception& e) {
        std::cerr << "kplan: " << e.what() << "\n";
        return 1;
    }
#if defined(__SANITIZE_ADDRESS__)
    // The leak checker at exit counts cairo's and fontconfig's caches unless they go first.
    render::releaseFontCaches();
    return exitCode;
#else
    // Drawings are left to the system (see LoadedDrawing), and so are the statics.
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
    std::_Exit(exitCode);
#endif
}
