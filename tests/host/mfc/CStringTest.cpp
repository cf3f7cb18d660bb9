#include "host/mfc/CString.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

TEST(CStringTest, ConstructsFromEveryKindOfSource) {
    const wchar_t* nullText = nullptr;
    const char* nullUtf8 = nullptr;
    struct Case {
        const char* what;
        CString value;
        std::wstring expected;
    };
    const Case cases[] = {
        {"default", CString(), L""},
        {"null wide pointer", CString(nullText), L""},
        {"wide literal", CString(L"用地"), L"用地"},
        {"wide with length", CString(L"abcdef", 3), L"abc"},
        {"wide with negative length", CString(L"abc", -1), L""},
        {"repeated character", CString(L'中', 3), L"中中中"},
        {"repeated zero times", CString(L'x', 0), L""},
        {"std::wstring", CString(std::wstring(L"H11")), L"H11"},
        {"UTF-8 narrow", CString("高压线走廊"), L"高压线走廊"},
        {"null narrow pointer", CString(nullUtf8), L""},
        {"UTF-8 with a non-BMP character", CString("a\xF0\x9F\x98\x80"), L"a\U0001F600"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.value.wstr(), c.expected);
        EXPECT_EQ(c.value.GetLength(), static_cast<int>(c.expected.size()));
        EXPECT_EQ(c.value.IsEmpty(), c.expected.empty());
    }
}

TEST(CStringTest, CopiesAreIndependentAndAssignmentAcceptsPointersIntoItself) {
    CString a(L"abc");
    CString b = a;
    b.SetAt(0, L'X');
    EXPECT_EQ(a, L"abc");
    EXPECT_EQ(b, L"Xbc");

    CString moved = std::move(b);
    EXPECT_EQ(moved, L"Xbc");

    CString self(L"hello world");
    self = self.GetString() + 6;  // a pointer into its own buffer
    EXPECT_EQ(self, L"world");
    self += self.GetString();
    EXPECT_EQ(self, L"worldworld");
    self = L'z';
    EXPECT_EQ(self, L"z");
    self.Empty();
    EXPECT_TRUE(self.IsEmpty());
}

TEST(CStringTest, ElementAccessOutsideTheStringIsHarmless) {
    CString s(L"地块");
    EXPECT_EQ(s.GetAt(0), L'地');
    EXPECT_EQ(s[1], L'块');
    EXPECT_EQ(s.GetAt(2), L'\0');
    EXPECT_EQ(s.GetAt(-1), L'\0');
    s.SetAt(5, L'x');
    s.SetAt(-1, L'x');
    EXPECT_EQ(s, L"地块");
    s.SetAt(1, L'图');
    EXPECT_EQ(s, L"地图");
    const wchar_t* raw = s;
    EXPECT_STREQ(raw, L"地图");
}

TEST(CStringTest, LeftRightMidClampLikeMfc) {
    struct Case {
        const wchar_t* text;
        int first;  // -100 marks Left, -200 Right, otherwise Mid(first, count)
        int count;
        const wchar_t* expected;
    };
    constexpr int kLeft = -100;
    constexpr int kRight = -200;
    const Case cases[] = {
        {L"abcdef", kLeft, 2, L"ab"},
        {L"abcdef", kLeft, 0, L""},
        {L"abcdef", kLeft, -3, L""},
        {L"abcdef", kLeft, 99, L"abcdef"},
        {L"abcdef", kRight, 2, L"ef"},
        {L"abcdef", kRight, -1, L""},
        {L"abcdef", kRight, 99, L"abcdef"},
        {L"abcdef", 2, 3, L"cde"},
        {L"abcdef", 2, 99, L"cdef"},
        {L"abcdef", -5, 2, L"ab"},
        {L"abcdef", 2, -1, L""},
        {L"abcdef", 6, 1, L""},
        {L"abcdef", 7, 1, L""},
        {L"abcdef", 1, 2147483647, L"bcdef"},
        {L"规划用地边界", 2, 2, L"用地"},
        {L"", 0, 1, L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "first " << c.first << " count " << c.count);
        const CString s(c.text);
        CString got;
        if (c.first == kLeft) {
            got = s.Left(c.count);
        } else if (c.first == kRight) {
            got = s.Right(c.count);
        } else {
            got = s.Mid(c.first, c.count);
        }
        EXPECT_EQ(got, c.expected);
    }
    const CString s(L"abcdef");
    EXPECT_EQ(s.Mid(3), L"def");
    EXPECT_EQ(s.Mid(-2), L"abcdef");
    EXPECT_EQ(s.Mid(6), L"");
    EXPECT_EQ(s.Mid(10), L"");
}

TEST(CStringTest, FindsCharactersAndSubstrings) {
    const CString s(L"H11:高压线走廊 $3 *GH-H11");
    struct Case {
        const wchar_t* needle;  // one character is searched as a character
        int start;
        int expected;
    };
    const Case cases[] = {
        {L"H", 0, 0},    {L"H", 1, 15},   {L"H", 16, 17},   {L"H", 18, -1},  {L"H", -1, -1},
        {L"H", 99, -1},  {L":", 0, 3},    {L"$", 0, 10},    {L"H11", 1, 17}, {L"H11", 0, 0},
        {L"走廊", 0, 7}, {L"GH-", 0, 14}, {L"GH-", 15, -1}, {L"xyz", 0, -1}, {L"", 0, 0},
        {L"", 5, 5},     {L"", 20, 20},   {L"", 21, -1},    {L"11", 19, -1}, {L"H11", -1, -1},
        {L"1", 20, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "needle " << CString(c.needle) << " start " << c.start);
        if (std::wcslen(c.needle) == 1) {
            EXPECT_EQ(s.Find(c.needle[0], c.start), c.expected);
        } else {
            EXPECT_EQ(s.Find(c.needle, c.start), c.expected);
        }
    }
    EXPECT_EQ(s.ReverseFind(L'H'), 17);
    EXPECT_EQ(s.ReverseFind(L'1'), 19);
    EXPECT_EQ(s.ReverseFind(L'#'), -1);
    EXPECT_EQ(s.FindOneOf(L"$*&#"), 10);
    EXPECT_EQ(s.FindOneOf(L"&#"), -1);
    EXPECT_EQ(s.FindOneOf(L""), -1);
    EXPECT_EQ(CString(L"a.b.c").ReverseFind(L'.'), 3);
}

TEST(CStringTest, ReplaceAndRemoveReportHowManyChanged) {
    struct Case {
        const wchar_t* text;
        const wchar_t* from;
        const wchar_t* to;
        int count;
        const wchar_t* expected;
    };
    const Case cases[] = {
        {L"a\\b\\c", L"\\", L"/", 2, L"a/b/c"},
        {L"aaa", L"aa", L"X", 1, L"Xa"},
        {L"aaa", L"a", L"aa", 3, L"aaaaaa"},
        {L"R2/R21", L"R2", L"", 2, L"/1"},
        {L"abc", L"", L"x", 0, L"abc"},
        {L"abc", L"d", L"x", 0, L"abc"},
        {L"用地.txt", L".txt", L"_地下.txt", 1, L"用地_地下.txt"},
        {L"", L"a", L"b", 0, L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << CString(c.text) << " " << CString(c.from));
        CString s(c.text);
        EXPECT_EQ(s.Replace(c.from, c.to), c.count);
        EXPECT_EQ(s, c.expected);
    }
    CString s(L"a,b,,c");
    EXPECT_EQ(s.Replace(L',', L';'), 3);
    EXPECT_EQ(s, L"a;b;;c");
    EXPECT_EQ(s.Replace(L';', L';'), 0);
    EXPECT_EQ(s.Remove(L';'), 3);
    EXPECT_EQ(s, L"abc");
    EXPECT_EQ(s.Remove(L'x'), 0);
}

TEST(CStringTest, InsertAndDeleteClampPositions) {
    struct Case {
        int index;
        int count;  // for Delete
        const wchar_t* inserted;
        const wchar_t* deleted;
    };
    // Insert "XY" into "abc" and, separately, Delete(index, count) from "abcdef".
    const Case cases[] = {
        {0, 1, L"XYabc", L"bcdef"},   {1, 2, L"aXYbc", L"adef"},   {3, 10, L"abcXY", L"abc"},
        {9, 1, L"abcXY", L"abcdef"},  {-4, 2, L"XYabc", L"cdef"},  {2, 0, L"abXYc", L"abcdef"},
        {2, -3, L"abXYc", L"abcdef"}, {6, 1, L"abcXY", L"abcdef"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "index " << c.index << " count " << c.count);
        CString a(L"abc");
        EXPECT_EQ(a.Insert(c.index, L"XY"), 5);
        EXPECT_EQ(a, c.inserted);
        CString d(L"abcdef");
        EXPECT_EQ(d.Delete(c.index, c.count), static_cast<int>(std::wcslen(c.deleted)));
        EXPECT_EQ(d, c.deleted);
    }
    CString s(L"ac");
    EXPECT_EQ(s.Insert(1, L'b'), 3);
    EXPECT_EQ(s, L"abc");
    EXPECT_EQ(s.Insert(1, s.GetString()), 6);
    EXPECT_EQ(s, L"aabcbc");
    EXPECT_EQ(s.Delete(0), 5);
    EXPECT_EQ(s, L"abcbc");
}

TEST(CStringTest, TrimsWhiteSpaceSingleCharactersAndCharacterSets) {
    enum Side { kBoth, kLeft, kRight };
    struct Case {
        const wchar_t* text;
        Side side;
        const wchar_t* set;  // nullptr: white space; one character: Trim(wchar_t)
        const wchar_t* expected;
    };
    const Case cases[] = {
        {L"  \t H11 \r\n", kBoth, nullptr, L"H11"},
        {L"\x3000用地\x3000", kBoth, nullptr, L"用地"},
        {L"\xA0 x \xA0", kBoth, nullptr, L"x"},
        {L"  a b  ", kLeft, nullptr, L"a b  "},
        {L"  a b  ", kRight, nullptr, L"  a b"},
        {L"   ", kBoth, nullptr, L""},
        {L"plain", kRight, L".ini", L"pla"},
        {L"file.ini", kRight, L".ini", L"file"},
        {L"nine", kLeft, L"ni", L"e"},
        {L"(255,255,0)", kBoth, L"()", L"255,255,0"},
        {L"xxabcxx", kBoth, L"x", L"abc"},
        {L"xxabcxx", kLeft, L"x", L"abcxx"},
        {L"xxabcxx", kRight, L"x", L"xxabc"},
        {L"abc", kBoth, L"", L"abc"},
        {L"\"quoted\"", kBoth, L"\"", L"quoted"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << CString(c.text) << " side " << c.side);
        CString s(c.text);
        if (!c.set) {
            if (c.side == kBoth) s.Trim();
            if (c.side == kLeft) s.TrimLeft();
            if (c.side == kRight) s.TrimRight();
        } else if (std::wcslen(c.set) == 1) {
            if (c.side == kBoth) s.Trim(c.set[0]);
            if (c.side == kLeft) s.TrimLeft(c.set[0]);
            if (c.side == kRight) s.TrimRight(c.set[0]);
        } else {
            if (c.side == kBoth) s.Trim(c.set);
            if (c.side == kLeft) s.TrimLeft(c.set);
            if (c.side == kRight) s.TrimRight(c.set);
        }
        EXPECT_EQ(s, c.expected);
    }
    CString chained(L"  ab  ");
    EXPECT_EQ(chained.Trim().MakeUpper(), L"AB");
}

TEST(CStringTest, ChangesCaseAndOrder) {
    struct Case {
        const wchar_t* text;
        const wchar_t* upper;
        const wchar_t* lower;
    };
    const Case cases[] = {
        {L"fs_dkxz", L"FS_DKXZ", L"fs_dkxz"},
        {L"Gh-H11", L"GH-H11", L"gh-h11"},
        {L"café", L"CAFÉ", L"café"},
        {L"ΑβΓ", L"ΑΒΓ", L"αβγ"},
        {L"Жук", L"ЖУК", L"жук"},
        {L"用地a", L"用地A", L"用地a"},
        {L"", L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.text));
        CString up(c.text);
        CString low(c.text);
        EXPECT_EQ(up.MakeUpper(), c.upper);
        EXPECT_EQ(low.MakeLower(), c.lower);
    }
    CString s(L"地块a1");
    EXPECT_EQ(s.MakeReverse(), L"1a块地");
}

TEST(CStringTest, SpansAndTokens) {
    const CString s(L"123abc456");
    EXPECT_EQ(s.SpanIncluding(L"0123456789"), L"123");
    EXPECT_EQ(s.SpanIncluding(L"abc"), L"");
    EXPECT_EQ(s.SpanExcluding(L"abc"), L"123");
    EXPECT_EQ(s.SpanExcluding(L"xyz"), L"123abc456");

    struct Case {
        const wchar_t* text;
        const wchar_t* delimiters;
        std::vector<std::wstring> tokens;
    };
    const Case cases[] = {
        {L"a,b;;c", L",;", {L"a", L"b", L"c"}},
        {L";;a;", L";", {L"a"}},
        {L"", L",", {}},
        {L",,,", L",", {}},
        {L"255,255,0", L",", {L"255", L"255", L"0"}},
        {L"GH 用地 规划", L" ", {L"GH", L"用地", L"规划"}},
        {L"whole text", L"", {L"whole text"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.text));
        const CString text(c.text);
        std::vector<std::wstring> got;
        int pos = 0;
        for (int guard = 0; guard < 20; ++guard) {
            const CString token = text.Tokenize(c.delimiters, pos);
            if (pos == -1) {
                EXPECT_TRUE(token.IsEmpty());
                break;
            }
            got.push_back(token.wstr());
        }
        EXPECT_EQ(pos, -1);
        EXPECT_EQ(got, c.tokens);
    }
    int bad = -3;
    EXPECT_EQ(CString(L"abc").Tokenize(L",", bad), L"");
    EXPECT_EQ(bad, -1);
}

TEST(CStringTest, ComparesOrdinallyAndIgnoringCase) {
    struct Case {
        const wchar_t* a;
        const wchar_t* b;
        int compare;
        int noCase;
    };
    const Case cases[] = {
        {L"abc", L"abc", 0, 0},   {L"abc", L"abd", -1, -1}, {L"abd", L"abc", 1, 1},
        {L"ABC", L"abc", -1, 0},  {L"ab", L"abc", -1, -1},  {L"abc", L"ab", 1, 1},
        {L"", L"", 0, 0},         {L"", L"a", -1, -1},      {L"Ä", L"ä", -1, 0},
        {L"用地", L"用地", 0, 0}, {L"H11", L"h11", -1, 0},  {L"a", L"B", 1, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << CString(c.a) << " vs " << CString(c.b));
        const CString a(c.a);
        const CString b(c.b);
        EXPECT_EQ(a.Compare(c.b), c.compare);
        EXPECT_EQ(a.CompareNoCase(c.b), c.noCase);
        EXPECT_EQ(a == b, c.compare == 0);
        EXPECT_EQ(a != b, c.compare != 0);
        EXPECT_EQ(a < b, c.compare < 0);
        EXPECT_EQ(a > b, c.compare > 0);
        EXPECT_EQ(a <= b, c.compare <= 0);
        EXPECT_EQ(a >= b, c.compare >= 0);
        EXPECT_EQ(a == c.b, c.compare == 0);
        EXPECT_EQ(c.a == b, c.compare == 0);
        EXPECT_EQ(a != c.b, c.compare != 0);
        EXPECT_EQ(a < c.b, c.compare < 0);
        EXPECT_EQ(c.a < b, c.compare < 0);
        EXPECT_EQ(a > c.b, c.compare > 0);
        EXPECT_EQ(c.a >= b, c.compare >= 0);
        EXPECT_EQ(a.Collate(c.b) == 0, c.compare == 0);
    }
    EXPECT_EQ(CString(L"a").Compare(nullptr), 1);
}

TEST(CStringTest, ConcatenatesEveryCombination) {
    const CString a(L"GH-");
    const CString code(L"H11");
    EXPECT_EQ(a + code, L"GH-H11");
    EXPECT_EQ(a + L"A1", L"GH-A1");
    EXPECT_EQ(L"TC-" + code, L"TC-H11");
    EXPECT_EQ(code + L'#', L"H11#");
    EXPECT_EQ(L'[' + code + L']', L"[H11]");
    CString s;
    s += a;
    s += L"用地";
    s += L'!';
    s += "utf8文字";
    EXPECT_EQ(s, L"GH-用地!utf8文字");
    s.Append(L"xyz", 2);
    s.AppendChar(L'.');
    s.Truncate(3);
    EXPECT_EQ(s, L"GH-");
}

TEST(CStringTest, BufferAccessFollowsMfcProtocol) {
    CString s(L"abc");
    wchar_t* buffer = s.GetBuffer(10);
    EXPECT_STREQ(buffer, L"abc");  // the old content is kept
    std::wcscpy(buffer, L"0123456789");
    s.ReleaseBuffer();
    EXPECT_EQ(s, L"0123456789");

    buffer = s.GetBuffer(20);
    std::wcscpy(buffer, L"short");
    s.ReleaseBuffer();
    EXPECT_EQ(s.GetLength(), 5);

    buffer = s.GetBuffer(0);  // no growth: the length is unchanged without ReleaseBuffer
    EXPECT_EQ(s.GetLength(), 5);
    buffer[0] = L'S';
    EXPECT_EQ(s, L"Short");

    s.GetBuffer(8);
    s.ReleaseBuffer(3);
    EXPECT_EQ(s, L"Sho");
    s.ReleaseBuffer(99);  // clamped
    EXPECT_EQ(s, L"Sho");

    buffer = s.GetBufferSetLength(2);
    EXPECT_EQ(s, L"Sh");
    buffer[1] = L'x';
    EXPECT_EQ(s, L"Sx");
}

CString format(const wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    CString out;
    out.FormatV(fmt, args);
    va_end(args);
    return out;
}

TEST(CStringTest, FormatsWithWindowsConventions) {
    const CString name(L"高压线走廊");
    const std::wstring code(L"H11");
    auto f = [](const wchar_t* fmt, const auto&... args) {
        CString s;
        s.Format(fmt, args...);
        return s.wstr();
    };
    struct Case {
        std::wstring got;
        const wchar_t* expected;
    };
    const Case cases[] = {
        {f(L"%d", 42), L"42"},
        {f(L"%i|%d", -7, 0), L"-7|0"},
        {f(L"%u", 4000000000u), L"4000000000"},
        {f(L"%u", -1), L"4294967295"},
        {f(L"%d", 4294967295u), L"-1"},
        {f(L"%x %X %#x", 255, 255, 255), L"ff FF 0xff"},
        {f(L"%o", 8), L"10"},
        {f(L"%ld", 123456789L), L"123456789"},
        {f(L"%lld", -9000000000LL), L"-9000000000"},
        {f(L"%I64d", 9000000000LL), L"9000000000"},
        {f(L"%I64u", 18446744073709551615ULL), L"18446744073709551615"},
        {f(L"%hd", 65535), L"-1"},
        {f(L"%05d|%-5d|%+d", 42, 42, 42), L"00042|42   |+42"},
        {f(L"%*d|%-*d", 4, 7, 3, 7), L"   7|7  "},
        {f(L"%.2f", 3.14159), L"3.14"},
        {f(L"%f", 1.5), L"1.500000"},
        {f(L"%8.3f|", 2.0), L"   2.000|"},
        {f(L"%g %g", 0.0001, 100000.0), L"0.0001 100000"},
        {f(L"%e", 12345.678), L"1.234568e+04"},
        {f(L"%.1f", 2), L"2.0"},
        {f(L"%d", 2.9), L"2"},
        {f(L"%s", L"宽字符"), L"宽字符"},
        {f(L"%s", name), L"高压线走廊"},
        {f(L"%s:%s", code, name), L"H11:高压线走廊"},
        {f(L"%5s|%-5s|", L"ab", L"ab"), L"   ab|ab   |"},
        {f(L"%.2s", L"用地分类"), L"用地"},
        {f(L"%4s|", L"用地"), L"  用地|"},
        {f(L"%S", "窄字符"), L"窄字符"},
        {f(L"%hs", "narrow"), L"narrow"},
        {f(L"%ls|%ws", L"l", L"w"), L"l|w"},
        {f(L"%s", std::string("std")), L"std"},
        {f(L"%c%c", L'用', L'地'), L"用地"},
        {f(L"%C", 'a'), L"a"},
        {f(L"%3c|", L'x'), L"  x|"},
        {f(L"%%d %d%%", 5), L"%d 5%"},
        {f(L"%s", static_cast<const wchar_t*>(nullptr)), L"(null)"},
        {f(L"%s", 12), L"12"},
        {f(L"%d", L"text"), L"text"},
        {f(L"%d %d", 1), L"1 "},
        {f(L"no conversions"), L"no conversions"},
        {f(L"%y%d", 3), L"%y3"},
        {f(L"end%"), L"end%"},
        {f(L"%p", reinterpret_cast<const void*>(std::uintptr_t{0xABC})), L"0000000000000ABC"},
        {f(L"%.3s%s", L"abcdef", L""), L"abc"},
        {f(L"%s", true), L"1"},
        {f(L"%.0f", 0.5), L"0"},
        {f(L"%10.4f|", -3.14159265), L"   -3.1416|"},
        {f(L"%-8s|%8s", name, code), L"高压线走廊   |     H11"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CString(c.got), c.expected);

    CString s(L"面积:");
    s.AppendFormat(L"%.2f公顷", 12.346);
    EXPECT_EQ(s, L"面积:12.35公顷");
    s.Format(L"%s%s", s, L"!");  // the old value is read before it is replaced
    EXPECT_EQ(s, L"面积:12.35公顷!");

    const std::wstring longText(5000, L'长');
    s.Format(L"[%s]", longText.c_str());
    EXPECT_EQ(s.GetLength(), 5002);
    s.Format(L"%.300f", 1.0);
    EXPECT_EQ(s.GetLength(), 302);
}

TEST(CStringTest, FormatsVariableArgumentListsByConversion) {
    struct Case {
        CString got;
        const wchar_t* expected;
    };
    const Case cases[] = {
        {format(L"%d|%s|%S", 5, L"宽", "窄"), L"5|宽|窄"},
        {format(L"%hs|%ls|%C|%c", "n", L"w", 'c', L'字'), L"n|w|c|字"},
        {format(L"%ld|%lld|%I64d", -5L, -6LL, 7LL), L"-5|-6|7"},
        {format(L"%u|%x", 4294967295u, 3054u), L"4294967295|bee"},
        {format(L"%.2f|%e", 2.375, 1.0), L"2.38|1.000000e+00"},
        {format(L"%*.*f|", 7, 2, 3.14159), L"   3.14|"},
        {format(L"%-*d|", 4, 9), L"9   |"},
        {format(L"%s", static_cast<const wchar_t*>(nullptr)), L"(null)"},
        {format(L"%zu|%Id", static_cast<std::size_t>(77), static_cast<std::ptrdiff_t>(-8)),
         L"77|-8"},
        {format(L"%%|%c", L'%'), L"%|%"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.got, c.expected);
}

TEST(CStringTest, ConvertsToAndFromUtf8) {
    const char* cases[] = {
        "",
        "ASCII only",
        "2011国标城乡用地类别.txt",
        "高压线走廊 $3 *GH-H11",
        "emoji \xF0\x9F\x98\x80 and \xF0\xA0\x80\x8B (CJK ext B)",
        "mixed é ß Ж ع",
    };
    for (const char* utf8 : cases) {
        SCOPED_TRACE(utf8);
        const CString s = CString::FromUtf8(utf8);
        EXPECT_EQ(s.ToUtf8(), utf8);
        EXPECT_EQ(CString(utf8), s);
    }
    EXPECT_EQ(CString::FromUtf8("\xF0\x9F\x98\x80").GetLength(), 1);
    EXPECT_EQ(CString::FromUtf8("a\xFF"
                                "b"),
              L"a\xFFFD"
              L"b");
}

TEST(CStringTest, KeysHashMapsAndPrintsAsUtf8) {
    std::unordered_map<CString, int> byCode;
    byCode[CString(L"H11")] = 1;
    byCode[CString(L"用地")] = 2;
    byCode[CString("H11")] += 10;
    EXPECT_EQ(byCode.size(), 2u);
    EXPECT_EQ(byCode.at(CString(L"H11")), 11);
    EXPECT_EQ(byCode.count(CString(L"h11")), 0u);
    EXPECT_EQ(testing::PrintToString(CString(L"用地H11")), "用地H11");
}

}  // namespace
