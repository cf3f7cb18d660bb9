#include "host/mfc/CStringArray.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

CStringArray make(std::initializer_list<const wchar_t*> items) {
    CStringArray array;
    for (const wchar_t* item : items)
        array.Add(item);
    return array;
}

std::vector<std::wstring> contents(const CStringArray& array) {
    std::vector<std::wstring> out;
    for (const CString& s : array)
        out.push_back(s.wstr());
    return out;
}

TEST(CStringArrayTest, AddReportsIndicesAndSizes) {
    CStringArray array;
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_EQ(array.Add(L"H11"), 0);
    EXPECT_EQ(array.Add(CString("用地")), 1);
    EXPECT_EQ(array.Add(L""), 2);
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array.GetCount(), 3);
    EXPECT_EQ(array.GetUpperBound(), 2);
    EXPECT_FALSE(array.IsEmpty());
    EXPECT_EQ(contents(array), (std::vector<std::wstring>{L"H11", L"用地", L""}));
    array.RemoveAll();
    EXPECT_TRUE(array.IsEmpty());
}

TEST(CStringArrayTest, OutOfRangeAccessIsDefinedAndTouchesNothing) {
    CStringArray array = make({L"a", L"b"});
    for (INT_PTR bad : {INT_PTR{-1}, INT_PTR{2}, INT_PTR{100}}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(array.GetAt(bad), L"");
        const CStringArray& constant = array;
        EXPECT_EQ(constant[bad], L"");
        array.SetAt(bad, L"x");
        array.ElementAt(bad) = L"written";
        EXPECT_EQ(array.ElementAt(bad), L"");  // the scratch string is emptied on each use
        array[bad] += L"y";
    }
    EXPECT_EQ(contents(array), (std::vector<std::wstring>{L"a", L"b"}));

    array.SetAt(1, L"B");
    array[0] = L"A";
    array.ElementAt(0) += L"!";
    EXPECT_EQ(contents(array), (std::vector<std::wstring>{L"A!", L"B"}));
}

TEST(CStringArrayTest, RemovesRanges) {
    struct Case {
        INT_PTR index;
        INT_PTR count;
        std::vector<std::wstring> expected;
    };
    const Case cases[] = {
        {0, 1, {L"b", L"c", L"d"}},
        {1, 2, {L"a", L"d"}},
        {2, 10, {L"a", L"b"}},
        {3, 1, {L"a", L"b", L"c"}},
        {4, 1, {L"a", L"b", L"c", L"d"}},
        {-1, 1, {L"a", L"b", L"c", L"d"}},
        {1, 0, {L"a", L"b", L"c", L"d"}},
        {1, -2, {L"a", L"b", L"c", L"d"}},
        {0, 4, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "index " << c.index << " count " << c.count);
        CStringArray array = make({L"a", L"b", L"c", L"d"});
        array.RemoveAt(c.index, c.count);
        EXPECT_EQ(contents(array), c.expected);
    }
}

TEST(CStringArrayTest, InsertsCopiesAndGrowsPastTheEnd) {
    struct Case {
        INT_PTR index;
        INT_PTR count;
        std::vector<std::wstring> expected;
    };
    const Case cases[] = {
        {0, 1, {L"X", L"a", L"b"}}, {1, 2, {L"a", L"X", L"X", L"b"}},
        {2, 1, {L"a", L"b", L"X"}}, {4, 1, {L"a", L"b", L"", L"", L"X"}},
        {-1, 1, {L"a", L"b"}},      {1, 0, {L"a", L"b"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "index " << c.index << " count " << c.count);
        CStringArray array = make({L"a", L"b"});
        array.InsertAt(c.index, L"X", c.count);
        EXPECT_EQ(contents(array), c.expected);
    }

    CStringArray array = make({L"a", L"b"});
    array.InsertAt(0, array.GetAt(1));  // an element of the array itself
    EXPECT_EQ(contents(array), (std::vector<std::wstring>{L"b", L"a", L"b"}));

    const CStringArray other = make({L"x", L"y"});
    array.InsertAt(1, &other);
    EXPECT_EQ(contents(array), (std::vector<std::wstring>{L"b", L"x", L"y", L"a", L"b"}));
    array.InsertAt(0, nullptr);
    array.InsertAt(7, &other);
    EXPECT_EQ(contents(array),
              (std::vector<std::wstring>{L"b", L"x", L"y", L"a", L"b", L"", L"", L"x", L"y"}));
    CStringArray self = make({L"1", L"2"});
    self.InsertAt(1, &self);
    EXPECT_EQ(contents(self), (std::vector<std::wstring>{L"1", L"1", L"2", L"2"}));
}

TEST(CStringArrayTest, AppendCopyAndSetSize) {
    CStringArray array = make({L"a"});
    const CStringArray more = make({L"b", L"c"});
    EXPECT_EQ(array.Append(more), 1);
    EXPECT_EQ(array.Append(array), 3);
    EXPECT_EQ(contents(array), (std::vector<std::wstring>{L"a", L"b", L"c", L"a", L"b", L"c"}));

    CStringArray copy;
    copy.Add(L"old");
    copy.Copy(more);
    EXPECT_EQ(copy, more);
    copy.Copy(copy);
    EXPECT_EQ(copy, more);

    struct Case {
        INT_PTR size;
        std::vector<std::wstring> expected;
    };
    const Case cases[] = {
        {4, {L"b", L"c", L"", L""}},
        {1, {L"b"}},
        {0, {}},
        {-3, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.size);
        CStringArray sized = more;
        sized.SetSize(c.size);
        EXPECT_EQ(contents(sized), c.expected);
    }
}

}  // namespace
