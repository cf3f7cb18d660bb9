// What a sibling module does with kplan: open a plan, list the planned parcels of a land-use
// class, total the construction land (H) inside the planning scope line and fill the
// parcels of the class in its colour.
//
//   sibling [DRAWING.dxf [CLASS [OUT.dxf]]]
//
// Without a drawing it opens the sample plan installed with kplan; the class defaults to B1.
#include <cstdio>
#include <memory>
#include <string>

#include "draw/Hatching.h"
#include "host/arx/acdocman.h"
#include "host/dxf/Dxf.h"
#include "host/kova/KovaDataSet.h"
#include "host/kova/KovaDraw.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKScan.h"
#include "standard/KovaAttribSet.h"
#include "stats/ClassTotals.h"
#include "stats/GpcAdaptor.h"

namespace {

std::string handleOf(AcDbObjectId id) {
    ACHAR text[17] = {};
    id.handle().getIntoAsciiBuffer(text);
    return CString(text).ToUtf8();
}

std::string field(const CDKBJXDInfo& parcel, const wchar_t* key) {
    CString value;
    parcel.GetData(key, value);
    return value.ToUtf8();
}

}  // namespace

int main(int argc, char** argv) {
    // The standards the library found for itself; the sample plan lies beside them.
    std::string standards = CKovaDataSet::FGetGStandardDirPath().ToUtf8();
    std::string path = argc > 1 ? argv[1] : standards + "/../samples/sample-plan.dxf";
    CString cls = CString::FromUtf8(argc > 2 ? argv[2] : "B1");
    std::printf("standards: %s\n", standards.c_str());

    std::string error;
    std::unique_ptr<AcDbDatabase> database = dxf::load(path, error);
    if (!database) {
        std::fprintf(stderr, "sibling: %s\n", error.c_str());
        return 1;
    }
    AcApDocument* document =
        acDocManager->appendDocument(std::move(database), CString::FromUtf8(path));

    AcDbObjectIdArray ofClass;
    CDKBJXDInfo::GetDkbjByClass(cls, ofClass);
    std::printf("planned parcels of class %s: %d\n", cls.ToUtf8().c_str(), ofClass.length());
    for (AcDbObjectId id : ofClass) {
        CDKBJXDInfo parcel(id);
        double area = 0;
        parcel.GetArea(area);
        std::printf("  %s %s %s %.4f\n", handleOf(id).c_str(), field(parcel, dk::FS_DKBH).c_str(),
                    field(parcel, dk::FS_DKXZ).c_str(), area);
    }

    // The largest scope line is the plan's; parcels crossing it count with their part inside.
    AcDbObjectIdArray scopes, planned, counted, crossing;
    dk::SelectParcels(L"*POLYLINE", dk::FAPP_GHFWX, true, scopes);
    kova::ent::GetIdsAsAreaOrder(scopes);
    if (scopes.isEmpty()) {
        std::fprintf(stderr, "sibling: %s: no planning scope line\n", path.c_str());
        acDocManager->closeDocument(document);
        return 1;
    }
    CDKBJXDInfo::GetDkbj(planned);
    for (AcDbObjectId id : planned) {
        int where = FIsDKAndBoundaryInter(scopes[0], id);
        if (where >= 0) counted.append(id);
        if (where == 1) crossing.append(id);
    }
    double h = 0;
    FGetHArea(scopes[0], counted, crossing, h);
    std::printf("scope line %s: %d planned parcels inside, %d crossing it\n",
                handleOf(scopes[0]).c_str(), counted.length(), crossing.length());
    std::printf("H inside the scope line: %.2f ha\n", h);

    AcCmColor colour = CKovaAttribSet::FGetCmColorFromCur(cls, 1);
    int hatched = 0;
    for (AcDbObjectId id : ofClass) {
        AcDbObjectId hatch;
        if (!FHatch(id, hatch)) continue;
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, hatch, AcDb::kForWrite) == Acad::eOk) {
            entity->setColor(colour);
            entity->close();
        }
        ++hatched;
    }
    std::printf("hatched %d parcels in (%d,%d,%d)\n", hatched, colour.red(), colour.green(),
                colour.blue());

    int status = 0;
    if (argc > 3) {
        if (dxf::save(*document->database(), argv[3], error)) {
            std::printf("saved %s\n", argv[3]);
        } else {
            std::fprintf(stderr, "sibling: %s\n", error.c_str());
            status = 1;
        }
    }
    acDocManager->closeDocument(document);
    return status;
}
