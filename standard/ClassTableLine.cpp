#include "standard/ClassTableLine.h"

#include <cwchar>

namespace {

bool isBlank(wchar_t c) {
    return c == L' ' || c == L'\t';
}

// The field after the marker at `at`, up to the first blank or stop character.
CString fieldAt(const CString& line, int at, const wchar_t* stops) {
    if (at < 0) return CString();
    int start = at + 1;
    int end = start;
    while (end < line.GetLength()) {
        wchar_t c = line.GetAt(end);
        if (isBlank(c) || std::wcschr(stops, c) != nullptr) break;
        ++end;
    }
    CString field = line.Mid(start, end - start);
    field.Trim();
    return field;
}

// Leftmost occurrence; with `blankBefore`, only where a blank precedes it, never at 0.
int markerAt(const CString& line, wchar_t marker, bool blankBefore) {
    int found = -1;
    for (int i = line.GetLength() - 1; i >= (blankBefore ? 1 : 0); --i) {
        if (line.GetAt(i) != marker) continue;
        if (blankBefore && !isBlank(line.GetAt(i - 1))) continue;
        found = i;
    }
    return found;
}

// Code and name, shared by both readers; -1 when the line is no class line.
int splitCode(const CString& line, CString& code, CString& name) {
    if (line.IsEmpty() || line.GetAt(0) == L';' || line.GetAt(0) == L'[') return -1;
    int colon = markerAt(line, L':', false);
    if (colon <= 0) return -1;
    code = line.Left(colon);
    code.Trim();
    if (code.IsEmpty()) return -1;
    name = fieldAt(line, colon, L"$@*&#");
    return colon;
}

}  // namespace

bool ClassTableLine::parse(const CString& rawLine) {
    CString line = rawLine;
    line.Trim();
    *this = ClassTableLine();
    if (splitCode(line, code, name) < 0) return false;
    colour = fieldAt(line, markerAt(line, L'$', false), L"@*&#");
    hatch = fieldAt(line, markerAt(line, L'@', false), L"*&#");
    boundaryLayer = fieldAt(line, markerAt(line, L'*', false), L"&#");
    hatchLayer = fieldAt(line, markerAt(line, L'&', false), L"#");
    int hash = markerAt(line, L'#', false);
    if (hash >= 0) {
        remark = line.Mid(hash + 1);
        remark.Trim();
    }
    return true;
}

bool ClassTableLine::parseBlankMarked(const CString& rawLine) {
    CString line = rawLine;
    line.Trim();
    *this = ClassTableLine();
    if (splitCode(line, code, name) < 0) return false;
    colour = fieldAt(line, markerAt(line, L'$', true), L"@*&#");
    boundaryLayer = fieldAt(line, markerAt(line, L'*', true), L"&#");
    hatchLayer = fieldAt(line, markerAt(line, L'&', true), L"#");
    return true;
}
