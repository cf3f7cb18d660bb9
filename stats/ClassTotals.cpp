#include "stats/ClassTotals.h"

#include <cwchar>
#include <functional>
#include <unordered_set>

#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/ObjectIdHash.h"
#include "stats/BoundaryStats.h"
#include "stats/StatsUtil.h"

namespace {

double areaOf(AcDbObjectId id) {
    double area = 0;
    return CDKBJXDInfo(id).GetArea(area) ? area : 0.0;
}

int integerField(AcDbObjectId id, const wchar_t* key) {
    CString value;
    CDKBJXDInfo(id).GetData(key, value);
    return stats::ToInteger(value);
}

CString trimmed(CString text) {
    text.Trim();
    return text;
}

CString upper(CString text) {
    text.MakeUpper();
    return text;
}

// The first n characters, trimmed.
CString head(const CString& code, int n) {
    return trimmed(code.Left(n));
}

using Test = std::function<bool(const CString& code)>;

// Construction land: the upper-cased code begins with a letter of urban construction land
// or with H itself.
bool construction(const CString& code) {
    CString up = upper(code);
    return !up.IsEmpty() && std::wcschr(L"ABGHMRSUW", up[0]) != nullptr;
}

bool h1(const CString& code) {
    if (upper(code) == L"H") return false;
    CString two = head(code, 2);
    for (const wchar_t* other : {L"H2", L"H3", L"H4", L"H5", L"H9"}) {
        if (two == other) return false;
    }
    return construction(code);
}

bool h11(const CString& code) {
    return h1(code) && upper(code) != L"H1";
}

Test firstTwo(const wchar_t* cls) {
    return [cls](const CString& code) { return head(code, 2) == cls; };
}

bool e(const CString& code) {
    return code.Left(1) == L"E";
}

// area = the land of the listed parcels whose trimmed "FS_DKXZ" passes the test.
int listTotal(const AcDbObjectIdArray& ids, double& area, const Test& test) {
    area = 0;
    for (AcDbObjectId id : ids) {
        CString code;
        CDKBJXDInfo(id).GetData(dk::FS_DKXZ, code);
        if (test(trimmed(code))) area += areaOf(id);
    }
    return 1;
}

// The boundary form of "H", "H1" and "H11": crossing parcels with their part inside.
int boundaryTotal(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                  const AcDbObjectIdArray& cutIds, double& area, const Test& test) {
    std::unordered_set<AcDbObjectId, dk::ObjectIdHash> crossing(cutIds.begin(), cutIds.end());
    area = 0;
    for (AcDbObjectId id : ids) {
        CString code;
        CDKBJXDInfo(id).GetData(dk::FS_DKXZ, code);
        if (!test(trimmed(code))) continue;
        if (crossing.count(id)) {
            AcDbObjectIdArray one;
            one.append(id);
            double inside = 0;
            FGetDKAreaByBoundary(boundary, one, inside);
            area += inside;
        } else {
            area += areaOf(id);
        }
    }
    return 1;
}

// The boundary form of "H2" to "E3": their class measured within the boundary.
int classInBoundary(AcDbObjectId boundary, const wchar_t* cls, const AcDbObjectIdArray& ids,
                    const AcDbObjectIdArray& cutIds, double& area) {
    return FGetDKAreaByBoundary(boundary, CString(cls), ids, cutIds, area, 0, 0);
}

template <typename Read>
int sumOver(const AcDbObjectIdArray& ids, Read read) {
    int n = 0;
    for (AcDbObjectId id : ids)
        n += read(id);
    return n;
}

AcDbObjectIdArray planned() {
    AcDbObjectIdArray ids;
    CDKBJXDInfo::GetDkbj(ids);
    return ids;
}

AcDbObjectIdArray current() {
    AcDbObjectIdArray ids;
    CDKBJXDInfo::GetAllXZYD(ids);
    return ids;
}

// The listed parcels of one kind.
AcDbObjectIdArray ofKind(const AcDbObjectIdArray& ids, bool plannedKind) {
    AcDbObjectIdArray kept;
    for (AcDbObjectId id : ids) {
        CDKBJXDInfo parcel(id);
        if (plannedKind ? parcel.IsDkbj() : parcel.IsXZDkbj()) kept.append(id);
    }
    return kept;
}

double sumArea(const AcDbObjectIdArray& ids) {
    double area = 0;
    for (AcDbObjectId id : ids)
        area += areaOf(id);
    return area;
}

// One class of the "地块类别" field, prefix or whole, added to area.
int oneClass(const CString& cls, const AcDbObjectIdArray& ids, double& area, bool prefix) {
    CString wanted = trimmed(cls);
    if (wanted.IsEmpty()) return 1;
    for (AcDbObjectId id : ids) {
        CString code;
        CDKBJXDInfo(id).GetData(dk::LBL_DKLB, code);
        code = trimmed(code);
        if (prefix) code = head(code, wanted.GetLength());
        if (code == wanted) area += areaOf(id);
    }
    return 1;
}

// The parcels of each class, fetched class by class and concatenated without removing
// repeats.
int classList(const CStringArray& classes, const AcDbObjectIdArray* ids, double& area,
              int currentStatus) {
    AcDbObjectIdArray all;
    for (const CString& cls : classes) {
        AcDbObjectIdArray found;
        if (ids) {
            if (currentStatus) {
                CDKBJXDInfo::GetXZYDByClass(cls, *ids, found);
            } else {
                CDKBJXDInfo::GetDkbjByClass(cls, *ids, found);
            }
        } else if (currentStatus) {
            CDKBJXDInfo::GetXZYDByClass(cls, found);
        } else {
            CDKBJXDInfo::GetDkbjByClass(cls, found);
        }
        all.append(found);
    }
    area += sumArea(all);
    return 1;
}

}  // namespace

int GetDKIdsArea(const AcDbObjectIdArray& ids, double& area) {
    area = 0;
    return stats::Guarded(L"GetDKIdsArea", 1, [&] {
        area = sumArea(ids);
        return 1;
    });
}

int GetGHDKAllArea(double& area) {
    return stats::Guarded(L"GetGHDKAllArea", 1, [&] {
        area += sumArea(planned());
        return 1;
    });
}

int GetXZDKAllArea(double& area) {
    return stats::Guarded(L"GetXZDKAllArea", 1, [&] {
        area += sumArea(current());
        return 1;
    });
}

int GetGHDKAllRKS(int& n) {
    return stats::Guarded(L"GetGHDKAllRKS", 1, [&] {
        n += sumOver(planned(), [](AcDbObjectId id) { return integerField(id, dk::LBL_DKPD); });
        return 1;
    });
}

int GetXZDKAllRKS(int& n) {
    return stats::Guarded(L"GetXZDKAllRKS", 1, [&] {
        n += sumOver(current(), [](AcDbObjectId id) { return integerField(id, dk::LBL_DKPD); });
        return 1;
    });
}

int GetGHDKAllRKSForGIS(int& n) {
    return stats::Guarded(L"GetGHDKAllRKSForGIS", 1, [&] {
        n += sumOver(planned(), [](AcDbObjectId id) { return integerField(id, dk::FN_ZRKS); });
        return 1;
    });
}

int GetXZDKAllRKSForGIS(int& n) {
    return stats::Guarded(L"GetXZDKAllRKSForGIS", 1, [&] {
        n += sumOver(current(), [](AcDbObjectId id) { return integerField(id, dk::FN_ZRKS); });
        return 1;
    });
}

int GetGHDKAllArea(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"GetGHDKAllArea", 1, [&] {
        area += sumArea(ofKind(ids, true));
        return 1;
    });
}

int GetXZDKAllArea(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"GetXZDKAllArea", 1, [&] {
        area += sumArea(ofKind(ids, false));
        return 1;
    });
}

int GetGHDKAllRKSForGIS(const AcDbObjectIdArray& ids, int& n) {
    return stats::Guarded(L"GetGHDKAllRKSForGIS", 1, [&] {
        n += sumOver(ofKind(ids, true),
                     [](AcDbObjectId id) { return integerField(id, dk::FN_ZRKS); });
        return 1;
    });
}

int GetXZDKAllRKSForGIS(const AcDbObjectIdArray& ids, int& n) {
    return stats::Guarded(L"GetXZDKAllRKSForGIS", 1, [&] {
        n += sumOver(ofKind(ids, false),
                     [](AcDbObjectId id) { return integerField(id, dk::FN_ZRKS); });
        return 1;
    });
}

int GetDKAreaByClass(const CString& cls, const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"GetDKAreaByClass", 1, [&] { return oneClass(cls, ids, area, true); });
}

int GetDKAreaByCompareClass(const CString& cls, const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"GetDKAreaByCompareClass", 1,
                          [&] { return oneClass(cls, ids, area, false); });
}

int GetDKAreaByClass(const CStringArray& classes, double& area, int currentStatus) {
    return stats::Guarded(L"GetDKAreaByClass", 1,
                          [&] { return classList(classes, nullptr, area, currentStatus); });
}

int GetDKAreaByClass(const CStringArray& classes, const AcDbObjectIdArray& ids, double& area,
                     int currentStatus) {
    return stats::Guarded(L"GetDKAreaByClass", 1,
                          [&] { return classList(classes, &ids, area, currentStatus); });
}

// ---------------------------------------------------------------------- balance table

int FGetHArea(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetHArea", 1, [&] { return listTotal(ids, area, construction); });
}

int FGetH1Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetH1Area", 1, [&] { return listTotal(ids, area, h1); });
}

int FGetH11Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetH11Area", 1, [&] { return listTotal(ids, area, h11); });
}

int FGetH2Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetH2Area", 1, [&] { return listTotal(ids, area, firstTwo(L"H2")); });
}

int FGetH3Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetH3Area", 1, [&] { return listTotal(ids, area, firstTwo(L"H3")); });
}

int FGetH4Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetH4Area", 1, [&] { return listTotal(ids, area, firstTwo(L"H4")); });
}

int FGetH5Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetH5Area", 1, [&] { return listTotal(ids, area, firstTwo(L"H5")); });
}

int FGetH9Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetH9Area", 1, [&] { return listTotal(ids, area, firstTwo(L"H9")); });
}

int FGetEArea(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetEArea", 1, [&] { return listTotal(ids, area, e); });
}

int FGetE1Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetE1Area", 1, [&] { return listTotal(ids, area, firstTwo(L"E1")); });
}

int FGetE2Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetE2Area", 1, [&] { return listTotal(ids, area, firstTwo(L"E2")); });
}

int FGetE3Area(const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetE3Area", 1, [&] { return listTotal(ids, area, firstTwo(L"E3")); });
}

int FGetBalanceAreas(const AcDbObjectIdArray& ids, std::array<double, 12>& areas) {
    return stats::Guarded(L"FGetBalanceAreas", 1, [&] {
        const Test tests[12] = {construction,
                                h1,
                                h11,
                                firstTwo(L"H2"),
                                firstTwo(L"H3"),
                                firstTwo(L"H4"),
                                firstTwo(L"H5"),
                                firstTwo(L"H9"),
                                e,
                                firstTwo(L"E1"),
                                firstTwo(L"E2"),
                                firstTwo(L"E3")};
        areas.fill(0);
        // Each total adds the same areas in the same order as its own function does.
        for (AcDbObjectId id : ids) {
            CString code;
            CDKBJXDInfo(id).GetData(dk::FS_DKXZ, code);
            CString cls = trimmed(code);
            bool known = false;
            double area = 0;
            for (std::size_t i = 0; i < areas.size(); ++i) {
                if (!tests[i](cls)) continue;
                if (!known) area = areaOf(id);
                known = true;
                areas[i] += area;
            }
        }
        return 1;
    });
}

int FGetHArea(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
              double& area) {
    return stats::Guarded(L"FGetHArea", 1,
                          [&] { return boundaryTotal(boundary, ids, cutIds, area, construction); });
}

int FGetH1Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return stats::Guarded(L"FGetH1Area", 1,
                          [&] { return boundaryTotal(boundary, ids, cutIds, area, h1); });
}

int FGetH11Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                const AcDbObjectIdArray& cutIds, double& area) {
    return stats::Guarded(L"FGetH11Area", 1,
                          [&] { return boundaryTotal(boundary, ids, cutIds, area, h11); });
}

int FGetH2Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"H2", ids, cutIds, area);
}

int FGetH3Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"H3", ids, cutIds, area);
}

int FGetH4Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"H4", ids, cutIds, area);
}

int FGetH5Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"H5", ids, cutIds, area);
}

int FGetH9Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"H9", ids, cutIds, area);
}

int FGetEArea(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
              double& area) {
    return classInBoundary(boundary, L"E", ids, cutIds, area);
}

int FGetE1Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"E1", ids, cutIds, area);
}

int FGetE2Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"E2", ids, cutIds, area);
}

int FGetE3Area(AcDbObjectId boundary, const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
               double& area) {
    return classInBoundary(boundary, L"E3", ids, cutIds, area);
}
