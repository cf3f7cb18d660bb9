#pragma once
// The commands of the kplan program. Each adds itself to the application and reports
// its outcome through the exit code it sets; messages for the user go to stderr.
#include <CLI/CLI.hpp>

namespace kplan::cli {

// The exit codes of every command.
inline constexpr int kExitInput = 1;   // the input is unreadable or wrong
inline constexpr int kExitUsage = 2;   // the command line is wrong
inline constexpr int kExitPartly = 3;  // partly done: some drawings failed, others not

// What each exit code means, as the manual page tells it.
struct ExitCodeMeaning {
    int code;
    const char* meaning;
};
inline constexpr ExitCodeMeaning kExitCodes[] = {
    {0, "success"},
    {kExitInput, "the input is unreadable or wrong (a drawing, a class table, a standard)"},
    {kExitUsage,
     "the command line is wrong: an unknown command or option (the message lists the "
     "commands), a missing argument, a value an option does not take"},
    {kExitPartly,
     "partly done: of several drawings, some could not be read (each is named on stderr) and "
     "the others were reported"},
};

// "kplan info DRAWING": version, code page, entities by type, xdata records by
// application, layers.
void addInfoCommand(CLI::App& app, int& exitCode);
// "kplan convert IN OUT": load and save, keeping everything the drawing carried.
void addConvertCommand(CLI::App& app, int& exitCode);
// "kplan stats [DRAWING...]": the land-use balance table, within the planning scope line;
// of several drawings (or folders of them) each one's and that of all.
void addStatsCommand(CLI::App& app, int& exitCode);
// "kplan list [DRAWING...]": one row per parcel, of one drawing or of several.
void addListCommand(CLI::App& app, int& exitCode);
// "kplan label DRAWING -o OUT": each parcel's number and class as text at its label point.
void addLabelCommand(CLI::App& app, int& exitCode);
// "kplan export DRAWING OUT": the records as GIS layers, one per kind.
void addExportCommand(CLI::App& app, int& exitCode);
// "kplan import LAYER --into DRAWING -o OUT": GIS polygons as parcels with records.
void addImportCommand(CLI::App& app, int& exitCode);
// "kplan render DRAWING -o OUT": the plan as a picture.
void addRenderCommand(CLI::App& app, int& exitCode);
// "kplan symbolize DRAWING -o OUT": every parcel on its class's layers, filled.
void addSymbolizeCommand(CLI::App& app, int& exitCode);

}  // namespace kplan::cli
