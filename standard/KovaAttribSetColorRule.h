#pragma once
// How one member of the class colour family finds its colour: which key of "地块颜色",
// which table, which cache prefix, and which steps it takes. The hatch colour lookups
// use the same engine with the key "图案颜色".
#include "host/arx/dbcolor.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"
#include "standard/ClassTableFiles.h"

struct KPLAN_API ColourRule {
    classtable::Source source = classtable::Source::Current;
    const wchar_t* defaultKey = L"";   // key of section "地块颜色"
    const wchar_t* cachePrefix = L"";  // of the drawing cache "FQMDKCOLOR"
    const wchar_t* blankLayer = L"";   // the layer whose colour "KB" takes
    bool drawingCache = true;
    bool tableDefault = true;
    bool blankRule = true;
    bool compound = true;
    // Index members cache a compound code's colour as "%d", full-colour members as found.
    bool indexResult = true;

    static const ColourRule kFill, kBoundary, kPattern;

    ColourRule Standard() const;   // without the drawing cache
    ColourRule ClassOnly() const;  // nor the table-wide colour
    ColourRule National(classtable::Source table, bool compoundFallback) const;

    // -1 when nothing is found.
    int Index(const CString& code, int aboveGround) const;
    // Left at its default when nothing is found.
    AcCmColor Colour(const CString& code, int aboveGround) const;
};
