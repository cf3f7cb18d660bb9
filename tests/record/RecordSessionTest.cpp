#include "record/RecordSession.h"

#include <vector>

#include "record/DKBJXDInfo.h"
#include "record/XDataAccess.h"
#include "tests/record/ParcelFixture.h"

class RecordSessionTest : public ParcelTest {
  protected:
    // What a statistic reads of a parcel: kind, generation, fields by key and label, and a
    // caller's value through a read that finds nothing.
    static std::vector<CString> reads(AcDbObjectId id) {
        CDKBJXDInfo parcel(id);
        std::vector<CString> seen{CString(std::to_wstring(parcel.IsDkbj()).c_str()),
                                  CString(std::to_wstring(parcel.IsXZDkbj()).c_str()),
                                  CString(std::to_wstring(CheckDKDataVer(id)).c_str())};
        for (const wchar_t* key :
             {dk::FS_DKXZ, dk::LBL_DKLB, dk::FN_ZRKS, dk::LBL_DKPD, dk::FD_YDMJ, dk::FS_BZ}) {
            CString value = L"caller's";
            int found = parcel.GetData(key, value);
            seen.push_back(CString(std::to_wstring(found).c_str()) + L" " + value);
            value = L"caller's";
            found = parcel.GetAttrib(key, value);
            seen.push_back(CString(std::to_wstring(found).c_str()) + L" " + value);
        }
        double area = -1, calculated = -1, input = -1;
        parcel.GetArea(area);
        parcel.GetCalcArea(calculated);
        parcel.GetInputArea(input);
        for (double a : {area, calculated, input})
            seen.push_back(CString(std::to_wstring(a).c_str()));
        return seen;
    }
};

// Every generation reads the same in a session, the first time and from what it keeps;
// writes through the record are seen at once, and other writes once the session is over.
TEST_F(RecordSessionTest, ReadsAsWithoutASession) {
    AcDbObjectId third = planned({{dk::FS_DKXZ, L"R21"},
                                  {dk::FN_ZRKS, L"150"},
                                  {dk::FD_YDMJ, L"20000"},
                                  {dk::FS_BZ, L"商住混合"}});
    AcDbObjectId status = current({{dk::FS_DKXZ, L"M1"}});
    AcDbObjectId gen2 = second({{L"地块类别", L"B1"}, {L"总人口数", L"250"}});
    AcDbObjectId gen1 = first({{L"地块类别", L"G1"}, {L"地块坡度", L"0.02"}});
    AcDbObjectId bare = addRectangle(0, 0, 10, 10);
    std::vector<AcDbObjectId> all{third, status, gen2, gen1, bare};
    std::vector<std::vector<CString>> alone;
    for (AcDbObjectId id : all)
        alone.push_back(reads(id));
    EXPECT_EQ(alone[0][3], L"1 R21");
    EXPECT_EQ(alone[0][9], L"1 150");        // the label maps to "FN_ZRKS"
    EXPECT_EQ(alone[0][10], L"0 caller's");  // as an attribute it is no field: untouched
    {
        dk::RecordSession records;
        EXPECT_TRUE(dk::RecordSession::IsOpen());
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t i = 0; i < all.size(); ++i)
                EXPECT_EQ(reads(all[i]), alone[i]) << "parcel " << i << ", pass " << pass;
        }
        ASSERT_EQ(CDKBJXDInfo(third).SetData(dk::FS_DKXZ, L"B2"), 1);
        CString cls;
        CDKBJXDInfo(third).GetData(dk::FS_DKXZ, cls);
        EXPECT_EQ(cls, L"B2");
    }
    EXPECT_FALSE(dk::RecordSession::IsOpen());
    ASSERT_EQ(ARX_DATA::CFGisXData::SetTo(status, dk::FS_DKXZ, L"M2"), 1);
    CString cls;
    CDKBJXDInfo(status).GetData(dk::FS_DKXZ, cls);
    EXPECT_EQ(cls, L"M2");
}
