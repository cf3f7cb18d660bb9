// Class names and remarks, and the conversion of 1990 codes to 2011 ones.
#include "host/kova/fgbfile.h"
#include "host/kova/fgdutil.h"
#include "record/XDataAccess.h"
#include "standard/ClassTableFiles.h"
#include "standard/KovaAttribSet.h"

namespace {

using classtable::Source;

const wchar_t* const kNameDict = L"FQMDKXZMS";
const wchar_t* const kDictPrefixes[] = {L"FL_YS_YDGH_", L"FL_YS_YDXZ_"};

// Names of codes that no national table lists but planners draw.
CString builtInName(const CString& code) {
    static const struct {
        const wchar_t* code;
        const wchar_t* name;
    } names[] = {{L"KB", L"空白用地"}, {L"GS", L"高速公路用地"}, {L"ZG", L"在建工地"},
                 {L"KS", L"矿山用地"}, {L"CG", L"城改用地"},     {L"ZL", L"自留地"},
                 {L"QT", L"其他用地"}, {L"TD", L"铁道用地"}};
    CString key = ParsedClassTable::Key(code);
    for (const auto& n : names) {
        if (key == n.code) return n.name;
    }
    return CString();
}

CString drawingName(const CString& code) {
    for (const wchar_t* prefix : kDictPrefixes) {
        CString name;
        if (FReadDataFromDict(kNameDict, prefix + code, name) && !name.IsEmpty()) return name;
    }
    return CString();
}

// The name of one code without splitting it.
CString nameOfOne(const ParsedClassTable* table, const CString& code, bool drawing) {
    CString name = drawing ? drawingName(code) : CString();
    if (name.IsEmpty() && table != nullptr) {
        const ParsedClassTable::Entry* entry = table->Find(code);
        if (entry != nullptr) name = entry->name;
    }
    return name.IsEmpty() ? builtInName(code) : name;
}

CString nameOf(Source source, const CString& rawCode, bool drawing) {
    CString code = rawCode;
    code.Trim();
    if (code.IsEmpty()) return CString();
    auto table = classtable::Open(source);
    CString name = nameOfOne(table.get(), code, drawing);
    if (!name.IsEmpty() || code.Find(L'/') < 0) return name;
    CStringArray parts;
    fgdutil::Str2StrArr(code, parts, L"/");
    CString joined;
    bool any = false;
    for (INT_PTR i = 0; i < parts.GetSize(); ++i) {
        CString part = parts.GetAt(i);
        part.Trim();
        CString partName = part.IsEmpty() ? CString() : nameOfOne(table.get(), part, drawing);
        any = any || !partName.IsEmpty();
        joined += (i ? L"/" : L"") + (partName.IsEmpty() ? part : partName);
    }
    return any ? joined : CString();
}

CString remarkOf(Source source, const CString& rawCode) {
    CString code = rawCode;
    code.Trim();
    auto table = classtable::Open(source);
    if (!table || code.IsEmpty()) return CString();
    const ParsedClassTable::Entry* entry = table->Find(code);
    if (entry == nullptr || entry->remark.IsEmpty()) entry = classtable::FindOrFirst(*table, code);
    return entry ? entry->remark : CString();
}

}  // namespace

int CKovaAttribSet::FFindClassFromCurStandard(const CString& code) {
    CString key = code;
    key.Trim();
    auto table = classtable::Open(Source::Current);
    return table && !key.IsEmpty() && classtable::FindOrFirst(*table, key) ? 1 : 0;
}

int CKovaAttribSet::FFindClassFromCur(const CString& code) {
    if (FFindClassFromCurStandard(code)) return 1;
    CString key = code;
    key.Trim();
    if (key.IsEmpty()) return 0;
    for (const wchar_t* prefix : kDictPrefixes) {
        CString name;
        if (FReadDataFromDict(kNameDict, prefix + key, name)) return 1;
    }
    return 0;
}

CString CKovaAttribSet::FGetDKXZMCFromCur(const CString& code) {
    return nameOf(Source::Current, code, true);
}

CString CKovaAttribSet::FGetDKXZMCFromCurStandard(const CString& code) {
    return nameOf(Source::Current, code, false);
}

CString CKovaAttribSet::FGetDKXZMCFromNEWGB(const CString& code) {
    return nameOf(Source::NewNational, code, false);
}

CString CKovaAttribSet::FGetDKXZMCFromOLDGB(const CString& code) {
    return nameOf(Source::OldNational, code, false);
}

int CKovaAttribSet::FGetDKXZMCFromOldNewTbl(const CString& oldCode, CString& newCode,
                                            CString& newName) {
    CString wanted = ParsedClassTable::Key(oldCode);
    if (wanted.IsEmpty()) return 0;
    CString path = FGetCurStandardFile(L"参数配置\\", L"新旧标准代码转换输入表.txt");
    fgbfile::CFStdioFile file;
    if (path.IsEmpty() ||
        !file.Open(path, fgbfile::CFStdioFile::modeRead | fgbfile::CFStdioFile::typeText)) {
        return 0;
    }
    CString line;
    while (file.ReadString(line)) {
        line.Trim();
        if (line.IsEmpty() || line.GetAt(0) == L';' || line.GetAt(0) == L'[') continue;
        CStringArray fields;
        if (fgdutil::Str2StrArr(line, fields, L",") < 4) continue;
        for (INT_PTR i = 0; i < fields.GetSize(); ++i)
            fields.ElementAt(i).Trim();
        if (fields.GetAt(0).IsEmpty() || fields.GetAt(2).IsEmpty()) continue;
        if (ParsedClassTable::Key(fields.GetAt(0)) != wanted) continue;
        newCode = fields.GetAt(2);
        newName = fields.GetAt(3);
        return 1;
    }
    return 0;
}

CString CKovaAttribSet::FGetBZFromCur(const CString& code) {
    return remarkOf(Source::Current, code);
}

CString CKovaAttribSet::FGetBZFromNEWGB(const CString& code) {
    return remarkOf(Source::NewNational, code);
}

CString CKovaAttribSet::FGetBZFromOLDGB(const CString& code) {
    return remarkOf(Source::OldNational, code);
}
