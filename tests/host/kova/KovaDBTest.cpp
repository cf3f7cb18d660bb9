// Project parameters kept in the drawing.
#include "host/arx/acdocman.h"
#include "host/arx/dbapserv.h"
#include "host/kova/KovaDB.h"
#include "tests/support/KplanTest.h"

namespace {

class ProjectParamTest : public KplanTest {};

TEST_F(ProjectParamTest, ValuesAreSetReplacedAndDefaulted) {
    KovaDB::CCustomDatabase project = KovaDB::qmGetCustomDatabase();
    const wchar_t* calc = L"核算时用地面积是否采用计算值[是(Y)/否(N)]";
    const wchar_t* cut = L"有范围线统计出表时，与范围线相交地块自动裁剪计算面积[是(Y)/否(N)]";
    CString value;
    EXPECT_EQ(project.GetOtherCustomParam(calc, value, L"Y"), 0);
    EXPECT_EQ(value, CString(L"Y"));

    struct Step {
        const wchar_t* name;
        const wchar_t* value;
    } steps[] = {{calc, L"N"}, {cut, L"Y"}, {calc, L"Y"}, {cut, L""}};
    for (const Step& s : steps)
        ASSERT_EQ(project.SetOtherCustomParam(s.name, s.value), 1);
    EXPECT_EQ(project.GetOtherCustomParam(calc, value, L"?"), 1);
    EXPECT_EQ(value, CString(L"Y"));
    EXPECT_EQ(project.GetOtherCustomParam(cut, value, L"?"), 1);
    EXPECT_EQ(value, CString(L"")) << "an empty value is a value";
    EXPECT_EQ(project.GetOtherCustomParam(L"其它", value, L"d"), 0);
    EXPECT_EQ(value, CString(L"d"));
    EXPECT_EQ(project.SetOtherCustomParam(L"", L"x"), 0);
    EXPECT_EQ(project.SetOtherCustomParam(nullptr, L"x"), 0);

    // Each drawing has its own parameters.
    AcDbDatabase* first = database();
    AcApDocument* second = acDocManager->appendDocument();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(KovaDB::qmGetCustomDatabase(second->database()).GetOtherCustomParam(calc, value), 0);
    EXPECT_EQ(KovaDB::qmGetCustomDatabase(first).GetOtherCustomParam(calc, value), 1);
}

}  // namespace
