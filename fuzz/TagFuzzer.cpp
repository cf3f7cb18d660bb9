// The tag layer of the DXF reader under arbitrary input, without the drawing above it:
// an ASCII file splits into the tags a plain line splitter finds, and a value handed out
// stays valid after release() (the address sanitizer frees released chunks), so a
// reader that releases after every tag sees what one that never releases sees.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/dxf/TagReader.h"

namespace {

using Tags = std::vector<std::pair<int, std::string>>;

struct Reading {
    Tags tags;
    std::vector<std::size_t> lines;
    std::string error;
    bool binary = false;
};

Reading readAll(const std::string& input, bool releaseEach) {
    std::istringstream in(input);
    dxf::TagReader reader(in, "fuzz.dxf");
    Reading r;
    dxf::TagView tag;
    while (reader.next(tag)) {
        if (releaseEach) reader.release();
        r.tags.emplace_back(tag.code, std::string(tag.value));
        r.lines.push_back(tag.line);
    }
    r.error = reader.error();
    r.binary = reader.isBinary();
    return r;
}

// The tags of an ASCII file as the format defines them: a group code line (spaces, tabs
// and a carriage return around an optionally negative number of at most six digits), then
// a value line (one carriage return before the line end dropped; the last line may lack
// its line end). Empty on a malformed file, with the tags before the fault.
std::optional<Tags> splitLines(std::string_view text, Tags& before) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.push_back(line);
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    for (std::size_t i = 0; i < lines.size(); i += 2) {
        std::string_view code = lines[i];
        while (!code.empty() && (code.front() == ' ' || code.front() == '\t'))
            code.remove_prefix(1);
        while (!code.empty() && (code.back() == ' ' || code.back() == '\t' || code.back() == '\r'))
            code.remove_suffix(1);
        bool negative = !code.empty() && code.front() == '-';
        if (negative) code.remove_prefix(1);
        if (code.empty() || code.size() > 6) return std::nullopt;
        int value = 0;
        for (char c : code) {
            if (c < '0' || c > '9') return std::nullopt;
            value = value * 10 + (c - '0');
        }
        if (i + 1 >= lines.size()) return std::nullopt;
        before.emplace_back(negative ? -value : value, std::string(lines[i + 1]));
    }
    return before;
}

[[noreturn]] void fault(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s\n", what, detail.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Long lines are refused by a limit the splitter below does not know.
    if (size > dxf::TagReader::kMaxLineLength) return 0;
    std::string input(reinterpret_cast<const char*>(data), size);
    Reading kept = readAll(input, false);
    Reading released = readAll(input, true);
    if (kept.tags != released.tags || kept.error != released.error)
        fault("release() changed what was read", kept.error + " | " + released.error);
    if (!kept.error.empty() && kept.error.rfind("fuzz.dxf: ", 0) != 0)
        fault("an error that does not name the file", kept.error);
    for (std::size_t i = 1; i < kept.lines.size(); ++i) {
        if (kept.lines[i] <= kept.lines[i - 1]) fault("tags out of order", std::to_string(i));
    }
    if (kept.binary) {
        if (!kept.lines.empty() && kept.lines.back() >= size)
            fault("a tag beyond the end of the file", std::to_string(kept.lines.back()));
        return 0;
    }
    Tags expected;
    bool wellFormed = splitLines(input, expected).has_value();
    if (wellFormed != kept.error.empty())
        fault(wellFormed ? "a well-formed file refused" : "a malformed file accepted", kept.error);
    // A malformed file gives the tags before the fault, then the error.
    if (kept.tags != expected) fault("tags differ from the line splitter's", kept.error);
    for (std::size_t i = 0; i < kept.lines.size(); ++i) {
        if (kept.lines[i] != 2 * i + 1) fault("a tag at the wrong line", std::to_string(i));
    }
    return 0;
}
