#include "bench/ParcelDrawing.h"

#include <cmath>
#include <random>

#include "host/arx/acutads.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/dxf/Dxf.h"

namespace bench {

namespace {

const wchar_t* const kClasses[] = {L"R2", L"B1", L"A33", L"G1", L"S1", L"M1", L"U12", L"E1"};
const wchar_t* const kNames[] = {L"二类居住用地", L"商业用地",     L"中小学用地", L"公园绿地",
                                 L"城市道路用地", L"一类工业用地", L"供电用地",   L"水域"};

void addRecord(AcDbPolyline* pline, int index, std::mt19937& random) {
    std::vector<std::wstring> fields;
    fields.push_back(L"FS_DKBH");
    fields.push_back(L"A-" + std::to_wstring(index));
    int kind = static_cast<int>(random() % 8);
    fields.push_back(L"FS_DKXZ");
    fields.push_back(kClasses[kind]);
    fields.push_back(L"FS_YDMC");
    fields.push_back(kNames[kind]);
    for (int f = 3; f < 20; ++f) {
        fields.push_back(L"FD_F" + std::to_wstring(f));
        fields.push_back(std::to_wstring(static_cast<double>(random() % 100000) / 100.0));
    }
    resbuf* head = acutBuildList(1001, L"FAPP_GHDK", 1000, L"规划地块", 1002, L"{", 0);
    resbuf* tail = head;
    while (tail->rbnext)
        tail = tail->rbnext;
    for (const std::wstring& text : fields) {
        tail->rbnext = acutBuildList(1000, text.c_str(), 0);
        tail = tail->rbnext;
    }
    tail->rbnext = acutBuildList(1002, L"}", 0);
    pline->setXData(head);
    acutRelRb(head);
}

}  // namespace

bool makeParcelDrawing(const std::string& path, int count, std::string& error) {
    AcDbDatabase database;
    AcDbRegAppTable* apps = nullptr;
    database.getRegAppTable(apps, AcDb::kForWrite);
    auto* app = new AcDbRegAppTableRecord();
    app->setName(L"FAPP_GHDK");
    apps->add(app);
    app->close();
    apps->close();
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, database.modelSpaceId(), AcDb::kForWrite) != Acad::eOk) {
        error = "no model space";
        return false;
    }
    std::mt19937 random(20240601);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < count; ++i) {
        double cx = 500000 + (i % 400) * 150.0, cy = 3000000 + (i / 400) * 150.0;
        int n = 4 + static_cast<int>(random() % 37);
        bool bulges = i % 4 == 0;
        auto* pline = new AcDbPolyline(static_cast<unsigned int>(n));
        for (int k = 0; k < n; ++k) {
            double a = 2 * M_PI * k / n;
            double r = 40 + 25 * unit(random);
            double x = std::round((cx + r * std::cos(a)) * 1000) / 1000;
            double y = std::round((cy + r * std::sin(a)) * 1000) / 1000;
            pline->addVertexAt(static_cast<unsigned int>(k), AcGePoint2d(x, y),
                               bulges && k % 3 == 0 ? 0.25 : 0.0);
        }
        pline->setClosed(true);
        space->appendAcDbEntity(pline);
        addRecord(pline, i, random);
        pline->close();
    }
    space->close();
    return dxf::save(database, path, error);
}

}  // namespace bench
