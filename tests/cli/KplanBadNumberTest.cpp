// A number in a drawing that is not one: refused by default with one message naming the
// file, the line and the group code, and nothing written; with --recover, a warning, the
// entity kept as read, and the statistics saying the parcel was left out.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/RunKplan.h"

namespace {

const std::string kSample = std::string(KPLAN_SOURCE_DIR) + "/data/samples/sample-plan.dxf";

std::string trim(const std::string& s) {
    std::size_t b = s.find_first_not_of(" \r"), e = s.find_last_not_of(" \r");
    return b == std::string::npos ? "" : s.substr(b, e - b + 1);
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& l : lines)
        text += l + "\n";
    return text;
}

// The lines of the sample plan, and where the record of its first planned parcel (a
// LWPOLYLINE with FAPP_GHDK xdata) begins and ends.
std::vector<std::string> sampleLines(std::size_t& start, std::size_t& end) {
    std::vector<std::string> lines;
    std::istringstream in(slurp(kSample));
    for (std::string l; std::getline(in, l);)
        lines.push_back(l);
    start = end = 0;
    // Tags are line pairs: find the parcel's record (a LWPOLYLINE with FAPP_GHDK xdata).
    for (std::size_t i = 0; i + 1 < lines.size(); i += 2) {
        if (trim(lines[i]) != "0") continue;
        if (start != 0 && end == 0) {
            end = i;
            bool parcel = false;
            for (std::size_t k = start; k < end; ++k)
                parcel = parcel || trim(lines[k]) == "FAPP_GHDK";
            if (parcel) break;
            start = end = 0;
        }
        if (trim(lines[i + 1]) == "LWPOLYLINE") start = i;
    }
    EXPECT_NE(end, 0u) << "no parcel in the sample";
    return lines;
}

// The sample plan with a value put into the outline of that parcel: in place of its
// first x (code 10), or as a new tag after the flags (38 elevation, 43 constant width)
// or after the first vertex (42 bulge, 40 start width). line is the line of the group
// code that holds it.
std::string sampleWith(int code, const std::string& value, std::size_t& line) {
    std::size_t start = 0, end = 0;
    std::vector<std::string> lines = sampleLines(start, end);
    auto find = [&](const char* c) {
        for (std::size_t k = start; k < end; k += 2) {
            if (trim(lines[k]) == c) return k;
        }
        ADD_FAILURE() << "no group " << c;
        return start;
    };
    std::string tag = std::to_string(code);
    if (code == 10) {
        line = find("10");
        lines[line + 1] = value;
    } else {
        std::size_t after = code == 38 || code == 43 ? find("70") : find("20");
        std::vector<std::string> added = {tag, value};
        if (code == 40) added.insert(added.end(), {"41", "0"});
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(after + 2), added.begin(),
                     added.end());
        line = after + 2;
    }
    ++line;  // lines count from 1
    return joined(lines);
}

TEST(KplanBadNumberTest, StrictRefusesAndRecoverKeepsTheEntityAndSaysSo) {
    struct Value {
        const char* text;
        const char* problem;
    } values[] = {{"abc", "expected a number"},
                  {"1e400", "number out of range"},
                  {"nan", "NaN is not a number"},
                  {"-inf", "infinity is not a number"}};
    struct Place {
        int code;
        const char* what;
    } places[] = {{10, "coordinate"},
                  {38, "elevation"},
                  {42, "bulge"},
                  {40, "width"},
                  {43, "constant width"}};
    std::string folder = testFolder();
    for (const Place& place : places) {
        for (const Value& value : values) {
            SCOPED_TRACE(std::string(place.what) + " " + value.text);
            std::size_t line = 0;
            std::string path = folder + "/bad.dxf", out = folder + "/out.dxf";
            std::ofstream(path, std::ios::binary) << sampleWith(place.code, value.text, line);
            std::filesystem::remove(out);
            std::string message = path + ": line " + std::to_string(line) + ": group code " +
                                  std::to_string(place.code) + ": " + value.problem + ", found \"" +
                                  value.text + "\"";

            for (const char* command : {"stats", "info", "list"}) {
                Outcome strict = kplan(std::string(command) + " '" + path + "'");
                EXPECT_EQ(strict.exitCode, 1) << command;
                EXPECT_EQ(strict.err, "kplan: " + message + "\n") << command;
            }
            Outcome convert = kplan("convert '" + path + "' '" + out + "'");
            EXPECT_EQ(convert.exitCode, 1);
            EXPECT_EQ(convert.err, "kplan: " + message + "\n");
            EXPECT_FALSE(std::filesystem::exists(out));

            std::string warning =
                "kplan: warning: " + message + "; the LWPOLYLINE is kept as read\n";
            Outcome recover = kplan("convert --recover '" + path + "' '" + out + "'");
            EXPECT_EQ(recover.exitCode, 0) << recover.err;
            EXPECT_EQ(recover.err, warning);
            // The value is written back as it was read, never as a number made up.
            std::string written = slurp(out);
            EXPECT_NE(written.find(std::to_string(place.code) + "\n" + value.text + "\n"),
                      std::string::npos);

            Outcome stats = kplan("stats --recover '" + path + "'");
            EXPECT_EQ(stats.exitCode, 0) << stats.err;
            EXPECT_EQ(stats.err.find(warning), 0u) << stats.err;
            EXPECT_NE(stats.err.find("kplan: 1 parcel is left out of the statistics: its outline "
                                     "holds a value that is not a number (see the warnings "
                                     "above)\n"),
                      std::string::npos)
                << stats.err;
            Outcome list = kplan("list --recover '" + path + "'");
            EXPECT_EQ(list.exitCode, 0) << list.err;
            EXPECT_EQ(list.err, warning);
        }
    }
}

// What is left out is not counted: the balance equals that of the sample without the
// parcel at all.
TEST(KplanBadNumberTest, TheParcelLeftOutIsNotCounted) {
    std::size_t line = 0, start = 0, end = 0;
    std::string bad = testFolder() + "/left-out.dxf", without = testFolder() + "/without.dxf";
    std::ofstream(bad, std::ios::binary) << sampleWith(10, "abc", line);
    std::vector<std::string> lines = sampleLines(start, end);
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(start),
                lines.begin() + static_cast<std::ptrdiff_t>(end));
    std::ofstream(without, std::ios::binary) << joined(lines);
    Outcome whole = kplan("stats --format csv");
    Outcome expected = kplan("stats --format csv '" + without + "'");
    Outcome recover = kplan("stats --recover --format csv '" + bad + "'");
    ASSERT_EQ(expected.exitCode, 0) << expected.err;
    ASSERT_EQ(recover.exitCode, 0) << recover.err;
    // The parcel is named among the warnings, with its handle; otherwise the same figures.
    std::size_t at = recover.out.find("边界线含有不是数字的值");
    ASSERT_NE(at, std::string::npos) << recover.out;
    std::size_t from = recover.out.rfind('\n', at) + 1, to = recover.out.find('\n', at) + 1;
    EXPECT_EQ(recover.out.substr(from, 25), "left_out,planned,,0.0000,") << recover.out;
    std::string rest = recover.out;
    rest.erase(from, to - from);
    EXPECT_EQ(rest, expected.out);
    EXPECT_NE(recover.out, whole.out);
}

}  // namespace
