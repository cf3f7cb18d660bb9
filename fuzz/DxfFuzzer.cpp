// The DXF reader under arbitrary input: it must fail cleanly or read a drawing, the
// same on one thread as on two, and a drawing it read must write and read back.
//
// A case costs a strict and a lenient read. The checks that cost a pass more each (the
// second thread, the lenient drawing written and read back) run on every drawing the
// strict read accepts, which is rare and meaningful, and on one other case in
// kSampleEvery, chosen by a hash of the input so that a failing input fails on replay.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "host/dxf/Dxf.h"

namespace {

constexpr std::uint64_t kSampleEvery = 8;

bool sampled(const std::string& input) {
    std::uint64_t hash = 14695981039346656037ull;  // FNV-1a
    for (unsigned char c : input)
        hash = (hash ^ c) * 1099511628211ull;
    return hash % kSampleEvery == 0;
}

// Reads the input into the database; false with the error set.
bool readInto(const std::string& input, AcDbDatabase& database, std::string& error,
              const char* name, int threads = 1, bool recover = false) {
    std::istringstream in(input);
    dxf::ReadOptions options;
    options.threads = threads;
    options.recover = recover;
    if (dxf::read(in, database, error, name, options)) return true;
    if (error.empty()) std::abort();  // a failure always says why
    return false;
}

std::string written(const AcDbDatabase& database) {
    std::ostringstream out;
    std::string error;
    if (!dxf::write(database, out, error)) {
        std::fprintf(stderr, "a drawing that was read cannot be written: %s\n", error.c_str());
        std::abort();
    }
    return out.str();
}

// Reads the input; the written drawing, or empty with the error set.
std::string readAndWrite(const std::string& input, int threads, std::string& error,
                         bool recover = false) {
    AcDbDatabase database(false);
    if (!readInto(input, database, error, "fuzz.dxf", threads, recover)) return "";
    return written(database);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    std::string error;
    std::string strict = readAndWrite(input, 1, error);
    bool checkAll = !strict.empty() || sampled(input);
    // A lenient read reads at least what the strict one reads.
    AcDbDatabase recovered(false);
    std::string recoverError;
    bool recoverRead = readInto(input, recovered, recoverError, "fuzz.dxf", 1, true);
    if (!strict.empty() && !recoverRead) {
        std::fprintf(stderr, "recover refused what the strict read read: %s\n",
                     recoverError.c_str());
        std::abort();
    }
    if (!checkAll) return 0;
    // The entities made on a second thread give the same drawing, or the same error.
    std::string asideError;
    std::string aside = readAndWrite(input, 2, asideError);
    if (aside != strict || asideError != error) {
        std::fprintf(stderr, "two threads read otherwise than one: %s | %s\n", error.c_str(),
                     asideError.c_str());
        std::abort();
    }
    // A drawing read leniently writes and reads back (leniently: what it kept as read is
    // written as read). The same text as the strict read wrote is read back below,
    // strictly, which a lenient read accepts too: read once.
    std::string lenient = recoverRead ? written(recovered) : "";
    if (!lenient.empty() && lenient != strict) {
        AcDbDatabase reread(false);
        if (!readInto(lenient, reread, error, "recovered.dxf", 1, true)) {
            std::fprintf(stderr, "a recovered drawing does not read back: %s\n", error.c_str());
            std::abort();
        }
    }
    if (strict.empty()) return 0;
    AcDbDatabase reread(false);
    if (!readInto(strict, reread, error, "written.dxf")) {
        std::fprintf(stderr, "the written drawing does not read back: %s\n", error.c_str());
        std::abort();
    }
    return 0;
}
