#include "stats/BoundaryStats.h"

#include <memory>
#include <vector>

#include "draw/DisplayHelpers.h"
#include "host/arx/acutads.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaSelSet.h"
#include "host/kova/fgdutil.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "stats/BoundaryClip.h"
#include "stats/GpcAdaptor.h"
#include "stats/StatsUtil.h"

namespace {

using stats::kAreaEpsilon;

// The record area in hectares as the statistics take it: computed, or as entered (islands
// not taken off). 0 when the record cannot give one.
double recordArea(AcDbObjectId id, bool calculated) {
    CDKBJXDInfo parcel(id);
    double area = 0;
    int ok = calculated ? parcel.GetCalcArea(area) : parcel.GetInputArea(area);
    return ok ? area : 0.0;
}

// The pieces of a crossing curve in square metres. In typed-in mode each piece is
// prorated to the curve's entered "FD_YDMJ", which is taken as square metres as it
// stands. Pieces of at most 1e-5 are dropped.
double piecesArea(const std::vector<double>& pieces, AcDbObjectId curve, bool calculated) {
    double entered = 0, own = 0;
    bool prorate = false;
    if (!calculated) {
        CString value;
        if (CDKBJXDInfo(curve).GetAttrib(dk::FD_YDMJ, value)) {
            entered = stats::ToNumber(value);
            prorate = entered > kAreaEpsilon;
        }
        if (prorate) kova::ent::GetArea(curve, own);
    }
    double sum = 0;
    for (double a : pieces) {
        if (prorate && own > 0) a = entered * a / own;
        if (a > kAreaEpsilon) sum += a;
    }
    return sum;
}

// The live islands linked to the parcel under the current link name only.
AcDbObjectIdArray islandsOf(AcDbObjectId parcel) {
    AcDbObjectIdArray linked, live;
    kova::dat::GetSoftIds(parcel, dk::LINK_ISLAND, linked);
    for (AcDbObjectId id : linked) {
        if (kova::ent::FIsValidId(id)) live.append(id);
    }
    return live;
}

// The clipped measure: the land of the parcels inside the boundary, in square metres.
double clippedMetres(stats::BoundaryClip& clip, const AcDbObjectIdArray& ids, bool calculated) {
    double metres = 0;
    std::vector<stats::BoundaryClip::Answer> answers;
    clip.classifyMany(ids, answers);
    std::vector<double> islandPieces;
    for (int i = 0; i < ids.length(); ++i) {
        AcDbObjectId id = ids[i];
        const stats::BoundaryClip::Answer& answer = answers[static_cast<std::size_t>(i)];
        if (answer.overlap < 0) {
            if (answer.read) stats::PrintFoldStopped();
            continue;
        }
        if (answer.overlap == 0) {
            // Wholly inside: the record area, which already accounts for the islands.
            metres += recordArea(id, calculated) * 10000;
            continue;
        }
        metres += piecesArea(answer.pieces, id, calculated);
        for (AcDbObjectId island : islandsOf(id)) {
            int islandOverlap = clip.classify(island, islandPieces);
            if (islandOverlap == 0) {
                metres -= recordArea(island, calculated) * 10000;
            } else if (islandOverlap == 1) {
                metres -= piecesArea(islandPieces, island, calculated);
            }
        }
    }
    return metres;
}

bool classMatches(AcDbObjectId id, const CString& wanted, int exact) {
    if (wanted.IsEmpty()) return false;
    CString code;
    CDKBJXDInfo(id).GetData(dk::FS_DKXZ, code);
    code.Trim();
    if (exact) return code == wanted;
    CString cut = code.Left(wanted.GetLength());
    cut.Trim();
    return cut == wanted;
}

AcDbObjectIdArray matching(const CString& cls, const AcDbObjectIdArray& ids, int exact) {
    CString wanted = cls;
    wanted.Trim();
    AcDbObjectIdArray kept;
    for (AcDbObjectId id : ids) {
        if (classMatches(id, wanted, exact)) kept.append(id);
    }
    return kept;
}

bool clipping(AcDbObjectId boundary) {
    return kova::ent::FIsValidId(boundary) && CDKBJXDInfo::FCutBoundaryCalcArea();
}

// Runs measure once per boundary, or once with a null boundary when there is none, and
// adds each result to area.
template <typename Measure>
int perBoundary(const AcDbObjectIdArray& boundaries, double& area, Measure measure) {
    if (boundaries.isEmpty()) {
        double part = 0;
        measure(AcDbObjectId(), part);
        area += part;
        return 1;
    }
    for (AcDbObjectId boundary : boundaries) {
        double part = 0;
        measure(boundary, part);
        area += part;
    }
    return 1;
}

// Adds a to the row of key, appending the row when it is new.
void addToRow(CStringArray& keys, AcGeDoubleArray& areas, const CString& key, double a) {
    int index = -1;
    if (fgdutil::StrArrFindStr(keys, key, index)) {
        areas[index] += a;
    } else {
        keys.Add(key);
        areas.append(a);
    }
}

}  // namespace

int FGetDKAreaByBoundaryGPC(AcDbObjectId boundary, const AcDbObjectIdArray& ids, double& area) {
    return stats::Guarded(L"FGetDKAreaByBoundaryGPC", 1, [&] {
        bool calculated = CDKBJXDInfo::FIsCalcArea() != 0;
        if (!clipping(boundary)) {
            for (AcDbObjectId id : ids)
                area += recordArea(id, calculated);
            return 1;
        }
        area = clippedMetres(*stats::ClipOf(boundary), ids, calculated) / 10000;
        return 1;
    });
}

int FGetDKAreaByBoundaryGPC(AcDbObjectId boundary, const CString& cls, const AcDbObjectIdArray& ids,
                            const AcDbObjectIdArray& /*cutIds*/, double& area, int exact, int) {
    return stats::Guarded(L"FGetDKAreaByBoundaryGPC", 1, [&] {
        area = 0;
        AcDbObjectIdArray kept = matching(cls, ids, exact);
        if (!clipping(boundary)) {
            // Here the record's own area, islands entered or not.
            for (AcDbObjectId id : kept) {
                double a = 0;
                if (CDKBJXDInfo(id).GetArea(a)) area += a;
            }
            return 1;
        }
        bool calculated = CDKBJXDInfo::FIsCalcArea() != 0;
        area = clippedMetres(*stats::ClipOf(boundary), kept, calculated) / 10000;
        return 1;
    });
}

int FGetDKAreaByBoundaryGPC(AcDbObjectId boundary, const CString& cls, const AcDbObjectIdArray& ids,
                            double& area, int exact) {
    return stats::Guarded(L"FGetDKAreaByBoundaryGPC", 1, [&] {
        return FGetDKAreaByBoundaryGPC(boundary, matching(cls, ids, exact), area);
    });
}

int FGetDKAreaByBoundary(AcDbObjectId boundary, const AcDbObjectIdArray& ids, double& area) {
    return FGetDKAreaByBoundaryGPC(boundary, ids, area);
}

int FGetDKAreaByBoundary(AcDbObjectId boundary, const CString& cls, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& cutIds, double& area, int exact, int option) {
    return FGetDKAreaByBoundaryGPC(boundary, cls, ids, cutIds, area, exact, option);
}

int FGetDKAreaByBoundary(AcDbObjectId boundary, const CString& cls, const AcDbObjectIdArray& ids,
                         double& area, int exact) {
    return FGetDKAreaByBoundaryGPC(boundary, cls, ids, area, exact);
}

int FGetDKAreaByBoundary(AcDbObjectId boundary, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& /*cutIds*/, double& area, int) {
    return FGetDKAreaByBoundaryGPC(boundary, ids, area);
}

int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries, const AcDbObjectIdArray& ids,
                         double& area) {
    return perBoundary(boundaries, area, [&](AcDbObjectId b, double& part) {
        FGetDKAreaByBoundaryGPC(b, ids, part);
    });
}

int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries, const CString& cls,
                         const AcDbObjectIdArray& ids, const AcDbObjectIdArray& cutIds,
                         double& area, int exact, int option) {
    return perBoundary(boundaries, area, [&](AcDbObjectId b, double& part) {
        FGetDKAreaByBoundaryGPC(b, cls, ids, cutIds, part, exact, option);
    });
}

int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries, const CString& cls,
                         const AcDbObjectIdArray& ids, double& area, int exact) {
    return perBoundary(boundaries, area, [&](AcDbObjectId b, double& part) {
        FGetDKAreaByBoundaryGPC(b, cls, ids, part, exact);
    });
}

int FGetDKAreaByBoundary(const AcDbObjectIdArray& boundaries, const AcDbObjectIdArray& ids,
                         const AcDbObjectIdArray& /*cutIds*/, double& area, int) {
    return perBoundary(boundaries, area, [&](AcDbObjectId b, double& part) {
        FGetDKAreaByBoundaryGPC(b, ids, part);
    });
}

int FGetDKAreaByBoundary(AcDbObjectId boundary, const CString& cls, double& area, int exact,
                         int planned) {
    return stats::Guarded(L"FGetDKAreaByBoundary", 0, [&] {
        area = 0;
        stats::Outline outline;
        if (!kova::ent::FIsValidId(boundary) || !stats::ReadOutline(boundary, outline)) return 0;
        AcGePoint3dArray polygon(static_cast<int>(outline.points.size()));
        for (const gpc_vertex& v : outline.points)
            polygon.append({v.x, v.y, 0.0});
        // A polygon selection in the CAD host sees what the screen shows.
        PanEnt(boundary);
        resbuf* filter = acutBuildList(RTDXF0, L"POLYLINE,LWPOLYLINE", -3, 1001,
                                       planned ? dk::LIST_GHDK : dk::FAPP_XZDK, 0);
        AcDbObjectIdArray found;
        {
            kova::CFArxSelSet selection;
            if (selection.crossingPolygonSelect(polygon, filter) == kova::CFArxSelSet::kSelected) {
                selection.asArray(found);
            }
        }
        acutRelRb(filter);
        AcDbObjectIdArray kept;
        if (exact) {
            CDKBJXDInfo::GetDkbjByClassCompare(cls, found, kept, planned);
        } else {
            CDKBJXDInfo::GetDkbjByClass(cls, found, kept, planned);
        }
        if (!kept.isEmpty()) FGetDKAreaByBoundaryGPC(boundary, kept, area);
        return 1;
    });
}

int FTJDKAreaByBoundary(const AcDbObjectIdArray& boundaries, const AcDbObjectIdArray& parcels,
                        CStringArray& majorClasses, AcGeDoubleArray& majorAreas,
                        CStringArray& classes, AcGeDoubleArray& classAreas) {
    majorClasses.RemoveAll();
    majorAreas.removeAll();
    classes.RemoveAll();
    classAreas.removeAll();
    return stats::Guarded(L"FTJDKAreaByBoundary", 1, [&] {
        bool calculated = CDKBJXDInfo::FIsCalcArea() != 0;
        bool clipped = !boundaries.isEmpty() && CDKBJXDInfo::FCutBoundaryCalcArea();
        std::vector<std::shared_ptr<stats::BoundaryClip>> clips;
        if (clipped) {
            for (AcDbObjectId boundary : boundaries)
                clips.push_back(stats::ClipOf(boundary));
        }
        // Every parcel against every boundary at once, the clipping shared among cores.
        std::vector<std::vector<stats::BoundaryClip::Answer>> answers(clips.size());
        for (std::size_t c = 0; c < clips.size(); ++c)
            clips[c]->classifyMany(parcels, answers[c]);
        std::vector<double> islandPieces;
        for (int i = 0; i < parcels.length(); ++i) {
            AcDbObjectId id = parcels[i];
            double a = 0;
            if (!clipped) {
                a = recordArea(id, calculated) * 10000;
            } else {
                for (std::size_t c = 0; c < clips.size(); ++c) {
                    const stats::BoundaryClip::Answer& answer =
                        answers[c][static_cast<std::size_t>(i)];
                    if (answer.overlap == -1 && answer.read) stats::PrintFoldStopped();
                    if (answer.overlap == 0) {
                        // Replaces what earlier boundaries gave.
                        a = recordArea(id, calculated) * 10000;
                    } else if (answer.overlap == 1) {
                        a += piecesArea(answer.pieces, id, calculated);
                        for (AcDbObjectId island : islandsOf(id)) {
                            int islandOverlap = clips[c]->classify(island, islandPieces);
                            // The tabulation adds an island lying wholly inside, unlike the
                            // measure, which takes it off.
                            if (islandOverlap == 0) {
                                a += recordArea(island, calculated) * 10000;
                            } else if (islandOverlap == 1) {
                                a -= piecesArea(islandPieces, island, calculated);
                            }
                        }
                    }
                }
            }
            if (!(a > kAreaEpsilon)) continue;
            CString code;
            CDKBJXDInfo(id).GetAttrib(dk::FS_DKXZ, code);
            if (code.IsEmpty()) continue;
            addToRow(majorClasses, majorAreas, code.Left(1), a);
            addToRow(classes, classAreas, code, a);
        }
        for (double& v : majorAreas)
            v /= 10000;
        for (double& v : classAreas)
            v /= 10000;
        return 1;
    });
}
