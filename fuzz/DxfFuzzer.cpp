// The DXF reader under arbitrary input: it must fail cleanly or read a drawing, the
// same on one thread as on two, and a drawing it read must write and read back.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "host/dxf/Dxf.h"

namespace {

// Reads the input; the written drawing, or empty with the error set.
std::string readAndWrite(const std::string& input, int threads, std::string& error,
                         bool recover = false) {
    std::istringstream in(input);
    AcDbDatabase database(false);
    dxf::ReadOptions options;
    options.threads = threads;
    options.recover = recover;
    if (!dxf::read(in, database, error, "fuzz.dxf", options)) {
        if (error.empty()) std::abort();  // a failure always says why
        return "";
    }
    std::ostringstream out;
    if (!dxf::write(database, out, error)) {
        std::fprintf(stderr, "a drawing that was read cannot be written: %s\n", error.c_str());
        std::abort();
    }
    return out.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    std::string error;
    std::string written = readAndWrite(input, 1, error);
    // The entities made on a second thread give the same drawing, or the same error.
    std::string asideError;
    std::string aside = readAndWrite(input, 2, asideError);
    if (aside != written || asideError != error) {
        std::fprintf(stderr, "two threads read otherwise than one: %s | %s\n", error.c_str(),
                     asideError.c_str());
        std::abort();
    }
    // A lenient read reads at least what the strict one reads, and a drawing it read
    // writes and reads back (leniently: what it kept as read is written as read).
    std::string recoverError;
    std::string recovered = readAndWrite(input, 1, recoverError, true);
    if (!written.empty() && recovered.empty()) {
        std::fprintf(stderr, "recover refused what the strict read read: %s\n",
                     recoverError.c_str());
        std::abort();
    }
    // The same text as the strict read wrote is read back below, strictly, which a lenient
    // read accepts too: read once.
    if (!recovered.empty() && recovered != written) {
        std::istringstream again(recovered);
        AcDbDatabase reread(false);
        dxf::ReadOptions lenient;
        lenient.recover = true;
        if (!dxf::read(again, reread, error, "recovered.dxf", lenient)) {
            std::fprintf(stderr, "a recovered drawing does not read back: %s\n", error.c_str());
            std::abort();
        }
    }
    if (written.empty()) return 0;
    std::istringstream again(written);
    AcDbDatabase reread(false);
    if (!dxf::read(again, reread, error, "written.dxf")) {
        std::fprintf(stderr, "the written drawing does not read back: %s\n", error.c_str());
        std::abort();
    }
    return 0;
}
