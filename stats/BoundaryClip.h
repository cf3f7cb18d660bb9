#pragma once
// The clip of many curves against one boundary, as the boundary statistics do it: the
// boundary is read once; a curve whose answer its extents already give is not clipped at
// all, and one near the boundary is clipped against the boundary's edges near it only,
// on the same integer grid. Every answer is the one FIsDKAndBoundaryInter and the
// polyline form of Gpc_Cal would give, without adding and erasing polylines in the
// drawing.
#include <polyclipping/clipper.hpp>

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "host/gpc/gpc.h"
#include "kplan/Export.h"
#include "record/ObjectIdHash.h"

namespace stats {

// A curve as the clipper sees it: its vertices after arc approximation, and their extents.
struct KPLAN_API Outline {
    std::vector<gpc_vertex> points;
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
};

// The outline GetDataFromAcdbPolyline reads; false when the curve's vertices cannot be
// read.
KPLAN_API bool ReadOutline(AcDbObjectId id, Outline& outline);
// The same from vertices and bulges already read; chords is room to work in.
KPLAN_API void MakeOutline(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges,
                           Outline& outline);
KPLAN_API void MakeOutline(const AcGePoint3dArray& points, const AcGeDoubleArray& bulges,
                           Outline& outline, AcGePoint3dArray& chords);
// Adds the outline to the polygon as one contour that is not a hole.
KPLAN_API void AddOutline(const Outline& outline, gpc_polygon* polygon);
// The area kova::ent::GetArea gives the closed polyline made of the contour.
KPLAN_API double ContourArea(const gpc_vertex_list& contour);
// The message of a fold that ran out of contours.
KPLAN_API void PrintFoldStopped();

class KPLAN_API BoundaryClip {
  public:
    explicit BoundaryClip(AcDbObjectId boundary);
    ~BoundaryClip();
    BoundaryClip(const BoundaryClip&) = delete;
    BoundaryClip& operator=(const BoundaryClip&) = delete;

    // As FIsDKAndBoundaryInter(boundary, curve): -1, 0 or 1. For 1, pieces holds the
    // areas of the contours the intersection of [boundary, curve] yields, smallest first;
    // otherwise it is empty.
    int classify(AcDbObjectId curve, std::vector<double>& pieces);

    // The answer for one curve of many: classify's result and pieces, and whether the
    // curve could be read (classify tells the user of a curve read and found outside).
    struct Answer {
        int overlap = -1;
        std::vector<double> pieces;
        bool read = false;
    };
    // The answers of classify for every curve, in order, telling the user nothing: the
    // curves are read one after the other and the clipping is shared among the
    // processor's cores. Each answer is the one classify gives.
    void classifyMany(const AcDbObjectIdArray& curves, std::vector<Answer>& answers);

    // Keeps each curve's answer, so that a curve classified again costs a lookup; only
    // while nothing in the drawing changes (see ClipSession).
    void keepAnswers() { keepAnswers_ = true; }

    // How many classifications needed a clip (for measuring the shortcut).
    long clips() const { return clips_ + main_.clips; }
    // How many of those clipped against the whole boundary rather than its edges near the
    // curve.
    long fullClips() const { return fullClips_ + main_.fullClips; }

  private:
    // Where gpc_polygon_clip puts two polygons on Clipper's integer grid.
    struct Frame {
        double ox = 0, oy = 0, scale = 1;
        bool operator==(const Frame&) const = default;
    };
    struct Edge {
        gpc_vertex a, b;
        double minX, minY, maxX, maxY;
    };

    // What the work on one curve needs, kept from curve to curve; one per thread.
    struct Workspace {
        AcGePoint3dArray raw;
        AcGeDoubleArray bulges;
        AcGePoint3dArray chords;
        Outline outline;
        std::vector<std::size_t> starts;
        Frame frame;
        ClipperLib::Path ring;  // the boundary on the grid of frame
        long clips = 0, fullClips = 0;
    };
    // Answers of place and finish besides -1, 0 and 1.
    static constexpr int kClip = 2;      // the curve must be clipped
    static constexpr int kNeedArea = 3;  // the clip needs the curve's own area first

    void buildIndex();
    bool edgeNear(double minX, double minY, double maxX, double maxY) const;
    bool inside(const gpc_vertex& point) const;
    int classifyNow(AcDbObjectId curve, std::vector<double>& pieces);
    // The answer from the curve read into ws.raw and ws.bulges where its extents give it,
    // else kClip, with clearOfEdges set when no edge of the boundary comes near the curve.
    int place(Workspace& ws, bool& clearOfEdges) const;
    // The rest, touching nothing of the drawing: ownArea is read already unless
    // clearOfEdges, when kNeedArea asks for it.
    int finish(Workspace& ws, bool clearOfEdges, double ownArea, std::vector<double>& pieces) const;
    // Whether ws.outline, made of ws.raw, has no crossing or touching of its own.
    bool simpleOutline(Workspace& ws) const;
    // The clip of ws.outline: -1 when nothing is left, else 0 or 1 as classify says.
    int clip(Workspace& ws, double ownArea, std::vector<double>& pieces) const;
    // The areas of the contours gpc_polygon_clip(GPC_INT, boundary, curve) gives, in its
    // order.
    std::vector<double> intersect(const Outline& outline) const;
    // The same from Clipper, with the boundary cut down to its edges near the curve; none
    // when that cannot be done safely.
    std::optional<std::vector<double>> intersectNear(Workspace& ws, const Outline& outline) const;

    bool readable_ = false;
    Outline boundary_;
    gpc_polygon polygon_{0, nullptr, nullptr};
    std::vector<Edge> edges_;
    // A grid of cells over the boundary's extents, each listing the edges that reach it,
    // and horizontal bands listing the edges that span them.
    double cellW_ = 1, cellH_ = 1;
    int nx_ = 0, ny_ = 0;
    std::vector<std::vector<int>> cells_;
    std::vector<std::vector<int>> bands_;
    double margin_ = 0;
    Workspace main_;
    long clips_ = 0, fullClips_ = 0;
    bool keepAnswers_ = false;
    bool lastRead_ = false;  // the last curve classified now could be read
    std::unordered_map<AcDbObjectId, Answer, dk::ObjectIdHash> answers_;
};

// A run of statistics over a drawing that does not change while it runs (the balance
// table of a drawing: its twelve totals, the tabulation, the parcels' overlap tests).
// While a session lives, each boundary is read once and each curve clipped against it
// once, however many statistics ask; the answers are the same as without it. Sessions
// may nest; the clips are dropped when the outermost one ends. A session serves the thread
// that opened it (each thread of a batch works on a drawing of its own).
class KPLAN_API ClipSession {
  public:
    ClipSession();
    ~ClipSession();
    ClipSession(const ClipSession&) = delete;
    ClipSession& operator=(const ClipSession&) = delete;
};

// The clip of a boundary: the session's when a session is open, else a new one.
KPLAN_API std::shared_ptr<BoundaryClip> ClipOf(AcDbObjectId boundary);

}  // namespace stats
