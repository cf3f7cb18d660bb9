#include "host/kova/fgdutil.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using fgdutil::Str2StrArr;
using fgdutil::StrArrFindStr;

std::vector<std::wstring> contents(const CStringArray& array) {
    std::vector<std::wstring> out;
    for (const CString& s : array)
        out.push_back(s.wstr());
    return out;
}

TEST(FgdutilTest, SplitsAtEveryOccurrenceOfTheSeparator) {
    struct Case {
        const wchar_t* text;
        const wchar_t* separator;
        std::vector<std::wstring> expected;
    };
    const Case cases[] = {
        {L"a,b,c", L",", {L"a", L"b", L"c"}},
        {L"a,,b", L",", {L"a", L"", L"b"}},
        {L"a,", L",", {L"a", L""}},
        {L",a", L",", {L"", L"a"}},
        {L",", L",", {L"", L""}},
        {L"", L",", {}},
        {L"no separator", L",", {L"no separator"}},
        {L"KG|控制性详细规划", L"|", {L"KG", L"控制性详细规划"}},
        {L"R<>A<><>B", L"<>", {L"R", L"A", L"", L"B"}},
        {L"aaa", L"aa", {L"", L"a"}},
        {L"用地、绿地、水域", L"、", {L"用地", L"绿地", L"水域"}},
        {L"255,255,0", L"", {L"255,255,0"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << CString(c.text) << " at " << CString(c.separator));
        CStringArray list;
        list.Add(L"left over from before");
        EXPECT_EQ(Str2StrArr(c.text, list, c.separator), static_cast<int>(c.expected.size()));
        EXPECT_EQ(contents(list), c.expected);
    }
}

TEST(FgdutilTest, FindsTheFirstExactMatch) {
    CStringArray list;
    for (const wchar_t* item : {L"KG", L"XG", L"DEFAULT", L"kg", L"XG", L""})
        list.Add(item);
    struct Case {
        const wchar_t* text;
        int index;
    };
    const Case cases[] = {
        {L"KG", 0},       {L"kg", 3}, {L"XG", 1},   {L"DEFAULT", 2},
        {L"default", -1}, {L"", 5},   {L"KG ", -1}, {L"控制", -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(CString(c.text));
        int index = 99;
        EXPECT_EQ(StrArrFindStr(list, c.text, index), c.index >= 0 ? TRUE : FALSE);
        EXPECT_EQ(index, c.index);
        EXPECT_EQ(StrArrFindStr(list, c.text), c.index >= 0 ? TRUE : FALSE);
    }
    int index = 99;
    EXPECT_FALSE(StrArrFindStr(CStringArray(), L"KG", index));
    EXPECT_EQ(index, -1);
}

}  // namespace
