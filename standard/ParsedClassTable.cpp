#include "standard/ParsedClassTable.h"

#include <cwchar>

#include "host/kova/fgdutil.h"
#include "record/XDataAccess.h"
#include "standard/ClassTableLine.h"
#include "standard/KovaAttribSet.h"

namespace {

// The first "/"-split part or the whole text when the split yields none.
CString firstPart(const CString& text, const wchar_t* separator) {
    CStringArray parts;
    if (fgdutil::Str2StrArr(text, parts, separator) == 0) return text;
    return parts.GetAt(0);
}

// The hatch field after "@": cut at a later marker, then name/scale/angle. A "#" is cut
// at "&", not at "#", so a remark written straight after the field stays in it and the
// angle is read from "0 #备注" as 0.
ParsedClassTable::Hatch readHatch(const CString& afterAt) {
    CString text = afterAt;
    text.Trim();
    if (text.Find(L'*') > 0) {
        text = firstPart(text, L"*");
    } else if (text.Find(L'&') > 0) {
        text = firstPart(text, L"&");
    } else if (text.Find(L'#') > 0) {
        text = firstPart(text, L"&");
    }
    text.Trim();
    ParsedClassTable::Hatch hatch;
    CStringArray parts;
    if (fgdutil::Str2StrArr(text, parts, L"/") != 3) return hatch;
    hatch.complete = true;
    hatch.pattern = parts.GetAt(0);
    hatch.scale = CKovaAttribSet::FCutNum(std::wcstod(parts.GetAt(1), nullptr), 0);
    hatch.angle = CKovaAttribSet::FCutNum(std::wcstod(parts.GetAt(2), nullptr), 0);
    return hatch;
}

}  // namespace

CString ParsedClassTable::Key(const CString& code) {
    CString key = code;
    key.Trim();
    for (int i = 0; i < key.GetLength(); ++i) {
        wchar_t c = key.GetAt(i);
        if (c >= L'a' && c <= L'z') key.SetAt(i, static_cast<wchar_t>(c - L'a' + L'A'));
    }
    return key;
}

std::shared_ptr<const ParsedClassTable> ParsedClassTable::Load(const CString& path) {
    if (path.IsEmpty() || !fgbfile::FileExist(path)) return nullptr;
    fgbfile::CFStdioFile file;
    if (!file.Open(path, fgbfile::CFStdioFile::modeRead | fgbfile::CFStdioFile::typeText)) {
        return nullptr;
    }
    std::shared_ptr<ParsedClassTable> table(new ParsedClassTable(path));
    CString line;
    while (file.ReadString(line)) {
        line.Trim();
        if (table->planning_ && (line == L"[现状用地]" || line == L"[现状地块]")) {
            table->planning_ = 0;
        }
        if (line.IsEmpty() || line.GetAt(0) == L';' || line.GetAt(0) == L'[') continue;
        table->classLines_.push_back(line);
        table->addLine(line);
    }
    file.Close();
    CStringArray sections;
    table->ini_.GetSections(sections);
    for (const CString& section : sections) {
        CStringArray keys, values;
        table->ini_.GetValue(section, keys, values);
        for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
            CString value = values.GetAt(i);
            value.Trim();
            table->settings_.try_emplace(Key(section) + L"\n" + Key(keys.GetAt(i)), value);
        }
    }
    return table;
}

void ParsedClassTable::addLine(const CString& trimmed) {
    CStringArray parts;
    if (fgdutil::Str2StrArr(trimmed, parts, L":") < 2) return;
    CString code = parts.GetAt(0);
    code.Trim();
    if (code.IsEmpty()) return;
    auto [at, added] = entries_.try_emplace(Key(code));
    Entry& entry = at->second;
    if (added) entry.code = code;

    const CString& body = parts.GetAt(1);
    CStringArray pieces;
    if (!entry.hasColour && fgdutil::Str2StrArr(body, pieces, L"$") >= 2) {
        entry.hasColour = true;
        FGetColorNumFromStr(pieces.GetAt(1), entry.colour);
    }
    if (!entry.hasHatch && fgdutil::Str2StrArr(body, pieces, L"@") >= 2) {
        entry.hasHatch = true;
        entry.hatch = readHatch(pieces.GetAt(1));
    }

    ClassTableLine fields;
    if (fields.parse(trimmed)) {
        if (!fields.name.IsEmpty()) entry.name = fields.name;
        if (!fields.remark.IsEmpty()) entry.remark = fields.remark;
    }
    if (fields.parseBlankMarked(trimmed)) {
        if (!fields.boundaryLayer.IsEmpty()) entry.boundaryLayer = fields.boundaryLayer;
        if (!fields.hatchLayer.IsEmpty()) entry.hatchLayer = fields.hatchLayer;
    }
}

const ParsedClassTable::Entry* ParsedClassTable::Find(const CString& code) const {
    auto found = entries_.find(Key(code));
    return found == entries_.end() ? nullptr : &found->second;
}

CString ParsedClassTable::Setting(const wchar_t* section, const wchar_t* key) const {
    auto found = settings_.find(Key(section) + L"\n" + Key(key));
    return found == settings_.end() ? CString() : found->second;
}
