#pragma once
// What the commands that read a drawing share: choosing the standards directory, the
// project parameters of the run, and the drawing itself, loaded as the current document.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "cli/Output.h"
#include "host/arx/acdocman.h"

namespace kplan::cli {

struct StandardOptions {
    std::string data, standard, table;
    std::vector<std::string> params;  // "NAME=Y" or "NAME=N"
    // How the drawing is read: --recover and --codepage (see addReadOptions).
    bool recover = false;
    std::string codePage;
};

// --data, --standard, --table and --param; a command whose --table means something else
// names the class table's option otherwise (tableOption).
void addStandardOptions(CLI::App& command, StandardOptions& options,
                        const char* tableOption = "--table");
// --recover and --codepage, the options of reading a DXF file.
void addReadOptions(CLI::App& command, bool& recover, std::string& codePage);
// Loads a drawing as those options say ("-" reads standard input); with --recover, each repair is
// printed on stderr as a warning.
std::unique_ptr<AcDbDatabase> loadDrawing(const std::string& path, bool recover,
                                          const std::string& codePage, std::string& error);

// A command that writes a drawing refuses a name whose extension is not .dxf (a DXF text
// in "plan.dwg" or "plan.pdf" is a trap for whoever opens it) unless --force says so.
void addForceOption(CLI::App& command, bool& force);
// 0 when the output may be written; otherwise 2, with the message printed.
int checkDxfOutput(const std::string& path, bool force);
// "DRAWING -o OUT": the drawing a command reads and the one it writes, both required.
void addDrawingInAndOut(CLI::App& command, std::string& drawing, std::string& out);

// Applies --data, --standard and --table; false with a message when the standard or its
// class table does not exist.
bool applyStandard(const StandardOptions& options, std::string& error);

// The sample plan shipped with kplan; empty when it cannot be found.
std::string samplePlanPath();

// A file's path as the user would type it from where they are: relative when it lies
// below the working folder, whole otherwise.
std::string shownPath(const std::string& path);

// The class table the current standard reads, as shownPath gives it; its bare name when
// it cannot be found.
std::string classTableShown();

// A drawing loaded from DXF as the current document, closed again with this object.
class LoadedDrawing {
  public:
    LoadedDrawing() = default;
    LoadedDrawing(const LoadedDrawing&) = delete;
    LoadedDrawing& operator=(const LoadedDrawing&) = delete;
    ~LoadedDrawing();

    // Loads path and sets the project parameters of options on it (not saved).
    bool open(const std::string& path, const StandardOptions& options, std::string& error);
    AcDbDatabase* database() const;
    // Closes the document and frees the drawing now, as a run of several drawings does
    // after each one (the destructor leaves a single drawing to the end of the program).
    void close();

  private:
    AcApDocument* document_ = nullptr;
};

// Planned parcels of model space that carry only records of the older generations
// ("地块属性", "地块边界"): the scans of the current generation do not return them.
AcDbObjectIdArray olderGenerationParcels(AcDbDatabase& database, const AcDbObjectIdArray& found);

// Applies the standards options and loads the drawing at path as the current document:
// 0 when both worked; otherwise 1, with the message printed.
int openWithStandard(const std::string& path, const StandardOptions& options,
                     LoadedDrawing& drawing);

// What a command reporting on a drawing does first: reads the output format, applies the
// standards options, and loads the drawing named (the sample plan when none is) as the
// current document. 0 when all is ready; otherwise the exit code, with the message
// printed. path is the drawing's name for reports, in UTF-8 (a GBK name decoded).
int openForReport(const std::string& drawingArgument, const std::string& formatArgument,
                  const StandardOptions& options, Format& format, LoadedDrawing& drawing,
                  std::string& path);

// A drawing's name for reports, in UTF-8: a name in GBK (from a Chinese Windows share) is
// shown as the characters it stands for.
std::string reportName(const std::string& path);

// Handle text of an object ("2A").
std::string handleText(AcDbObjectId id);

}  // namespace kplan::cli
