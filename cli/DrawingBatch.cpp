#include "cli/DrawingBatch.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <system_error>

#include "cli/Commands.h"
#include "cli/Messages.h"
#include "host/arx/acdocman.h"
#include "host/db/Progress.h"
#include "host/db/Utf8Path.h"
#include "report/JsonWriter.h"

namespace kplan::cli {

namespace fs = std::filesystem;

namespace {

bool isDxf(const fs::path& path) {
    std::string extension = db::utf8Name(path.extension());
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == ".dxf";
}

// "kplan: ..." lines of a drawing's messages as "kplan: PATH: ...", so that the reader of
// a run of many knows which drawing each is about.
std::string naming(const std::string& messages, const std::string& path) {
    std::istringstream lines(messages);
    std::string line, named;
    const std::string prefix = "kplan: ";
    while (std::getline(lines, line)) {
        if (line.rfind(prefix, 0) == 0 && line.rfind(prefix + path + ":", 0) != 0)
            line = prefix + path + ": " + line.substr(prefix.size());
        named += line + "\n";
    }
    return named;
}

DrawingRun workOn(const std::string& path, std::size_t index, const StandardOptions& options,
                  const DrawingWork& work) {
    DrawingRun run;
    run.index = index;
    run.path = reportName(path);
    run.name = reportName(path == "-" ? path : db::utf8Name(db::utf8Path(path).filename()));
    // The thread's own current document, and its own channel for the drawing's warnings.
    AcApThreadDocuments documents;
    std::ostringstream messages;
    {
        MessagesInto into(messages);
        LoadedDrawing drawing;
        std::string error;
        if (drawing.open(path, options, error)) {
            run.ok = work(*drawing.database(), run, error);
        }
        drawing.close();
        if (!run.ok) {
            // The loader's messages name the file already; the others get it.
            run.error = error.rfind(path, 0) == 0 ? error : run.path + ": " + error;
            if (run.error.rfind(path, 0) == 0 && path != run.path)
                run.error = run.path + run.error.substr(path.size());
        }
    }
    run.messages = naming(messages.str(), run.path);
    return run;
}

nlohmann::json drawingJson(const DrawingRun& run) {
    nlohmann::json object = {
        {"kind", "drawing"}, {"index", run.index}, {"name", run.name}, {"path", run.path}};
    if (!run.ok) {
        object["error"] = run.error;
        return object;
    }
    for (const auto& [key, value] : run.json.items())
        object[key] = value;
    return object;
}

}  // namespace

bool collectDrawings(const std::vector<std::string>& arguments, bool recursive,
                     std::vector<std::string>& drawings, std::string& error) {
    for (const std::string& argument : arguments) {
        std::error_code ec;
        const fs::path folder = db::utf8Path(argument);
        if (argument == "-" || !fs::is_directory(folder, ec)) {
            drawings.push_back(argument);
            continue;
        }
        std::vector<std::string> found;
        auto take = [&found](const fs::directory_entry& entry) {
            std::error_code ignored;
            if (entry.is_regular_file(ignored) && isDxf(entry.path()))
                found.push_back(db::utf8Name(entry.path()));
        };
        if (recursive) {
            for (fs::recursive_directory_iterator it(folder, ec), end; !ec && it != end;
                 it.increment(ec))
                take(*it);
        } else {
            for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
                take(*it);
        }
        if (ec) {
            error = argument + ": " + ec.message();
            return false;
        }
        if (found.empty()) {
            error = argument + ": no drawings (.dxf files) in the folder" +
                    (recursive ? "" : " (--recursive looks into its subfolders)");
            return false;
        }
        std::sort(found.begin(), found.end());
        drawings.insert(drawings.end(), found.begin(), found.end());
    }
    return true;
}

bool singleDrawing(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return true;
    std::error_code ec;
    return arguments.size() == 1 &&
           (arguments[0] == "-" || !fs::is_directory(db::utf8Path(arguments[0]), ec));
}

unsigned batchWorkers(std::size_t drawings) {
    unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    return static_cast<unsigned>(std::min<std::size_t>(cores, std::max<std::size_t>(drawings, 1)));
}

BatchOutcome runDrawings(const std::vector<std::string>& drawings, const StandardOptions& options,
                         BatchFormat format, const DrawingWork& work,
                         const std::function<void(DrawingRun&)>& kept) {
    // Several bars at once on one line would be noise.
    std::shared_ptr<db::ProgressSink> bar = db::setProgressSink(nullptr);
    BatchOutcome outcome;
    bool first = true;
    runBatch<DrawingRun>(
        drawings.size(), batchWorkers(drawings.size()),
        [&](std::size_t index) { return workOn(drawings[index], index, options, work); },
        [&](std::size_t, DrawingRun& run) {
            if (format != BatchFormat::Jsonl) return;
            // One line, whole, as soon as the drawing is done: a scheduler reads it then.
            std::cout << drawingJson(run).dump(-1, ' ', false,
                                               nlohmann::json::error_handler_t::replace)
                      << std::endl;
        },
        [&](std::size_t, DrawingRun& run) {
            std::cout.flush();
            std::cerr << run.messages;
            if (!run.ok) {
                std::cerr << "kplan: " << run.error << "\n";
                ++outcome.failed;
            } else {
                ++outcome.succeeded;
            }
            std::cerr.flush();
            if (format == BatchFormat::Json) outcome.drawings.push_back(drawingJson(run));
            if (run.ok && format == BatchFormat::Table) {
                std::cout << (first ? "" : "\n") << run.text;
                first = false;
            }
            if (run.ok) kept(run);
        });
    db::setProgressSink(bar);
    return outcome;
}

int parseBatchFormat(const std::string& text, const char* expected, BatchFormat& format) {
    if (text == "table" || text == "json" || text == "jsonl") {
        format = text == "table"  ? BatchFormat::Table
                 : text == "json" ? BatchFormat::Json
                                  : BatchFormat::Jsonl;
        return 0;
    }
    std::cerr << "kplan: --format " << text
              << (text == "csv" || (KPLAN_WITH_XLSX && text == "xlsx")
                      ? ": is written for one drawing; several are written as table, json or "
                        "jsonl\n"
                      : std::string(": expected ") + expected + "\n");
    return kExitUsage;
}

int prepareBatch(const std::vector<std::string>& arguments, bool recursive,
                 const StandardOptions& options, std::vector<std::string>& drawings) {
    for (const std::string& argument : arguments) {
        // "--param A=N B=Y plan.dxf": the second value is no drawing but a slip.
        std::error_code ec;
        if (argument.find('=') != std::string::npos && !fs::exists(db::utf8Path(argument), ec)) {
            std::cerr << "kplan: " << argument
                      << ": no such drawing; --param takes one value (repeat it for two)\n";
            return kExitUsage;
        }
    }
    std::string error;
    if (!collectDrawings(arguments.empty() ? std::vector<std::string>{samplePlanPath()} : arguments,
                         recursive, drawings, error) ||
        !applyStandard(options, error)) {
        std::cerr << "kplan: " << error << "\n";
        return kExitInput;
    }
    return 0;
}

int endBatch(BatchFormat format, const BatchOutcome& outcome, const nlohmann::json& total,
             const std::string& tableEnd) {
    switch (format) {
        case BatchFormat::Table:
            if (outcome.succeeded > 0) std::cout << tableEnd;
            break;
        case BatchFormat::Json:
            std::cout << report::dumpJson({{"drawings", outcome.drawings}, {"total", total}});
            break;
        case BatchFormat::Jsonl:
            std::cout << total.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
                      << "\n";
            break;
    }
    std::cout.flush();
    if (!std::cout) return kExitInput;
    if (outcome.failed == 0) return 0;
    return outcome.succeeded == 0 ? kExitInput : kExitPartly;
}

nlohmann::json totalJson(const BatchOutcome& outcome) {
    return {{"kind", "total"},
            {"drawings", outcome.succeeded + outcome.failed},
            {"succeeded", outcome.succeeded},
            {"failed", outcome.failed}};
}

}  // namespace kplan::cli
