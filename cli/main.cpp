#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/BashCompletion.h"
#include "cli/Commands.h"
#include "cli/ManPage.h"
#include "cli/Messages.h"
#include "cli/OptionValues.h"
#include "cli/TerminalProgress.h"
#include "host/db/CommandLine.h"
#include "host/db/Console.h"
#if KPLAN_WITH_RENDER
#include "render/CjkFont.h"
#endif

#if defined(__SANITIZE_ADDRESS__)
// cairo 1.16 loses a little of its own memory while it finishes a PDF with a subset of a
// CJK font; the leak checker is told to leave what cairo allocates to cairo.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libcairo.so.2\n";
}
#endif

namespace {

// The commands, for the messages of a wrong command line.
std::string commandList(const CLI::App& app) {
    std::string list;
    for (const CLI::App* command : app.get_subcommands({}))
        list += (list.empty() ? "" : ", ") + command->get_name();
    return list;
}

// "kplan help COMMAND": the options of one command; "kplan help" those of the program.
void addHelpCommand(CLI::App& app, int& exitCode) {
    std::vector<std::string> names;
    for (const CLI::App* known : app.get_subcommands({}))
        names.push_back(known->get_name());
    names.push_back("help");
    auto* command = app.add_subcommand("help", "Show the options of a command");
    auto name = std::make_shared<std::string>();
    kplan::cli::offerChoices(command->add_option("COMMAND", *name, "Command to explain"), names);
    command->callback([&app, name, &exitCode] {
        if (name->empty()) {
            std::cout << app.help();
            return;
        }
        for (const CLI::App* known : app.get_subcommands({})) {
            if (known->get_name() == *name) {
                std::cout << known->help(app.get_name());
                return;
            }
        }
        std::cerr << "kplan: unknown command \"" << *name << "\"; the commands are "
                  << commandList(app) << "\n";
        exitCode = kplan::cli::kExitUsage;
    });
}

// "kplan --generate man|complete-bash": the manual page or the bash completion script,
// made from this application when the command line is parsed, all of it defined by then.
void addGenerateOption(CLI::App& app) {
    app.add_option_function<std::string>(
           "--generate",
           [&app](const std::string& kind) {
               std::cout << (kind == "man" ? kplan::cli::manPage(app, KPLAN_VERSION)
                                           : kplan::cli::bashCompletion(app));
               throw CLI::Success();
           },
           "Print the manual page (man) or the bash completion script (complete-bash) and exit")
        ->check(CLI::IsMember({"man", "complete-bash"}));
}

// An empty argument where a file belongs is an unset variable in a script, not the
// default the omitted argument stands for.
void refuseEmptyNames(CLI::App& app) {
    const CLI::Validator notEmpty(
        [](std::string& value) {
            return value.empty() ? std::string("an empty name (an unset variable?)")
                                 : std::string();
        },
        "");
    for (CLI::App* command : app.get_subcommands({})) {
        for (CLI::Option* option : command->get_options()) {
            if (option->get_positional() || option->check_sname("o") ||
                option->check_lname("output") || option->check_lname("out") ||
                option->check_lname("into"))
                option->check(notEmpty);
        }
    }
}

// What the parser refuses, said as every other message: on stderr, after "kplan:".
int usageError(const CLI::App& app, const CLI::ParseError& e, int argc, char** argv) {
    bool noCommand = app.get_subcommands().empty();
    if (noCommand && argc > 1 && argv[1][0] != '-') {
        std::cerr << "kplan: unknown command \"" << argv[1] << "\"; the commands are "
                  << commandList(app) << "\n";
    } else if (noCommand && argc <= 1) {
        std::cerr << "kplan: no command; the commands are " << commandList(app)
                  << " (kplan help COMMAND for its options)\n";
    } else {
        std::string what = e.what();
        if (dynamic_cast<const CLI::ExtrasError*>(&e) != nullptr)
            what = "unknown command or option: " + what;
        std::cerr << "kplan: " << what << "\n";
        if (noCommand) std::cerr << "kplan: the commands are " << commandList(app) << "\n";
    }
    return kplan::cli::kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
    // Names and options in UTF-8 on every platform.
    std::vector<std::string> arguments = db::utf8Arguments(argc, argv);
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    argv = pointers.data();
    db::useUtf8Console();
    CLI::App app{"kplan: planning data in CAD drawings", "kplan"};
    // The same command line on every platform: "/x" is a path (CLI11 reads it as an option
    // on Windows otherwise). Set before the commands are added, which take it over.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string("kplan ") + KPLAN_VERSION);
    app.footer(
        "Exit codes: 0 success, 1 the input is unreadable or wrong, 2 the command line "
        "is wrong, 3 partly done: some drawings failed. kplan help COMMAND shows a command's "
        "options.");
    int exitCode = 0;
    kplan::cli::addInfoCommand(app, exitCode);
    kplan::cli::addConvertCommand(app, exitCode);
    kplan::cli::addStatsCommand(app, exitCode);
    kplan::cli::addListCommand(app, exitCode);
    kplan::cli::addLabelCommand(app, exitCode);
#if KPLAN_WITH_GIS
    kplan::cli::addExportCommand(app, exitCode);
    kplan::cli::addImportCommand(app, exitCode);
#endif
#if KPLAN_WITH_RENDER
    kplan::cli::addRenderCommand(app, exitCode);
#endif
    kplan::cli::addSymbolizeCommand(app, exitCode);
    addHelpCommand(app, exitCode);
    refuseEmptyNames(app);
    // Before or after the command's name; read before parsing, since loading starts then.
    bool noProgress = false, quiet = false;
    app.add_flag("--no-progress", noProgress, "Draw no progress bar");
    app.add_flag("--quiet", quiet,
                 "No progress bar and no warnings on stderr (errors are still printed; "
                 "warnings stay in JSON and CSV)");
    addGenerateOption(app);
    for (CLI::App* command : app.get_subcommands({}))
        command->fallthrough();
    for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        noProgress |= std::string_view(argv[i]) == "--no-progress";
        quiet |= std::string_view(argv[i]) == "--quiet";
    }
    kplan::cli::setQuiet(quiet);
    if (!noProgress && !quiet) kplan::cli::TerminalProgress::installOnStderr();
    // The domain code's command-line messages are for a CAD user watching; here nobody is.
    db::commandLine().keepTranscript(false);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::Success& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        return usageError(app, e, argc, argv);
    } catch (const std::exception& e) {
        std::cerr << "kplan: " << e.what() << "\n";
        return kplan::cli::kExitInput;
    }
#if defined(__SANITIZE_ADDRESS__)
    // The leak checker at exit counts cairo's and fontconfig's caches unless they go first.
#if KPLAN_WITH_RENDER
    render::releaseFontCaches();
#endif
    return exitCode;
#else
    // Drawings are left to the system (see LoadedDrawing), and so are the statics.
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
    std::_Exit(exitCode);
#endif
}
