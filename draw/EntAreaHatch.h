#pragma once
// A list of temporary solid fills, made with the host's HATCH command, that its owner can
// hide, show and erase together.
#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API CFEntAreaHatch {
  public:
    CFEntAreaHatch() = default;
    ~CFEntAreaHatch() = default;
    CFEntAreaHatch(const CFEntAreaHatch&) = default;
    CFEntAreaHatch& operator=(const CFEntAreaHatch&) = default;

    // The colour of the next fills; fills already made keep theirs.
    void SetHatchColor(int colorIndex);
    // Puts an entity on the list (so that ClearHatch erases it too).
    void AddBoundaryEnt(AcDbObjectId id);

    // AreaHatch(boundary, 1, 1, 0).
    int AreaHatch(AcDbObjectId boundary);
    // Fills the boundary with a solid hatch of the colour by running ".hatch" "solid" with
    // the boundary and an empty answer, command echo off meanwhile, and puts the new hatch
    // on the list. With keepBoundary non-zero the boundary goes on the list first, whatever
    // follows. 0 when enabled is 0, the boundary is invalid or the command fails. The
    // command words are wide text, as this host's command interface reads them, so the
    // path does make a fill here.
    int AreaHatch(AcDbObjectId boundary, int colorIndex, int enabled, int keepBoundary);

    // Hides (hide non-zero) or shows every listed entity, under a document lock; the
    // result of the last one (0 for an empty list).
    int HideHatch(int hide);
    // Erases every listed entity, under a document lock; 1 when all were erased. The list
    // is kept: a second call tries the same ids again (and gives 0).
    int ClearHatch();

    int colorIndex() const { return colorIndex_; }
    const AcDbObjectIdArray& hatches() const { return hatches_; }

  private:
    int colorIndex_ = 1;
    AcDbObjectIdArray hatches_;
};
