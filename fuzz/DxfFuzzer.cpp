// The DXF reader under arbitrary input: it must fail cleanly or read a drawing, and a
// drawing it read must write and read back.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "host/dxf/Dxf.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    AcDbDatabase database(false);
    std::string error;
    if (!dxf::read(in, database, error, "fuzz.dxf")) {
        if (error.empty()) std::abort();  // a failure always says why
        return 0;
    }
    std::ostringstream out;
    if (!dxf::write(database, out, error)) {
        std::fprintf(stderr, "a drawing that was read cannot be written: %s\n", error.c_str());
        std::abort();
    }
    std::istringstream again(out.str());
    AcDbDatabase reread(false);
    if (!dxf::read(again, reread, error, "written.dxf")) {
        std::fprintf(stderr, "the written drawing does not read back: %s\n", error.c_str());
        std::abort();
    }
    return 0;
}
