// Layer affixes, layer names of classes and the normalisation of class codes.
#include "standard/ClassTableFiles.h"
#include "standard/KovaAttribSet.h"
#include "standard/KovaAttribSetColorRule.h"

namespace {

using classtable::Source;

const wchar_t* const kLayerSection = L"用地图层前后缀";

// Reads the affixes of one kind ("规划" or "现状"); the hatch prefix only when asked.
int affixes(const wchar_t* kind, CString& boundaryPrefix, CString& boundarySuffix,
            CString* hatchPrefix, CString& hatchSuffix) {
    auto table = classtable::Open(Source::Current);
    if (!table) return 0;
    auto setting = [&](const wchar_t* what) {
        return table->Setting(kLayerSection, CString(kind) + what);
    };
    boundaryPrefix = setting(L"用地边界前缀");
    boundarySuffix = setting(L"用地边界后缀");
    if (hatchPrefix) *hatchPrefix = setting(L"用地填充前缀");
    hatchSuffix = setting(L"用地填充后缀");
    return 1;
}

enum class Layer { Boundary, Hatch };

// The class line's own layer, else the fixed layer, else prefix + code + suffix.
CString layerIn(const ParsedClassTable& table, const CString& rawCode, Layer which) {
    CString code = rawCode;
    code.Trim();
    if (code.IsEmpty()) return CString();
    const ParsedClassTable::Entry* entry = classtable::FindOrFirst(table, code);
    if (entry != nullptr) {
        const CString& own = which == Layer::Boundary ? entry->boundaryLayer : entry->hatchLayer;
        if (!own.IsEmpty()) return own;
        code = entry->code;
    } else if (code.Find(L'/') > 0) {
        code = code.Left(code.Find(L'/'));
    }
    CString kind = table.IsPlanning() ? L"规划" : L"现状";
    const wchar_t* part = which == Layer::Boundary ? L"用地边界" : L"用地填充";
    CString fixed = table.Setting(kLayerSection, kind + part + L"图层");
    if (!fixed.IsEmpty()) return fixed;
    return table.Setting(kLayerSection, kind + part + L"前缀") + code +
           table.Setting(kLayerSection, kind + part + L"后缀");
}

CString layerOf(const CString& code, int aboveGround, Layer which) {
    auto table = classtable::Open(Source::Current, aboveGround);
    return table ? layerIn(*table, code, which) : CString();
}

int layerAndColour(Source source, const CString& rawCode, CString& boundaryLayer,
                   CString& hatchLayer, int& colourIndex) {
    CString code = rawCode;
    code.Trim();
    auto table = classtable::Open(source);
    if (!table || code.IsEmpty() || classtable::FindOrFirst(*table, code) == nullptr) return 0;
    boundaryLayer = layerIn(*table, code, Layer::Boundary);
    hatchLayer = boundaryLayer + L"-TC";
    colourIndex = ColourRule::kFill.National(source, true).Index(code, 1);
    return 1;
}

}  // namespace

int CKovaAttribSet::FGetGHDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                           CString& hatchSuffix) {
    return affixes(L"规划", boundaryPrefix, boundarySuffix, nullptr, hatchSuffix);
}

int CKovaAttribSet::FGetGHDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                           CString& hatchPrefix, CString& hatchSuffix) {
    return affixes(L"规划", boundaryPrefix, boundarySuffix, &hatchPrefix, hatchSuffix);
}

int CKovaAttribSet::FGetXZDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                           CString& hatchSuffix) {
    return affixes(L"现状", boundaryPrefix, boundarySuffix, nullptr, hatchSuffix);
}

int CKovaAttribSet::FGetXZDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                           CString& hatchPrefix, CString& hatchSuffix) {
    return affixes(L"现状", boundaryPrefix, boundarySuffix, &hatchPrefix, hatchSuffix);
}

CString CKovaAttribSet::FGetLayerNameFromCur(const CString& code) {
    return layerOf(code, 1, Layer::Boundary);
}

CString CKovaAttribSet::FGetTCLayerNameFromCur(const CString& code) {
    return layerOf(code, 1, Layer::Hatch);
}

CString CKovaAttribSet::FGetDXKJLayerNameFromCur(const CString& code) {
    return layerOf(code, 0, Layer::Boundary);
}

CString CKovaAttribSet::FGetDXKJTCLayerNameFromCur(const CString& code) {
    return layerOf(code, 0, Layer::Hatch);
}

int CKovaAttribSet::FExchangeClass(CString& code) {
    auto table = classtable::Open(Source::Current);
    if (!table) return 0;
    const ParsedClassTable::Entry* entry = table->Find(code);
    if (entry == nullptr) return 0;
    code = entry->code;
    return 1;
}

int CKovaAttribSet::FGetDKLayerAndColorFromOldGB(const CString& code, CString& boundaryLayer,
                                                 CString& hatchLayer, int& colourIndex) {
    return layerAndColour(Source::CommonOldNational, code, boundaryLayer, hatchLayer, colourIndex);
}

int CKovaAttribSet::FGetDKLayerAndColorFromNewGB(const CString& code, CString& boundaryLayer,
                                                 CString& hatchLayer, int& colourIndex) {
    return layerAndColour(Source::CommonNewNational, code, boundaryLayer, hatchLayer, colourIndex);
}

CString CKovaAttribSet::FGetRoadDKClass() {
    auto table = classtable::Open(Source::Current);
    CString road = table ? table->Setting(L"道路地块", L"用地类别") : CString();
    return road.IsEmpty() ? CString(L"S1") : road;
}
