// "kplan list" names classes through the class lookups: blank land, built-in codes,
// compound codes with a part the table lacks, and names the drawing gives its own classes.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/arx/acdocman.h"
#include "host/arx/dbpl.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaEnt.h"
#include "record/DKKeys.h"
#include "record/XDataAccess.h"
#include "tests/cli/Json.h"
#include "tests/cli/RunKplan.h"

namespace {

void parcel(double x, const wchar_t* number, const wchar_t* cls) {
    auto* pline = new AcDbPolyline();
    pline->addVertexAt(0, AcGePoint2d(x, 0));
    pline->addVertexAt(1, AcGePoint2d(x + 10, 0));
    pline->addVertexAt(2, AcGePoint2d(x + 10, 10));
    pline->addVertexAt(3, AcGePoint2d(x, 10));
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    AcDbObjectId id = kova::ent::SafeAddToDb(entity);
    ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKBH, number, dk::FAPP_GHDK);
    ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, cls, dk::FAPP_GHDK);
}

TEST(KplanClassNamesTest, ListNamesEveryClassTheLookupsName) {
    AcApDocument* document = acDocManager->appendDocument();
    parcel(0, L"N-1", L"KB");
    parcel(20, L"N-2", L"B1/X9");
    parcel(40, L"N-3", L"ZL");
    parcel(60, L"N-4", L"Z1");
    parcel(80, L"N-5", L"X9");
    ASSERT_EQ(FWriteDataToDict(L"FQMDKXZMS", L"FL_YS_YDGH_Z1", L"村庄自建用地"), 1);
    std::string path = testFolder() + "/names.dxf", error;
    ASSERT_TRUE(dxf::save(*document->database(), path, error)) << error;
    acDocManager->closeDocument(document);

    Outcome run = kplan("list '" + path + "' --format json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    Json rows = Json::parse(run.out);
    ASSERT_EQ(rows.size(), 5u) << run.out;
    std::map<std::string, std::string> names;
    for (std::size_t i = 0; i < rows.size(); ++i)
        names[rows[i]["number"].string()] = rows[i]["class_name"].string();
    EXPECT_EQ(names["N-1"], "空白用地");
    EXPECT_EQ(names["N-2"], "商业用地/X9");
    EXPECT_EQ(names["N-3"], "自留地");
    EXPECT_EQ(names["N-4"], "村庄自建用地");
    EXPECT_EQ(names["N-5"], "");
}

}  // namespace
