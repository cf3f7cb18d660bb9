#include "draw/ParcelLayerNames.h"

#include "host/kova/KovaError.h"
#include "host/kova/fgdutil.h"
#include "standard/KovaAttribSet.h"

namespace {

struct Lookup {
    ParcelLayerKind kind;
    bool planned;

    bool hatch() const {
        return kind == ParcelLayerKind::Hatch || kind == ParcelLayerKind::UndergroundHatch;
    }
    bool underground() const {
        return kind == ParcelLayerKind::UndergroundBoundary ||
               kind == ParcelLayerKind::UndergroundHatch;
    }
    // Underground parcels have no blank-land branch for their hatch.
    bool blankBranch() const { return kind != ParcelLayerKind::UndergroundHatch; }

    CString key(const CString& code) const {
        CString key = hatch() ? L"FL_FZ_" : L"FL_YS_";
        key += planned ? L"YDGH_" : L"YDXZ_";
        key += code;
        if (underground()) key += L"_DX";
        return key;
    }

    CString fromStandard(const CString& code) const {
        switch (kind) {
            case ParcelLayerKind::Boundary:
                return CKovaAttribSet::FGetLayerNameFromCur(code);
            case ParcelLayerKind::Hatch:
                return CKovaAttribSet::FGetTCLayerNameFromCur(code);
            case ParcelLayerKind::UndergroundBoundary:
                return CKovaAttribSet::FGetDXKJLayerNameFromCur(code);
            case ParcelLayerKind::UndergroundHatch:
                return CKovaAttribSet::FGetDXKJTCLayerNameFromCur(code);
        }
        return CString();
    }

    // Prefix + code + suffix when either is configured; "" otherwise.
    CString fromAffixes(const CString& code) const {
        CString boundaryPrefix, boundarySuffix, hatchPrefix, hatchSuffix;
        if (planned) {
            CKovaAttribSet::FGetGHDKLayerPreSuffix(boundaryPrefix, boundarySuffix, hatchPrefix,
                                                   hatchSuffix);
        } else {
            CKovaAttribSet::FGetXZDKLayerPreSuffix(boundaryPrefix, boundarySuffix, hatchPrefix,
                                                   hatchSuffix);
        }
        const CString& prefix = hatch() ? hatchPrefix : boundaryPrefix;
        const CString& suffix = hatch() ? hatchSuffix : boundarySuffix;
        if (prefix.IsEmpty() && suffix.IsEmpty()) return CString();
        return prefix + code + suffix;
    }
};

// "现状水域" and "现状公共绿地" are layers that current water and green parcels share.
CString sharedKey(const Lookup& lookup, const CString& code) {
    if (lookup.planned || lookup.underground()) return CString();
    if (code == L"E1") return L"现状水域";
    if (code == L"G1" || code == L"G2") return L"现状公共绿地";
    return CString();
}

void presetNames(const Lookup& lookup, const CString& code, KovaDB::LAYERPARAM2013EX& param) {
    CString what = lookup.hatch() ? L"用地填充" : L"用地边界";
    CString name, remark;
    if (code == L"KB" && lookup.blankBranch()) {
        if (lookup.underground()) {
            remark = L"空白地下空间边界";
        } else {
            remark = CString(L"空白") + (lookup.planned ? L"规划" : L"现状") + what;
        }
        name = L"YD-" + remark;
    } else if (lookup.underground()) {
        name = code + L"规划地下" + what;
        remark = L"!" + name;
    } else {
        name = code + (lookup.planned ? L"规划" : L"现状") + what;
        remark = name;
    }
    param.SetLayerName(name);
    param.strRemark = remark;
}

CString presetParam(const Lookup& lookup, const CString& code, KovaDB::LAYERPARAM2013EX& param) {
    param = KovaDB::LAYERPARAM2013EX();
    CString key = lookup.key(code);
    CString shared = sharedKey(lookup, code);
    CString lookedUp = shared.IsEmpty() ? key : shared;
    presetNames(lookup, code, param);
    param.nType = 4;
    param.strUnit = L"U";
    param.strKey = lookedUp;
    param.strKeyEx = lookedUp;
    if (!lookup.hatch()) {
        param.strAppName = lookup.underground() ? L"FAPP_GHDK_DX"
                           : lookup.planned     ? L"FAPP_GHDK"
                                                : L"FAPP_XZDK";
    }
    param.strGroup =
        CString(lookup.underground() ? L"YD用地图层地块" : L"YD用地图层") + L"_" + code;
    return lookedUp;
}

CString fromLayerStandard(const Lookup& lookup, const CString& code) {
    KovaDB::LAYERPARAM2013EX param;
    CString key = presetParam(lookup, code, param);
    int shared = key == lookup.key(code) ? 0 : 1;
    KovaDB::qmGetLayerParam(key, param, 0, shared, 1, nullptr);
    return CString(param.szLayerName);
}

// A remembered name; a stored "0" stands for none.
CString remembered(const CString& key) {
    CString name;
    KovaDB::qmGetLayerNameFromDict(key, name);
    return name == L"0" ? CString() : name;
}

// A remembered name loses only its "/"; a new one its "\\" as well.
CString withoutSlashes(CString name) {
    name.Remove(L'/');
    return name.MakeUpper();
}

CString cleaned(CString name) {
    name.Remove(L'\\');
    return withoutSlashes(name);
}

int layerOf(const Lookup& lookup, CString code, CString& layerName) {
    code.Trim();
    if (code.IsEmpty()) return 0;
    bool compound = code.Find(L'/') >= 0;
    CString key = lookup.key(code);

    if (code == L"KB" && lookup.blankBranch()) {
        layerName = fromLayerStandard(lookup, code).MakeUpper();
        return 1;
    }

    CString name = remembered(key);
    if (!name.IsEmpty()) {
        layerName = withoutSlashes(name);
        return 1;
    }
    CString base;
    if (compound) {
        CStringArray parts;
        if (fgdutil::Str2StrArr(code, parts, L"/") > 1) base = parts.GetAt(0);
    }
    if (!base.IsEmpty()) {
        name = remembered(lookup.key(base));
        if (!name.IsEmpty()) {
            name.Replace(base, code);
            layerName = withoutSlashes(name);
            return 1;
        }
    }

    name = lookup.fromStandard(code);
    if (name.IsEmpty() && !base.IsEmpty()) {
        name = lookup.fromStandard(base);
        name.Replace(base, code);
    }
    if (name.IsEmpty()) name = lookup.fromAffixes(code);
    if (name.IsEmpty()) name = fromLayerStandard(lookup, code);
    name = cleaned(name);
    if (name.IsEmpty()) return 0;

    // Stored without "/", unlike the key read above, so a compound class is remembered
    // under a key that step 1 never reads back: each call asks the sources again.
    CString storeKey = key;
    if (compound) storeKey.Remove(L'/');
    KovaDB::qmPutLayerNameIntoDict(storeKey, name);
    layerName = name;
    return 1;
}

int guardedLayerOf(const ACHAR* tag, const Lookup& lookup, const CString& code,
                   CString& layerName) {
    return kova::Guarded(tag, 0, [&] { return layerOf(lookup, code, layerName); });
}

}  // namespace

int FGetDKLayer(CString classCode, CString& layerName, int planned) {
    return guardedLayerOf(L"FGetDKLayer", {ParcelLayerKind::Boundary, planned != 0}, classCode,
                          layerName);
}

int FGetDKTCLayer(CString classCode, CString& layerName, int planned) {
    return guardedLayerOf(L"FGetDKTCLayer", {ParcelLayerKind::Hatch, planned != 0}, classCode,
                          layerName);
}

int FGetDXKJLayer(CString classCode, CString& layerName) {
    return guardedLayerOf(L"FGetDXKJLayer", {ParcelLayerKind::UndergroundBoundary, true}, classCode,
                          layerName);
}

int FGetDXKJTCLayer(CString classCode, CString& layerName) {
    return guardedLayerOf(L"FGetDXKJTCLayer", {ParcelLayerKind::UndergroundHatch, true}, classCode,
                          layerName);
}

CString FPresetParcelLayerParam(ParcelLayerKind kind, const CString& classCode, int planned,
                                KovaDB::LAYERPARAM2013EX& param) {
    bool alwaysPlanned =
        kind == ParcelLayerKind::UndergroundBoundary || kind == ParcelLayerKind::UndergroundHatch;
    return presetParam({kind, alwaysPlanned || planned != 0}, classCode, param);
}
