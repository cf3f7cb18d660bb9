// The balance of several drawings at once, one per thread, as a batch of kplan stats works:
// each thread loads its drawing as its own current document, measures it and frees it,
// and gets the figures one thread alone gets. Run under ThreadSanitizer by scripts/test.sh.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaDataSet.h"
#include "record/DKKeys.h"
#include "report/PlanReport.h"
#include "tests/support/KplanTest.h"
#include "tests/support/Shapes.h"

namespace kplan::report {
namespace {

class PlanReportThreadsTest : public KplanTest {
  protected:
    // Drawing i: i + 1 residential parcels of 100 x 100 m (1 ha each) and a park of
    // 50 x 20 m (0.1 ha), 100 people a parcel; saved, then closed.
    std::string drawing(int i) {
        AcApDocument* document = acDocManager->appendDocument();
        for (int k = 0; k <= i; ++k)
            parcel(k * 200.0, 0, k * 200.0 + 100, 100, L"R21", L"100");
        parcel(0, 500, 50, 520, L"G1", L"0");
        std::string path = (standards().root() / ("plan" + std::to_string(i) + ".dxf")).string();
        std::string error;
        EXPECT_TRUE(dxf::save(*document->database(), path, error)) << error;
        acDocManager->closeDocument(document);
        acDocManager->setCurDocument(this->document());
        return path;
    }

    void parcel(double x0, double y0, double x1, double y1, const wchar_t* cls,
                const wchar_t* people) {
        AcDbObjectId id = addClosedRectangle(x0, y0, x1, y1);
        ARX_DATA::CFGisXData::SetTo(id, dk::FAPP_GHDK, L"", dk::TYPE_KGDK);
        ARX_DATA::CFGisXData::SetTo(id, dk::FS_DKXZ, cls, dk::FAPP_GHDK);
        ARX_DATA::CFGisXData::SetTo(id, dk::FN_ZRKS, people, dk::FAPP_GHDK);
    }
};

struct Figures {
    double residential = -1, city = -1, perPerson = -1;
    std::string error;
};

// What kplan stats --boundary none measures of a drawing, on this thread.
Figures measureDrawing(const std::string& path) {
    Figures f;
    AcApThreadDocuments own;
    std::unique_ptr<AcDbDatabase> database = dxf::load(path, f.error);
    if (!database) return f;
    AcApDocument* document = acDocManager->appendDocument(std::move(database));
    Report report;
    if (buildPlanReport(findParcels(false), AcDbObjectId(), {}, report, f.error)) {
        for (const Table& table : report.tables) {
            if (table.key != "urban_construction") continue;
            for (const Row& row : table.rows) {
                if (row.code == "R") f.residential = row.values[0];
                if (row.code == "H11") {
                    f.city = row.values[0];
                    f.perPerson = row.values[2];
                }
            }
        }
    }
    acDocManager->closeDocument(document);
    return f;
}

TEST_F(PlanReportThreadsTest, EachThreadMeasuresItsOwnDrawing) {
    standards().copyShipped(L"用地分类/2011国标城乡用地类别.txt");
    CKovaDataSet::FSetCurYDLB(L"2011国标城乡用地类别.txt");
    constexpr int kDrawings = 8, kThreads = 3;
    std::vector<std::string> paths;
    for (int i = 0; i < kDrawings; ++i)
        paths.push_back(drawing(i));
    AcApDocument* mine = acDocManager->curDocument();
    std::vector<Figures> figures(kDrawings);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &paths, &figures] {
            for (int i = t; i < kDrawings; i += kThreads)
                figures[static_cast<std::size_t>(i)] =
                    measureDrawing(paths[static_cast<std::size_t>(i)]);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < kDrawings; ++i) {
        SCOPED_TRACE(i);
        const Figures& f = figures[static_cast<std::size_t>(i)];
        ASSERT_EQ(f.error, "");
        // By construction: i + 1 ha of R, 0.1 ha more of G; (i + 1) * 100 people.
        EXPECT_NEAR(f.residential, i + 1, 1e-9);
        EXPECT_NEAR(f.city, i + 1.1, 1e-9);
        EXPECT_NEAR(f.perPerson, (i + 1.1) * 10000 / ((i + 1) * 100), 0.005);
    }
    // The threads' documents were theirs: this thread's current one is as it was, and
    // every drawing they opened is closed.
    EXPECT_EQ(acDocManager->curDocument(), mine);
    EXPECT_EQ(acDocManager->documentCount(), 1);
}

}  // namespace
}  // namespace kplan::report
