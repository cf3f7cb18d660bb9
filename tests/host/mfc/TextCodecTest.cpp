#include "host/db/TextCodec.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using db::decodeCodePage;
using db::decodeTextFile;
using db::encodeCodePage;
using db::encodeCodePageWithEscapes;
using db::expandUnicodeEscapes;
using db::isValidUtf8;
using db::utf8ToWide;
using db::wideToUtf8;

constexpr wchar_t kBad = 0xFFFD;

// The bytes of a literal, embedded NULs included.
template <std::size_t N>
std::string raw(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

TEST(TextCodecTest, DecodesUtf8AndReplacesEachBrokenSequenceOnce) {
    struct Case {
        const char* what;
        std::string bytes;
        std::wstring expected;
        bool valid;
    };
    const Case cases[] = {
        {"empty", "", L"", true},
        {"ascii", "LWPOLYLINE", L"LWPOLYLINE", true},
        {"two-byte", "\xC3\xA9", L"é", true},
        {"three-byte", "\xE4\xB8\xAD\xE6\x96\x87", L"中文", true},
        {"four-byte", "\xF0\x9F\x98\x80", L"\U0001F600", true},
        {"highest code point", "\xF4\x8F\xBF\xBF", L"\U0010FFFF", true},
        {"encoded U+FFFD is valid", "\xEF\xBF\xBD", std::wstring(1, kBad), true},
        {"lone continuation", "a\x80z", std::wstring{L'a', kBad, L'z'}, false},
        {"overlong two-byte", "\xC0\x80", std::wstring{kBad, kBad}, false},
        {"overlong three-byte", "\xE0\x80\x80", std::wstring{kBad, kBad, kBad}, false},
        {"surrogate", "\xED\xA0\x80", std::wstring{kBad, kBad, kBad}, false},
        {"past U+10FFFF", "\xF4\x90\x80\x80", std::wstring(4, kBad), false},
        {"truncated at end", "ab\xE4\xB8", std::wstring{L'a', L'b', kBad}, false},
        {"truncated in middle", "\xE4\xB8x\xE4\xB8\xAD", std::wstring{kBad, L'x', L'中'}, false},
        {"GBK bytes", "\xD6\xD0\xCE\xC4", std::wstring{kBad, kBad, kBad, kBad}, false},
        {"invalid lead bytes", "\xFF\xFE", std::wstring{kBad, kBad}, false},
        {"embedded NUL", raw("a\0b"), std::wstring(L"a\0b", 3), true},
        {"long ascii run then CJK", std::string(37, 'x') + "\xE5\x9C\xB0",
         std::wstring(37, L'x') + L"地", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(utf8ToWide(c.bytes), c.expected);
        EXPECT_EQ(isValidUtf8(c.bytes), c.valid);
        if (c.valid) {
            EXPECT_EQ(wideToUtf8(c.expected), c.bytes);
        }
    }
}

TEST(TextCodecTest, EncodesUtf8AndReplacesNonScalarValues) {
    struct Case {
        std::wstring text;
        std::string expected;
    };
    const Case cases[] = {
        {L"地块 H11", "\xE5\x9C\xB0\xE5\x9D\x97 H11"},
        {L"\U0001F600\U00020000", "\xF0\x9F\x98\x80\xF0\xA0\x80\x80"},
        {std::wstring{L'a', static_cast<wchar_t>(0xD800), L'b'},
         "a\xEF\xBF\xBD"
         "b"},
        {std::wstring{static_cast<wchar_t>(0x110000)}, "\xEF\xBF\xBD"},
        {std::wstring{L'\x7F', L'\x80', L'\x7FF', L'\x800', L'\xFFFF'},
         "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(wideToUtf8(c.text), c.expected);
        EXPECT_TRUE(isValidUtf8(wideToUtf8(c.text)));
    }
}

TEST(TextCodecTest, RoundTripsEveryCodePointThroughUtf8) {
    std::wstring all;
    for (wchar_t cp = 1; cp <= 0x10FFFF; cp += (cp < 0x3000 ? 1 : 97)) {
        if (cp >= 0xD800 && cp <= 0xDFFF) continue;
        all.push_back(cp);
    }
    EXPECT_EQ(utf8ToWide(wideToUtf8(all)), all);
}

TEST(TextCodecTest, DecodesDrawingCodePages) {
    struct Case {
        const char* codePage;
        std::string bytes;
        std::wstring expected;
    };
    const Case cases[] = {
        {"ANSI_936", "\xD6\xD0\xCE\xC4\x80", L"中文€"},
        {"ansi_936", "H11:\xB8\xDF\xD1\xB9", L"H11:高压"},
        {"GBK", "\xB5\xD8\xBF\xE9", L"地块"},
        {"ANSI_932", "\x93\xFA\x96\x7B", L"日本"},
        {"ANSI_949", "\xC7\xD1\xB1\xB9", L"한국"},
        {"ANSI_950", "\xA4\xA4\xB0\xEA", L"中國"},
        {"ANSI_1251", "\xC6\xF3\xEA", L"Жук"},
        {"ANSI_1252", "caf\xE9 \x80", L"café €"},
        {"DOS437", "\x82", L"é"},
        {"UTF-8", "\xE4\xB8\xAD", L"中"},
        {"ANSI_936", "plain ascii", L"plain ascii"},
        {"ISO-8859-1", "\xE9", L"é"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.codePage);
        std::wstring out;
        EXPECT_TRUE(decodeCodePage(c.bytes, c.codePage, out));
        EXPECT_EQ(out, c.expected);
    }
}

TEST(TextCodecTest, ReportsBadBytesAndUnknownCodePages) {
    std::wstring out;
    // 0xFF is no GBK lead byte; a lead byte at the very end has no trail byte.
    EXPECT_FALSE(
        decodeCodePage("a\xFF"
                       "b",
                       "ANSI_936", out));
    EXPECT_EQ(out, (std::wstring{L'a', kBad, L'b'}));
    EXPECT_FALSE(decodeCodePage("\xD6\xD0\xD6", "ANSI_936", out));
    EXPECT_EQ(out, (std::wstring{L'中', kBad}));
    EXPECT_FALSE(decodeCodePage("\x81", "ANSI_1252", out));
    EXPECT_EQ(out, std::wstring(1, kBad));
    EXPECT_FALSE(decodeCodePage("\xE4\xB8", "UTF-8", out));
    EXPECT_EQ(out, std::wstring(1, kBad));

    out = L"stale";
    EXPECT_FALSE(decodeCodePage("abc", "NO_SUCH_PAGE", out));
    EXPECT_TRUE(out.empty());
    std::string bytes = "stale";
    EXPECT_FALSE(encodeCodePage(L"abc", "NO_SUCH_PAGE", bytes));
    EXPECT_TRUE(bytes.empty());
    EXPECT_FALSE(encodeCodePageWithEscapes(L"abc", "NO_SUCH_PAGE", bytes));
}

TEST(TextCodecTest, EncodesStrictlyOrWithEscapes) {
    struct Case {
        const char* codePage;
        std::wstring text;
        bool encodable;
        std::string strict;
        std::string escaped;
    };
    const Case cases[] = {
        // The euro's lone byte 0x80 is Windows' own: the escaping writer spells it out.
        {"ANSI_936", L"中文€", true, "\xD6\xD0\xCE\xC4\x80", "\xD6\xD0\xCE\xC4\\U+20AC"},
        {"ANSI_936", L"€中€€文€", true, "\x80\xD6\xD0\x80\x80\xCE\xC4\x80",
         "\\U+20AC\xD6\xD0\\U+20AC\\U+20AC\xCE\xC4\\U+20AC"},
        {"ANSI_936", L"a\U0001F600", false, "a?", "a\\U+D83D\\U+DE00"},
        {"ANSI_936", L"地\x0E01", false, "\xB5\xD8?", "\xB5\xD8\\U+0E01"},
        {"ANSI_1252", L"café 中", false, "caf\xE9 ?", "caf\xE9 \\U+4E2D"},
        {"ANSI_1251", L"Жук", true, "\xC6\xF3\xEA", "\xC6\xF3\xEA"},
        {"ANSI_932", L"日本", true, "\x93\xFA\x96\x7B", "\x93\xFA\x96\x7B"},
        {"ANSI_1252", L"plain", true, "plain", "plain"},
        {"UTF-8", L"中\U0001F600", true, "\xE4\xB8\xAD\xF0\x9F\x98\x80",
         "\xE4\xB8\xAD\xF0\x9F\x98\x80"},
        {"UTF-8", std::wstring{L'a', static_cast<wchar_t>(0xDC00)}, false, "a?", "a\\U+DC00"},
        {"ANSI_1252", L"", true, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.codePage << " " << wideToUtf8(c.text));
        std::string strict;
        EXPECT_EQ(encodeCodePage(c.text, c.codePage, strict), c.encodable);
        EXPECT_EQ(strict, c.strict);
        std::string escaped;
        EXPECT_TRUE(encodeCodePageWithEscapes(c.text, c.codePage, escaped));
        EXPECT_EQ(escaped, c.escaped);

        // What a reader of an older drawing does: decode, then expand the escapes.
        std::wstring back;
        EXPECT_TRUE(decodeCodePage(escaped, c.codePage, back));
        if (c.text.find(static_cast<wchar_t>(0xDC00)) == std::wstring::npos) {
            EXPECT_EQ(expandUnicodeEscapes(back), c.text);
        }
    }
}

TEST(TextCodecTest, ExpandsUnicodeEscapes) {
    struct Case {
        std::wstring text;
        std::wstring expected;
    };
    const Case cases[] = {
        {L"\\U+4E2D\\U+6587", L"中文"},
        {L"x\\U+00e9y", L"xéy"},
        {L"\\U+D83D\\U+DE00", L"\U0001F600"},
        {L"\\U+D83Dx", std::wstring{kBad, L'x'}},
        {L"\\U+DE00", std::wstring(1, kBad)},
        {L"\\U+12", L"\\U+12"},
        {L"\\U+12G4", L"\\U+12G4"},
        {L"\\u+0041", L"\\u+0041"},
        {L"C:\\Users", L"C:\\Users"},
        {L"\\\\U+0041", L"\\A"},
        {L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(wideToUtf8(c.text));
        EXPECT_EQ(expandUnicodeEscapes(c.text), c.expected);
    }
}

std::string utf16(const std::wstring& text, bool little, bool bom = true) {
    std::string out;
    auto put = [&](unsigned unit) {
        const char hi = static_cast<char>(unit >> 8);
        const char lo = static_cast<char>(unit & 0xFF);
        out += little ? std::string{lo, hi} : std::string{hi, lo};
    };
    if (bom) put(0xFEFF);
    for (wchar_t ch : text) {
        const auto cp = static_cast<unsigned>(ch);
        if (cp >= 0x10000) {
            put(0xD800 + ((cp - 0x10000) >> 10));
            put(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            put(cp);
        }
    }
    return out;
}

TEST(TextCodecTest, TextFilesDecodeAlikeInEveryEncoding) {
    const std::wstring text =
        L"[用地图层前后缀]\r\n规划用地边界前缀=GH-\nH11:高压线走廊 $3 #备注\n";
    std::string gbk;
    ASSERT_TRUE(encodeCodePage(text, "ANSI_936", gbk));
    const std::string utf8 = wideToUtf8(text);
    struct Case {
        const char* what;
        std::string bytes;
    };
    const Case cases[] = {
        {"UTF-8 with BOM", "\xEF\xBB\xBF" + utf8},
        {"UTF-8 without BOM", utf8},
        {"UTF-16 LE", utf16(text, true)},
        {"UTF-16 BE", utf16(text, false)},
        {"GBK", gbk},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(decodeTextFile(c.bytes), text);
    }
}

TEST(TextCodecTest, Utf16CombinesSurrogatesAndReplacesBrokenUnits) {
    struct Case {
        const char* what;
        std::string bytes;
        std::wstring expected;
    };
    const Case cases[] = {
        {"pair LE", utf16(L"a\U0001F600b", true), L"a\U0001F600b"},
        {"pair BE", utf16(L"\U00020000", false), L"\U00020000"},
        {"BOM only", "\xFF\xFE", L""},
        {"lone high surrogate",
         raw("\xFF\xFE\x3D\xD8"
             "a\0"),
         std::wstring{kBad, L'a'}},
        {"lone low surrogate",
         raw("\xFE\xFF\xDE\x00\x00"
             "a"),
         std::wstring{kBad, L'a'}},
        {"high surrogate at end",
         raw("\xFF\xFE"
             "a\0\x3D\xD8"),
         std::wstring{L'a', kBad}},
        {"odd trailing byte",
         raw("\xFF\xFE"
             "a\0b"),
         std::wstring{L'a', kBad}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(decodeTextFile(c.bytes), c.expected);
    }
    // Without a BOM, bytes that are not UTF-8 are read as GBK.
    EXPECT_EQ(decodeTextFile("\xB5\xD8\xBF\xE9"), L"地块");
    EXPECT_EQ(decodeTextFile(""), L"");
}

TEST(TextCodecTest, ConvertersWorkFromSeveralThreads) {
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &failures] {
            const char* page = t % 2 ? "ANSI_936" : "ANSI_1251";
            const std::wstring text = t % 2 ? L"地块边界" : L"Жук";
            for (int i = 0; i < 200; ++i) {
                std::string bytes;
                std::wstring back;
                if (!encodeCodePage(text, page, bytes) || !decodeCodePage(bytes, page, back) ||
                    back != text) {
                    ++failures[static_cast<std::size_t>(t)];
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, std::vector<int>(4, 0));
}

TEST(TextCodecTest, DecodesLargeInputInOnePass) {
    std::string bytes;
    std::wstring expected;
    for (int i = 0; i < 100000; ++i) {
        bytes += "  8\nLAYER\n  1\n\xE5\x9C\xB0\xE5\x9D\x97\n";
        expected += L"  8\nLAYER\n  1\n地块\n";
    }
    EXPECT_EQ(utf8ToWide(bytes), expected);
    std::wstring gbk;
    std::string encoded;
    ASSERT_TRUE(encodeCodePage(expected, "ANSI_936", encoded));
    EXPECT_TRUE(decodeCodePage(encoded, "ANSI_936", gbk));
    EXPECT_EQ(gbk, expected);
}

}  // namespace
