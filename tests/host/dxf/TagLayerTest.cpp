// The tag layer alone: reading and writing tags over streams, reals that read back to
// the same double, and the text of files in code pages with their escapes.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

#include "host/dxf/DxfModel.h"
#include "host/dxf/DxfStrings.h"
#include "host/dxf/TagReader.h"
#include "host/dxf/TagWriter.h"

namespace {

using Tags = std::vector<std::pair<int, std::string>>;

TEST(TagReaderTest, ReadsTagsWhateverTheLineEndsAndPadding) {
    struct Case {
        const char* what;
        std::string text;
        Tags expected;
    } cases[] = {
        {"LF", "0\nSECTION\n2\nHEADER\n", {{0, "SECTION"}, {2, "HEADER"}}},
        {"CRLF", "  0\r\nSECTION\r\n  2\r\nHEADER\r\n", {{0, "SECTION"}, {2, "HEADER"}}},
        {"no end of line at the end", "999\ncomment", {{999, "comment"}}},
        {"values keep their spaces", " 1\n  two words \n", {{1, "  two words "}}},
        {"negative and large codes", "-3\nx\n1071\n70000\n", {{-3, "x"}, {1071, "70000"}}},
        {"empty value", "1\n\n0\nEOF\n", {{1, ""}, {0, "EOF"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Tags tags;
        std::string error;
        EXPECT_TRUE(dxf::readTags(c.text, tags, error)) << error;
        EXPECT_EQ(tags, c.expected);
    }
}

TEST(TagReaderTest, TagsAcrossChunkBoundariesStayIntact) {
    // Values straddle the reader's chunks (16 KB growing to 1 MiB), one of them longer
    // than the first few chunks together; every one must come back whole.
    std::string text;
    Tags expected;
    std::string longValue(300 * 1024, 'y');
    text += "1\n" + longValue + "\n";
    expected.emplace_back(1, longValue);
    for (int i = 0; text.size() < 3u * 1024 * 1024; ++i) {
        std::string value =
            "value-" + std::to_string(i) + std::string(static_cast<std::size_t>(i % 97), 'x');
        text += "1000\n" + value + "\n";
        expected.emplace_back(1000, value);
    }
    std::istringstream in(text);
    dxf::TagReader reader(in, "big.dxf");
    dxf::TagView tag;
    std::size_t i = 0;
    while (reader.next(tag)) {
        ASSERT_LT(i, expected.size());
        ASSERT_EQ(tag.value, expected[i].second) << "tag " << i;
        if (i % 50 == 0) reader.release();
        ++i;
    }
    EXPECT_FALSE(reader.failed()) << reader.error();
    EXPECT_EQ(i, expected.size());
}

TEST(TagReaderTest, ReadsBinaryFiles) {
    std::string bin("AutoCAD Binary DXF\r\n\x1a\0", 22);
    auto code = [&](int c) {
        bin += static_cast<char>(c & 0xFF);
        bin += static_cast<char>((c >> 8) & 0xFF);
    };
    auto text = [&](const char* s) { bin.append(s, std::strlen(s) + 1); };
    code(0), text("SECTION");
    code(10);
    double d = 0.1;
    bin.append(reinterpret_cast<const char*>(&d), 8);
    code(70), bin.append("\x05\x00", 2);
    code(90);
    std::int32_t big = -70000;
    bin.append(reinterpret_cast<const char*>(&big), 4);
    code(290), bin.append("\x01", 1);
    code(310), bin.append("\x03\xDE\xAD\x01", 4);
    Tags tags;
    std::string error;
    ASSERT_TRUE(dxf::readTags(bin, tags, error)) << error;
    EXPECT_EQ(
        tags,
        (Tags{
            {0, "SECTION"}, {10, "0.1"}, {70, "5"}, {90, "-70000"}, {290, "1"}, {310, "DEAD01"}}));
}

TEST(TagWriterTest, RealsReadBackToTheSameDouble) {
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1.0,
                                  0.1,
                                  1.0 / 3.0,
                                  123456789.123456789,
                                  3.5e15,
                                  5e-324,
                                  std::numeric_limits<double>::max(),
                                  -std::numeric_limits<double>::min()};
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> coordinate(-1e7, 1e7);
    for (int i = 0; i < 2000; ++i)
        values.push_back(coordinate(random));
    for (int i = 0; i < 2000; ++i) {
        std::uint64_t bits = random();
        double d;
        std::memcpy(&d, &bits, 8);
        if (std::isfinite(d)) values.push_back(d);
    }
    for (double v : values) {
        std::string text = dxf::formatReal(v);
        EXPECT_EQ(std::strtod(text.c_str(), nullptr), v) << text;
        EXPECT_NE(text.find_first_of(".e"), std::string::npos) << text << " looks like an integer";
    }
}

// The reader's quick path for plain decimals must round exactly as strtod does.
TEST(TagReaderTest, RealsParseToTheCorrectlyRoundedDouble) {
    std::vector<std::string> texts = {"0",
                                      "-0",
                                      "1.",
                                      ".5",
                                      "0.1",
                                      "-512345.678",
                                      "3000000.001",
                                      "123456789012345",
                                      "1e-05",
                                      " 2.5 ",
                                      "+7.25",
                                      "0.30000000000000004",
                                      "9007199254740993",
                                      "1234567890.12345678"};
    std::mt19937_64 random(11);
    for (int i = 0; i < 20000; ++i) {
        std::uint64_t digits = random() % 1000000000000000ULL;
        int point = static_cast<int>(random() % 16);
        std::string text = std::to_string(digits);
        if (point < static_cast<int>(text.size())) text.insert(text.size() - point, ".");
        texts.push_back(random() % 2 ? "-" + text : text);
    }
    for (const std::string& text : texts) {
        double value = 0;
        ASSERT_TRUE(dxf::parseReal(text, value)) << text;
        EXPECT_EQ(value, std::strtod(text.c_str(), nullptr)) << text;
    }
    double value = 0;
    for (const char* bad : {"", "-", ".", "1.2.3", "12a", "--1"}) {
        EXPECT_FALSE(dxf::parseReal(bad, value)) << bad;
    }
}

// The reader's numbers are std::from_chars's to the bit, what it refuses included (out of
// range either way, nan, inf, a partial read), and, where it reads, strtod's too.
TEST(TagReaderTest, RealsReadAsFromCharsAndStrtodReadThem) {
    std::vector<std::string> texts = {
        // 17 significant digits and exponents
        "512345.67890123456", "3512345.6789012346", "-0.10000000000000001", "1e5", "1E-5", "1.5e+3",
        "-2.5E-7", "123456789012345678901234567890", "1e22", "1e23", "0.000001e6",
        // subnormals, the smallest and largest normal, and what lies beyond
        "4.9e-324", "5e-324", "2.4703282292062328e-324", "2.4703282292062327e-324",
        "2.2250738585072009e-308", "2.2250738585072014e-308", "1.7976931348623157e308",
        "1.7976931348623158e308", "1.7976931348623159e308", "1e309", "-1e309", "1e-400", "-1e-400",
        "0.0000000000000000000000000000001e-300",
        // zeros
        "0", "-0", "-0.0", "0e999", "0.000e-999", "-0e-5",
        // half-way between two doubles: ties to even, and one digit above
        "9007199254740993", "9007199254740995", "9007199254740993.0000000000000001",
        "1.00000000000000011102230246251565404236316680908203125",
        "1.00000000000000011102230246251565404236316680908203126", "0.1", "0.30000000000000004",
        "1.7976931348623157e308",
        // forms a drawing may hold, and texts that are no number
        " 2.5 ", "+7.25", "+-1", ".5", "5.", "-.5", "1.", "nan", "-nan", "inf", "-inf", "infinity",
        "1e", "1e+", "e5", "", ".", "-", "+", "1.2.3", "12a", "0x10", "1,5", "1e5x", "--1", "1 2",
        "\t3.25"};
    std::mt19937_64 random(16);
    for (int i = 0; i < 20000; ++i) {
        char text[40];
        double x =
            std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 80) - 60);
        std::snprintf(text, sizeof text, i % 2 ? "%.17g" : "%.16e", random() % 2 ? -x : x);
        texts.push_back(text);
    }
    for (const std::string& text : texts) {
        std::string_view t = text;
        while (!t.empty() && (t.front() == ' ' || t.front() == '\t'))
            t.remove_prefix(1);
        while (!t.empty() && (t.back() == ' ' || t.back() == '\t'))
            t.remove_suffix(1);
        if (!t.empty() && t.front() == '+') t.remove_prefix(1);
        double expected = 42, value = 42;
        auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), expected);
        bool number = !t.empty() && ec == std::errc() && end == t.data() + t.size() &&
                      std::isfinite(expected);
        EXPECT_EQ(dxf::parseReal(text, value), number) << text;
        EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0)
            << text << ": " << value << " against " << expected;
        if (number) {
            double strtodValue = std::strtod(std::string(t).c_str(), nullptr);
            EXPECT_EQ(std::memcmp(&value, &strtodValue, sizeof value), 0) << text;
        }
    }
}

TEST(TagWriterTest, WritesCodesRightAlignedAndHandlesInHex) {
    std::string out;
    dxf::TagWriter writer([&](std::string_view bytes) {
        out.append(bytes);
        return true;
    });
    writer.text(0, "LINE");
    writer.handle(5, 0x2AF);
    writer.integer(1071, -5);
    writer.point(10, 1, 2.5);
    writer.real(40, 2);
    ASSERT_TRUE(writer.flush());
    EXPECT_EQ(out, "  0\nLINE\n  5\n2AF\n1071\n-5\n 10\n1.0\n 20\n2.5\n 40\n2.0\n");
}

// A value with a line break (from a binary file, or text a program made) must not
// break the file into lines that are not tags.
TEST(TagWriterTest, LineBreaksInValuesAreWrittenAsCarets) {
    std::string out;
    dxf::TagWriter writer([&](std::string_view bytes) {
        out.append(bytes);
        return true;
    });
    writer.text(1, "two\nlines\r");
    ASSERT_TRUE(writer.flush());
    EXPECT_EQ(out, "  1\ntwo^Jlines^M\n");
    Tags tags;
    std::string error;
    ASSERT_TRUE(dxf::readTags(out, tags, error)) << error;
    ASSERT_EQ(tags.size(), 1u);
    EXPECT_EQ(dxf::DxfStrings("AC1024", "").toWide(tags[0].second), L"two\nlines\r");
    EXPECT_EQ(dxf::DxfStrings("AC1018", "ANSI_936").toWide("a^Jb ^ c"), L"a\nb ^ c");
}

TEST(TagWriterTest, ASinkThatRefusesStopsTheWriter) {
    int calls = 0;
    dxf::TagWriter writer([&](std::string_view) {
        ++calls;
        return false;
    });
    for (int i = 0; i < 200000; ++i)
        writer.text(1000, "some text to fill the buffer");
    EXPECT_FALSE(writer.flush());
    EXPECT_FALSE(writer.ok());
    EXPECT_EQ(calls, 1);  // nothing more is offered once a write failed
}

TEST(DxfStringsTest, DecodesEveryEncodingAndEscape) {
    struct Case {
        const char* what;
        const char* version;
        const char* codePage;
        std::string bytes;
        std::wstring expected;
    } cases[] = {
        {"GBK of an AC1018 file", "AC1018", "ANSI_936", "\xB5\xD8\xBF\xE9", L"地块"},
        {"UTF-8 of an AC1024 file", "AC1024", "ANSI_936", "地块", L"地块"},
        {"\\U+ escape", "AC1018", "ANSI_936", "\\U+20AC and \\U+20ac", L"€ and €"},
        {"\\U+ escape in a UTF-8 file", "AC1027", "ANSI_1252", "x\\U+4E2D", L"x中"},
        {"surrogate pair escapes", "AC1018", "ANSI_936", "\\U+D83D\\U+DE00", L"\U0001F600"},
        {"eight-digit escape", "AC1018", "ANSI_936", "\\U+0001f600!", L"\U0001F600!"},
        {"\\M+ escape of code page 936", "AC1015", "ANSI_1252", "\\M+5D6D0\\M+5CEC4", L"中文"},
        {"a backslash that is no escape", "AC1018", "ANSI_936", "C:\\Users\\P", L"C:\\Users\\P"},
        {"Latin-1 code page", "AC1015", "ANSI_1252", "\xFC", L"ü"},
        {"bytes that are not UTF-8 in a UTF-8 file", "AC1024", "ANSI_936", "\xB5\xD8", L"地"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        dxf::DxfStrings strings(c.version, c.codePage);
        EXPECT_EQ(strings.toWide(c.bytes), c.expected);
    }
}

TEST(DxfStringsTest, WritesWhatTheCodePageLacksAsEscapes) {
    struct Case {
        const char* version;
        std::wstring text;
        std::string expected;
    } cases[] = {
        {"AC1018", L"地块", "\xB5\xD8\xBF\xE9"},
        {"AC1018", L"地块ü", "\xB5\xD8\xBF\xE9\xA8\xB9"},
        {"AC1018", L"🙂", "\\U+D83D\\U+DE42"},
        {"AC1024", L"地块🙂", "地块🙂"},
    };
    for (const Case& c : cases) {
        dxf::DxfStrings strings(c.version, "ANSI_936");
        std::string bytes = strings.fromWide(c.text);
        EXPECT_EQ(bytes, c.expected);
        EXPECT_EQ(strings.toWide(bytes), c.text) << "reads back the same";
    }
}

}  // namespace
