#pragma once
// Several drawings in one run: the files named and the .dxf files of the folders named,
// worked on by a bounded pool of threads, each loading, working on and freeing one drawing
// at a time, so that memory holds the drawings in flight and not all of them.
#include <any>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <queue>
#include <string>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/Drawing.h"

namespace kplan::cli {

// The drawings the arguments name, in their order: a file as given, a folder as its .dxf
// files (any case of the extension) sorted by name, with --recursive those of its
// subfolders too (sorted by path). False with a message for an argument that is neither,
// and for a folder without drawings.
bool collectDrawings(const std::vector<std::string>& arguments, bool recursive,
                     std::vector<std::string>& drawings, std::string& error);

// True when the arguments are one drawing as a single run always took it (a file, "-"
// or none): the run goes as it did before batches.
bool singleDrawing(const std::vector<std::string>& arguments);

// How many drawings are worked on at once: one per core, no more than there are drawings.
unsigned batchWorkers(std::size_t drawings);

// Runs work(index) for every drawing on up to workers threads. finished(index, result) is
// called on the calling thread as each drawing is done, in the order they finish; then
// inOrder(index, result) for each drawing in input order as soon as it and those before it
// are done. A result lives from its drawing's end until inOrder has seen it.
template <typename Result>
void runBatch(std::size_t count, unsigned workers, const std::function<Result(std::size_t)>& work,
              const std::function<void(std::size_t, Result&)>& finished,
              const std::function<void(std::size_t, Result&)>& inOrder) {
    std::mutex mutex;
    std::condition_variable done;
    std::queue<std::size_t> ready;
    std::vector<std::optional<Result>> results(count);
    std::size_t next = 0;
    std::exception_ptr failure;
    auto worker = [&] {
        for (;;) {
            std::size_t index;
            {
                std::lock_guard<std::mutex> lock(mutex);
                if (next >= count || failure) return;
                index = next++;
            }
            std::optional<Result> result;
            try {
                result.emplace(work(index));
            } catch (...) {
                std::lock_guard<std::mutex> lock(mutex);
                if (!failure) failure = std::current_exception();
                done.notify_one();
                return;
            }
            std::lock_guard<std::mutex> lock(mutex);
            results[index] = std::move(result);
            ready.push(index);
            done.notify_one();
        }
    };
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < workers; ++i)
        threads.emplace_back(worker);
    std::size_t seen = 0, printed = 0;
    std::unique_lock<std::mutex> lock(mutex);
    while (seen < count && !failure) {
        done.wait(lock, [&] { return !ready.empty() || failure; });
        while (!ready.empty()) {
            std::size_t index = ready.front();
            ready.pop();
            ++seen;
            // The results are the workers' no more; the callbacks run without the lock.
            lock.unlock();
            finished(index, *results[index]);
            lock.lock();
        }
        while (printed < count && results[printed]) {
            lock.unlock();
            inOrder(printed, *results[printed]);
            lock.lock();
            results[printed].reset();
            ++printed;
        }
    }
    lock.unlock();
    for (std::thread& t : threads)
        t.join();
    if (failure) std::rethrow_exception(failure);
}

// One drawing of a run of several, as its command made it.
struct DrawingRun {
    std::size_t index = 0;  // in input order
    std::string path;       // as named
    std::string name;       // the file's name, for people (UTF-8)
    bool ok = false;
    std::string error;     // when not ok, naming the file
    std::string messages;  // the drawing's warnings, lines of "kplan: ..."
    std::string text;      // what the table format prints for it
    nlohmann::json json;   // the content --format json gives for it alone
    std::any kept;         // what the command combines over all drawings
};

enum class BatchFormat { Table, Json, Jsonl };

// --format of a run of several drawings (expected: the formats of the command, for the
// message): 0, or 2 with the message printed.
int parseBatchFormat(const std::string& text, const char* expected, BatchFormat& format);

// The drawings of the arguments (the sample plan for none), with the standards options
// applied: 0, or 1 with the message printed (2 for an argument that is no file and reads
// as a second value of --param).
int prepareBatch(const std::vector<std::string>& arguments, bool recursive,
                 const StandardOptions& options, std::vector<std::string>& drawings);

// What a command does with one drawing, open as the thread's current document: fills the
// run (text or json, and kept); false with a message when the drawing cannot be reported.
using DrawingWork =
    std::function<bool(AcDbDatabase& database, DrawingRun& run, std::string& error)>;

struct BatchOutcome {
    std::size_t succeeded = 0, failed = 0;
    nlohmann::json drawings = nlohmann::json::array();  // --format json: every drawing's object
};

// Loads each drawing (with the standards options, applied before), runs work on it and
// frees it, on a bounded pool of threads. Each drawing's warnings and its error are
// printed on stderr as "kplan: PATH: ...", in input order; --format table prints each
// drawing's text in input order (a blank line between), jsonl one line per drawing as it
// finishes ({"kind": "drawing", "index", "name", "path", and the drawing's json or its
// "error"}). kept(run) sees each drawing that worked, in input order.
BatchOutcome runDrawings(const std::vector<std::string>& drawings, const StandardOptions& options,
                         BatchFormat format, const DrawingWork& work,
                         const std::function<void(DrawingRun&)>& kept);

// The line of a run's total in jsonl ({"kind": "total", "drawings", "succeeded", "failed"}),
// for the command to add its own.
nlohmann::json totalJson(const BatchOutcome& outcome);

// Prints the end of the run: the table's last section (when some drawing worked), the
// JSON document of all drawings and the total, or the total's line; returns the exit
// code: 0 when every drawing worked, 1 when none did, 3 when some did.
int endBatch(BatchFormat format, const BatchOutcome& outcome, const nlohmann::json& total,
             const std::string& tableEnd);

}  // namespace kplan::cli
