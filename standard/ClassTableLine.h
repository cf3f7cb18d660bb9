#pragma once
// One line of a class table taken apart: "CODE:name $colour @hatch *layer &hatch layer
// #remark". The two readers of the tables find the markers differently; both live
// here so that their difference stays visible side by side.
#include "host/mfc/CString.h"
#include "kplan/Export.h"

struct KPLAN_API ClassTableLine {
    CString code, name, colour, hatch, boundaryLayer, hatchLayer, remark;

    // Every marker at its leftmost place in the line. False for lines that are no
    // class line (empty, comment, section header, no ":" or ":" first, empty code).
    bool parse(const CString& rawLine);
    // "$", "*" and "&" only where a blank stands before them; "@" and "#" only end
    // the fields before them, so hatch and remark stay empty.
    bool parseBlankMarked(const CString& rawLine);
};
