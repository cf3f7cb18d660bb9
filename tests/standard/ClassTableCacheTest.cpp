// The shared cache of parsed class tables: one parse per unchanged file, every edit seen.
#include "standard/ClassTableCache.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "standard/KovaAttribSet.h"
#include "tests/support/KplanTest.h"

namespace {

namespace fs = std::filesystem;

class ClassTableCacheTest : public KplanTest {
  protected:
    // Dates the file back, as a table edited some time ago is.
    static void age(const fs::path& path, int hours = 1) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(hours));
    }
    static CString pathText(const fs::path& path) { return CString::FromUtf8(path.string()); }
};

TEST_F(ClassTableCacheTest, AnEditOnDiskIsSeenByTheNextLookup) {
    fs::path table = standards().writeClassTable(L"R2:居住用地 $1 @ANSI31/2/45 #甲\n");
    age(table);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"R2", 1), 1);
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(L"R2"), CString(L"居住用地"));
    // The same size, written a moment later: only the time tells.
    standards().writeClassTable(L"R2:居住场地 $3 @ANSI37/2/45 #乙\n");
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"R2", 1), 3);
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(L"R2"), CString(L"居住场地"));
    CString pattern;
    double scale = 0, angle = 0;
    CKovaAttribSet::FGetHatchFromCur(L"R2", pattern, scale, angle);
    EXPECT_EQ(pattern, CString(L"ANSI37"));
    EXPECT_EQ(CKovaAttribSet::FGetBZFromCur(L"R2"), CString(L"乙"));
    // The table readers share the cache.
    age(table);
    CKovaAttribSet set;
    set.FReadCurFile();
    EXPECT_EQ(set.NameMap().at(L"R2"), CString(L"居住场地"));
    standards().writeClassTable(L"R2:居住绿地 $3 @ANSI37/2/45 #乙\n[现状地块]\n");
    set.FReadCurFile();
    EXPECT_EQ(set.NameMap().at(L"R2"), CString(L"居住绿地"));
    EXPECT_EQ(CKovaAttribSet::FCurStandardIsGH(), 0);
    fs::remove(table);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"R2", 1), -1) << "removed";
    EXPECT_EQ(CKovaAttribSet::FCurStandardIsGH(), 1);
    EXPECT_EQ(CKovaAttribSet::FGetDKXZMCFromCurStandard(L"R2"), CString(L""));
}

TEST_F(ClassTableCacheTest, AnUnchangedFileIsParsedOnce) {
    fs::path table = standards().writeClassTable(L"R2:居住用地 $1\n");
    age(table, 2);
    const fs::file_time_type time = fs::last_write_time(table);
    auto first = ClassTableCache::Get(pathText(table));
    ASSERT_TRUE(first);
    EXPECT_EQ(ClassTableCache::Get(pathText(table)), first);
    // Size and time decide: content changed behind them is not read again...
    standards().writeClassTable(L"R2:居住用地 $2\n");
    fs::last_write_time(table, time);
    EXPECT_EQ(ClassTableCache::Get(pathText(table)), first);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"R2", 1), 1);
    // ...a new time is.
    age(table, 1);
    auto second = ClassTableCache::Get(pathText(table));
    EXPECT_NE(second, first);
    EXPECT_EQ(CKovaAttribSet::FGetColorFromCurClass(L"R2", 1), 2);
}

TEST_F(ClassTableCacheTest, FreshFilesAndCachingOffAreReadEveryTime) {
    fs::path table = standards().writeClassTable(L"R2:居住用地 $1\n");
    auto first = ClassTableCache::Get(pathText(table));
    ASSERT_TRUE(first);
    EXPECT_NE(ClassTableCache::Get(pathText(table)), first) << "written just now: not kept";
    age(table);
    ClassTableCache::SetCaching(false);
    auto a = ClassTableCache::Get(pathText(table));
    EXPECT_NE(ClassTableCache::Get(pathText(table)), a);
    ClassTableCache::SetCaching(true);
    auto b = ClassTableCache::Get(pathText(table));
    EXPECT_EQ(ClassTableCache::Get(pathText(table)), b);
    EXPECT_FALSE(ClassTableCache::Get(L""));
    EXPECT_FALSE(ClassTableCache::Get(pathText(table) + L".missing"));
}

}  // namespace
