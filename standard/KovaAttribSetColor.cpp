// The class colour family and the object's colour map.
#include <cwchar>

#include "host/kova/KovaDB.h"
#include "host/kova/fgdutil.h"
#include "record/XDataAccess.h"
#include "standard/ClassTableFiles.h"
#include "standard/KovaAttribSet.h"
#include "standard/KovaAttribSetColorRule.h"

namespace {

using classtable::Source;

int decimal(const CString& text) {
    return static_cast<int>(std::wcstol(text, nullptr, 10));
}

int byte(int value) {
    return ((value % 256) + 256) % 256;
}

// A colour text that was read: -1 in index when nothing usable was found.
struct Found {
    int index = -1;
    bool trueColour = false;
    AcCmColor colour;

    bool ok() const { return index != -1; }
};

Found fromIndex(int index) {
    Found found;
    found.index = index;
    if (index != -1) found.colour.setColorIndex(static_cast<Adesk::UInt16>(index));
    return found;
}

// Red, green and blue as decimal texts, each taken modulo 256; nothing when the host
// refuses the colour.
Found fromRGB(const CStringArray& parts) {
    auto part = [&parts](int i) {
        return static_cast<Adesk::UInt8>(byte(decimal(parts.GetAt(i))));
    };
    Found found;
    if (found.colour.setRGB(part(0), part(1), part(2)) != Acad::eOk) return Found();
    found.trueColour = true;
    found.index = found.colour.colorIndex();
    return found;
}

// "r,g,b" (optionally in brackets), an index, or a pair "a/b" of which a counts.
Found parseColourText(const CString& text) {
    CString value = text;
    int slash = value.Find(L'/');
    if (slash >= 0) value = value.Left(slash);
    if (slash >= 0 && value.IsEmpty()) return Found();
    value.TrimLeft(L'(');
    value.TrimRight(L')');
    CStringArray parts;
    if (fgdutil::Str2StrArr(value, parts, L",") == 3) return fromRGB(parts);
    value.Trim();
    return fromIndex(decimal(value));
}

// A cached text: exactly three "," parts are red, green, blue; else an index.
Found parseCached(const CString& text) {
    CStringArray parts;
    if (fgdutil::Str2StrArr(text, parts, L",") == 3) return fromRGB(parts);
    return fromIndex(decimal(text));
}

CString cacheText(const Found& found, bool asIndex) {
    CString text;
    if (found.trueColour && !asIndex) {
        text.Format(L"%d,%d,%d", static_cast<int>(found.colour.red()),
                    static_cast<int>(found.colour.green()), static_cast<int>(found.colour.blue()));
    } else {
        text.Format(L"%d", found.index);
    }
    return text;
}

Found lookUp(const CString& rawCode, int aboveGround, const ColourRule& rule) {
    CString code = rawCode;
    code.Trim();
    if (code.IsEmpty()) return Found();

    CString cacheKey = CString(rule.cachePrefix) + code + (aboveGround == 0 ? L"_DX" : L"");
    CString cached;
    if (rule.drawingCache && FReadColorToDict(cacheKey, cached)) return parseCached(cached);

    auto remember = [&](const Found& found, bool asIndex) {
        if (rule.drawingCache && found.ok()) FWriteColorToDict(cacheKey, cacheText(found, asIndex));
        return found;
    };

    if (rule.blankRule && code == L"KB") {
        KovaDB::CLayerParam param;
        if (!KovaDB::qmGetLayerParam(rule.blankLayer, param, KovaDB::qmGetQmCustomDatabase())) {
            return fromIndex(7);
        }
        return remember(fromIndex(param.nColorIndex), true);
    }

    CString text;
    auto table = classtable::Open(rule.source, aboveGround);
    if (table) {
        if (rule.tableDefault) text = table->Setting(L"地块颜色", rule.defaultKey);
        if (text.IsEmpty()) {
            const ParsedClassTable::Entry* entry = table->Find(code);
            if (entry) text = entry->colour;
        }
    }
    if (text.IsEmpty()) {
        CStringArray parts;
        if (!rule.compound || fgdutil::Str2StrArr(code, parts, L"/") < 2) return Found();
        return remember(lookUp(parts.GetAt(0), aboveGround, rule), rule.indexResult);
    }
    return remember(parseColourText(text), false);
}

int indexOf(const CString& code, int aboveGround, const ColourRule& rule) {
    return lookUp(code, aboveGround, rule).index;
}

AcCmColor colourOf(const CString& code, int aboveGround, ColourRule rule) {
    rule.indexResult = false;
    return lookUp(code, aboveGround, rule).colour;
}

}  // namespace

const ColourRule ColourRule::kFill = {Source::Current, L"填充颜色", L"FL_FZ_YDGH_",
                                      L"FL_FZ_YDGH_KB"};
const ColourRule ColourRule::kBoundary = {Source::Current, L"边界颜色", L"FL_YS_YDGH_",
                                          L"FL_YS_YDGH_KB"};
const ColourRule ColourRule::kPattern = {Source::Current, L"图案颜色", L"", L"FL_FZ_YDGH_KB",
                                         false};

ColourRule ColourRule::Standard() const {
    ColourRule rule = *this;
    rule.drawingCache = false;
    return rule;
}

ColourRule ColourRule::ClassOnly() const {
    ColourRule rule = Standard();
    rule.tableDefault = false;
    return rule;
}

ColourRule ColourRule::National(Source table, bool compoundFallback) const {
    ColourRule rule = Standard();
    rule.source = table;
    rule.blankRule = false;
    rule.compound = compoundFallback;
    return rule;
}

int ColourRule::Index(const CString& code, int aboveGround) const {
    return indexOf(code, aboveGround, *this);
}

AcCmColor ColourRule::Colour(const CString& code, int aboveGround) const {
    return colourOf(code, aboveGround, *this);
}

int CKovaAttribSet::FGetColorFromCur(const CString& code, int aboveGround) {
    return ColourRule::kFill.Index(code, aboveGround);
}

int CKovaAttribSet::FGetColorFromCur(const CString& code) {
    return FGetColorFromCur(code, 1);
}

int CKovaAttribSet::FGetColorFromCurStandard(const CString& code, int aboveGround) {
    return ColourRule::kFill.Standard().Index(code, aboveGround);
}

int CKovaAttribSet::FGetColorFromCurClass(const CString& code, int aboveGround) {
    return ColourRule::kFill.ClassOnly().Index(code, aboveGround);
}

AcCmColor CKovaAttribSet::FGetCmColorFromCur(const CString& code, int aboveGround) {
    return ColourRule::kFill.Colour(code, aboveGround);
}

AcCmColor CKovaAttribSet::FGetCmColorFromCurStandard(const CString& code, int aboveGround) {
    return ColourRule::kFill.Standard().Colour(code, aboveGround);
}

AcCmColor CKovaAttribSet::FGetCmColorFromCurClass(const CString& code, int aboveGround) {
    return ColourRule::kFill.ClassOnly().Colour(code, aboveGround);
}

int CKovaAttribSet::FGetDKBJColorFromCur(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.Index(code, aboveGround);
}

int CKovaAttribSet::FGetDKBJColorFromCurStandard(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.Standard().Index(code, aboveGround);
}

int CKovaAttribSet::FGetDKBJColorFromCurClass(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.ClassOnly().Index(code, aboveGround);
}

AcCmColor CKovaAttribSet::FGetDKBJCmColorFromCur(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.Colour(code, aboveGround);
}

AcCmColor CKovaAttribSet::FGetDKBJCmColorFromCurStandard(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.Standard().Colour(code, aboveGround);
}

AcCmColor CKovaAttribSet::FGetDKBJCmColorFromCurClass(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.ClassOnly().Colour(code, aboveGround);
}

int CKovaAttribSet::FGetColorFromOLDGB(const CString& code, int aboveGround) {
    return ColourRule::kFill.National(Source::OldNational, false).Index(code, aboveGround);
}

int CKovaAttribSet::FGetColorFromOLDGB(const CString& code) {
    return FGetColorFromOLDGB(code, 1);
}

int CKovaAttribSet::FGetColorFromNEWGB(const CString& code, int aboveGround) {
    return ColourRule::kFill.National(Source::NewNational, false).Index(code, aboveGround);
}

int CKovaAttribSet::FGetColorFromNEWGB(const CString& code) {
    return FGetColorFromNEWGB(code, 1);
}

int CKovaAttribSet::FGetDKBJColorFromOLDGB(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.National(Source::OldNational, true).Index(code, aboveGround);
}

int CKovaAttribSet::FGetDKBJColorFromNEWGB(const CString& code, int aboveGround) {
    return ColourRule::kBoundary.National(Source::NewNational, true).Index(code, aboveGround);
}

void CKovaAttribSet::AddColorMap(const CString& code, const CString& colour, int type) {
    if (code.IsEmpty() || colour.IsEmpty()) return;
    for (int t = 0; t < 4; ++t) {
        if (type == t || type < 0 || type > 3) m_mapDKColor[t][code] = colour;
    }
}

int CKovaAttribSet::FindColorByClass(const CString& code, CString& colour, int type) const {
    if (type < 0 || type > 3) return 0;
    auto found = m_mapDKColor[type].find(code);
    if (found == m_mapDKColor[type].end()) return 0;
    colour = found->second;
    return 1;
}

void CKovaAttribSet::ClearColorMap(int type) {
    for (int t = 0; t < 4; ++t) {
        if (type == t || type < 0 || type > 3) m_mapDKColor[t].clear();
    }
}
