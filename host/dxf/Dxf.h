#pragma once
// DXF files of a drawing: load into a database and save it back, keeping everything
// the file carried. Nothing is thrown; failures come back as false with a message
// that names the file, the line and what was expected.
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

namespace dxf {

struct KPLAN_API SaveOptions {
    // "AC1015" to "AC1032"; empty: AC1024, or the version the drawing came in when newer.
    std::string version;
};

struct KPLAN_API ReadOptions {
    // Threads that read the entities of an ASCII file: one reads the tags while the
    // other makes the objects. 0 lets the drawing decide: two from a megabyte on, on a
    // machine with two cores. 1 or 2 fixes it. The drawing read is the same.
    int threads = 0;
    // Read what a lenient reader reads, and say what was repaired (ReadReport): a number
    // that is not one keeps its object as read, outside the typed drawing. Strict by
    // default: such a file is refused, naming the file, the line and the group code.
    bool recover = false;
    // The code page of the strings of a file before AC1021 ("ANSI_1252", "ANSI_936"),
    // taken over what the file declares; empty: its $DWGCODEPAGE, or, when it has none,
    // ANSI_936 for text that is GBK with Chinese in it and ANSI_1252 otherwise.
    std::string codePage;
};

// What a read with recover repaired or kept as read, one message per case naming the
// file and the line.
struct KPLAN_API ReadReport {
    std::vector<std::string> warnings;
    // Entities kept as read because a number in them is not one.
    std::vector<AcDbObjectId> keptAsRead;
};
// The report of the read that made the database (empty for a drawing made here).
KPLAN_API const ReadReport& readReport(const AcDbDatabase& database);

// Reads a drawing into a new database; null on failure, with the reason in error.
KPLAN_API std::unique_ptr<AcDbDatabase> load(const std::string& path, std::string& error,
                                             const ReadOptions& options = {});
// Reads into a database made with AcDbDatabase(false). On failure it holds a partial
// drawing that the caller must discard.
KPLAN_API bool load(const std::string& path, AcDbDatabase& database, std::string& error,
                    const ReadOptions& options = {});
KPLAN_API bool read(std::istream& in, AcDbDatabase& database, std::string& error,
                    const std::string& name = "<stream>", const ReadOptions& options = {});

// Writes the drawing to a temporary file beside the target, flushes it and renames
// it over the target, keeping the previous file as <path>.bak (one generation: an older
// .bak is replaced). A symbolic link stays a link and the file it points to is replaced.
// On failure the target is as it was. The progress bar (host/db/Progress.h) shows the
// objects written.
KPLAN_API bool save(const AcDbDatabase& database, const std::string& path, std::string& error,
                    const SaveOptions& options = {});
KPLAN_API bool write(const AcDbDatabase& database, std::ostream& out, std::string& error,
                     const SaveOptions& options = {});

// Keeps the object's xdata in the loader's compact form until it is next used, as a
// loaded drawing keeps it, so that a drawing of many records made in memory costs what
// the same drawing loaded does. Xdata that names objects (1005) stays as it is; false then.
KPLAN_API bool compactXdata(AcDbObject& object);

// What the file said about itself, and the header variables kplan uses.
struct KPLAN_API DrawingInfo {
    std::string version;   // as read; AC1024 for a drawing made here
    std::string codePage;  // $DWGCODEPAGE
    int insUnits = 6;      // $INSUNITS
    double viewCenterX = 0, viewCenterY = 0, viewHeight = 1000, viewAspect = 1.5;
    bool hasView = false;
};
KPLAN_API DrawingInfo drawingInfo(const AcDbDatabase& database);
// Changes the view and units written with the drawing.
KPLAN_API void setView(AcDbDatabase& database, double centerX, double centerY, double height,
                       double aspect);
KPLAN_API void setInsUnits(AcDbDatabase& database, int units);

}  // namespace dxf
