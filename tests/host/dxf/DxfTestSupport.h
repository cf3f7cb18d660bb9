#pragma once
// Helpers of the DXF tests: drawings to and from memory, files in a temporary
// folder, tags compared by value, and the independent reader (ezdxf).
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/arx/dbmain.h"
#include "host/dxf/Dxf.h"

namespace dxftest {

using Tags = std::vector<std::pair<int, std::string>>;

// A fresh folder under the system's temporary one, removed with its files at exit.
std::string makeTempFolder();
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);

// Read options that fix the number of reading threads.
inline dxf::ReadOptions withThreads(int threads) {
    dxf::ReadOptions options;
    options.threads = threads;
    return options;
}

std::unique_ptr<AcDbDatabase> loadText(const std::string& text, std::string& error,
                                       const dxf::ReadOptions& options = {});
std::string saveText(const AcDbDatabase& database, const std::string& version = "");

// The tags of a file with strings decoded (by the file's version and code page),
// numbers in one form, comments dropped, and $ACADVER and $HANDSEED left out.
Tags normalizedTags(const std::string& bytes);
// The first difference of two tag lists, or "" when equal.
std::string firstDifference(const Tags& a, const Tags& b);

// Runs a script of this folder with Debian's python3 (which has ezdxf); its exit code,
// with what it printed in output.
int runPython(const std::string& script, const std::vector<std::string>& args, std::string& output);

// The drawings written by ezdxf for these tests (made once per test program).
const std::string& ezdxfDrawings();

}  // namespace dxftest
