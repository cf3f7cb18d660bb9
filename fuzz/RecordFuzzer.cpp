// The record classes under arbitrary xdata: the input becomes the xdata of a parcel (a
// closed polyline in a drawing) and of a second outline that may be its island, as a
// DXF file could bring it (unchecked: braces need not match, applications need not be
// registered), and every reader of the record layer and the totals of the statistics
// read it. They must not crash, must leave nothing open, and must agree with themselves:
// a read with a record session open gives what a read without one gives, a read told
// the generation gives what a read that asks for it gives, and the bulk read of several
// fields gives what one read per field gives.
#include <fuzzer/FuzzedDataProvider.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbmain.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/db/GroupCode.h"
#include "host/db/Leaks.h"
#include "host/db/Value.h"
#include "host/kova/KovaDataSet.h"
#include "record/DKBJInfo.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKTCInfo.h"
#include "record/DYBJInfo.h"
#include "record/GHHXInfo.h"
#include "record/JFBJInfo.h"
#include "record/JZBJInfo.h"
#include "record/RecordSession.h"
#include "record/XDataAccess.h"
#include "stats/ClassTotals.h"

namespace {

// The words records are made of, so that the fuzzer reaches past the application and key
// comparisons; any other text comes from the input.
const wchar_t* const kApps[] = {
    dk::FAPP_GHDK,  dk::FAPP_GHDK_FG, dk::FAPP_GHDK_ZG,    dk::FAPP_GHDK_TX, dk::FAPP_GHDK_FJ,
    dk::FAPP_XZDK,  dk::FAPP_GHDK_DX, dk::FAPP_XZDK_DX,    dk::FAPP_DKTC,    dk::FAPP_GHJF,
    dk::FAPP_GHDY,  dk::FAPP_JZLKX,   dk::FAPP_ENTCODE,    dk::APP_DKSX,     dk::APP_DKBJ,
    dk::APP_XZYD,   dk::LINK_ISLAND,  dk::LINK_ISLAND_OLD, L"FAPP_GHHX",     L"配套公建",
    L"FS_Standard",
};
const wchar_t* const kWords[] = {
    dk::TYPE_KGDK, dk::TYPE_FGDK, dk::TYPE_ZGDK, dk::TYPE_GHDY, dk::TYPE_GHJF, dk::TYPE_JZLKX,
    dk::MARK_XZDK, dk::MARK_GHDX, dk::MARK_XZDX, dk::FS_DXKJBH, dk::FS_DXKJXZ, dk::FS_JFBH,
    dk::FS_DYBH,   dk::FS_JZBH,   dk::FD_AREA,   L"{",          L"}",          L"R21",
    L"H14",        L"E1",         L"1.5",        L"-2e3",       L"a=b=c",      L"",
};

std::vector<const wchar_t*> vocabulary() {
    std::vector<const wchar_t*> words(std::begin(kWords), std::end(kWords));
    words.insert(words.end(), std::begin(kApps), std::end(kApps));
    for (const dk::LabelKey& lk : dk::LABEL_KEYS) {
        words.push_back(lk.label);
        words.push_back(lk.key);
    }
    for (const wchar_t* key : dk::BASIC_FIELDS)
        words.push_back(key);
    for (const wchar_t* label : dk::LEGACY_FIELDS)
        words.push_back(label);
    return words;
}

// What the xdata of one entity is made of; nothing longer, so that a case runs fast.
constexpr std::size_t kMaxValues = 48;
const int kCodes[] = {1000, 1000, 1000, 1000, 1001, 1002, 1003, 1004,
                      1005, 1010, 1011, 1040, 1041, 1070, 1071};

struct Drawing {
    AcDbObjectId parcel;
    AcDbObjectId island;
    std::vector<const wchar_t*> words;
};

AcDbObjectId addSquare(AcDbDatabase* database, double x0, double size) {
    auto* pline = new AcDbPolyline();
    pline->addVertexAt(0, AcGePoint2d(x0, x0));
    pline->addVertexAt(1, AcGePoint2d(x0 + size, x0));
    pline->addVertexAt(2, AcGePoint2d(x0 + size, x0 + size));
    pline->addVertexAt(3, AcGePoint2d(x0, x0 + size));
    pline->setClosed(true);
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, database->currentSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    space->appendAcDbEntity(id, pline);
    space->close();
    pline->close();
    return id;
}

// One drawing for all cases: making a document costs more than a case.
Drawing& drawing() {
    static Drawing d = [] {
        Drawing made;
        acDocManager->appendDocument();
        CKovaDataSet::FSetNameDict_GHType(L"KG,控制性详细规划");
        AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
        made.parcel = addSquare(database, 0, 100);
        made.island = addSquare(database, 20, 30);
        made.words = vocabulary();
        return made;
    }();
    return d;
}

std::wstring handleOf(AcDbObjectId id) {
    return id.handle().text();
}

std::wstring text(FuzzedDataProvider& in, const Drawing& d) {
    switch (in.ConsumeIntegralInRange(0, 5)) {
        case 0: {
            // Any UTF-16 text, Chinese included.
            std::wstring s;
            for (std::size_t n = in.ConsumeIntegralInRange(0, 12); n > 0; --n)
                s += static_cast<wchar_t>(in.ConsumeIntegral<std::uint16_t>());
            return s;
        }
        case 1:
            return handleOf(in.ConsumeBool() ? d.parcel : d.island);
        case 2: {
            // "word=word", as simple items and facility lists are written.
            std::wstring s = d.words[in.ConsumeIntegralInRange<std::size_t>(0, d.words.size() - 1)];
            return s + L"=" +
                   d.words[in.ConsumeIntegralInRange<std::size_t>(0, d.words.size() - 1)];
        }
        case 3: {
            std::string ascii = in.ConsumeRandomLengthString(12);
            return std::wstring(ascii.begin(), ascii.end());
        }
        default:
            return d.words[in.ConsumeIntegralInRange<std::size_t>(0, d.words.size() - 1)];
    }
}

// The xdata of one entity, each value of the kind its group code has in a DXF file.
db::ValueList xdata(FuzzedDataProvider& in, const Drawing& d) {
    db::ValueList values;
    values.push_back(db::Value::string(
        1001, kApps[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kApps) - 1)]));
    while (values.size() < kMaxValues && in.remaining_bytes() > 0 &&
           in.ConsumeIntegral<std::uint8_t>() != 0) {
        int code = kCodes[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kCodes) - 1)];
        switch (db::kindOfGroupCode(code)) {
            case db::ValueKind::Real:
                values.push_back(db::Value::real(code, in.ConsumeFloatingPoint<double>()));
                break;
            case db::ValueKind::Point:
                values.push_back(db::Value::point(code, {in.ConsumeFloatingPoint<double>(),
                                                         in.ConsumeFloatingPoint<double>(), 0}));
                break;
            case db::ValueKind::Int16:
            case db::ValueKind::Int32:
                values.push_back(db::Value::integer(code, in.ConsumeIntegral<std::int32_t>()));
                break;
            case db::ValueKind::Binary: {
                std::string bytes = in.ConsumeRandomLengthString(8);
                values.push_back({code, db::Bytes(bytes.begin(), bytes.end())});
                break;
            }
            default:
                if (code == 1001) {
                    values.push_back(db::Value::string(
                        code,
                        kApps[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kApps) - 1)]));
                } else if (code == 1002) {
                    values.push_back(db::Value::string(code, in.ConsumeBool() ? L"{" : L"}"));
                } else {
                    values.push_back(db::Value::string(code, text(in, d)));
                }
        }
    }
    return values;
}

void setXdata(AcDbObjectId id, db::ValueList values) {
    AcDbObject* object = nullptr;
    if (acdbOpenObject(object, id, AcDb::kForWrite) != Acad::eOk) std::abort();
    object->restoreXdataValues(std::move(values));
    object->close();
}

db::ValueList xdataOf(AcDbObjectId id) {
    AcDbObject* object = nullptr;
    if (acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk) std::abort();
    db::ValueList values = object->xdataValues();
    object->close();
    return values;
}

[[noreturn]] void fault(const char* what, const CString& detail = CString()) {
    std::fprintf(stderr, "%s: %s\n", what, detail.ToUtf8().c_str());
    std::abort();
}

// What the readers make of the parcel, as text, so that two readings compare as one.
std::wstring readAll(const Drawing& d, const CStringArray& keys) {
    std::wstring out;
    auto add = [&out](int result, const CString& value) {
        out += std::to_wstring(result) + L"[" + value.GetString() + L"]";
    };
    auto addNumber = [&out](int result, double value) {
        // The shortest text that reads back to the same double: equal texts, equal areas.
        char text[32];
        char* end = std::to_chars(text, text + sizeof text, value).ptr;
        out += std::to_wstring(result) + L"[" + std::wstring(text, end) + L"]";
    };
    auto addList = [&out](int result, const CStringArray& list) {
        out += std::to_wstring(result) + L"{";
        for (const CString& item : list)
            out += std::wstring(item.GetString()) + L"|";
        out += L"}";
    };
    auto addIds = [&out](int result, const AcDbObjectIdArray& ids) {
        out += std::to_wstring(result) + L"{";
        for (AcDbObjectId id : ids)
            out += handleOf(id) + L"|";
        out += L"}";
    };
    auto addFlags = [&out](std::initializer_list<int> flags) {
        for (int flag : flags)
            out += std::to_wstring(flag);
        out += L" ";
    };

    CDKBJXDInfo parcel(d.parcel);
    addFlags({parcel.IsDkbj(), parcel.IsXZDkbj(), parcel.IsGHDxkj(), parcel.IsXZDxkj(),
              CheckDKDataVer(d.parcel), FIsNewStandardDK(d.parcel)});
    CString app;
    add(FGetEntAppName(d.parcel, app), app);
    for (const CString& key : keys) {
        CString value;
        add(parcel.GetData(key, value), value);
        CString attrib;
        add(parcel.GetAttrib(key, attrib), attrib);
    }
    CStringArray values, appNames, none;
    double area = 0;
    AcDbObjectIdArray islands;
    addList(parcel.GetData(none, values, appNames), values);
    addList(0, appNames);
    addList(parcel.GetData(values, area, islands), values);
    addNumber(0, area);
    addIds(0, islands);
    CString cls;
    add(parcel.GetXZYDDKData(cls), cls);
    CStringArray facilities;
    addList(parcel.GetPTGJInfo(facilities), facilities);
    addIds(parcel.GetIsland(islands), islands);
    addNumber(parcel.GetArea(area), area);
    addNumber(parcel.GetCalcArea(area), area);
    addNumber(parcel.GetInputArea(area), area);
    CStringArray numbers;
    addList(parcel.GetIndexArray(numbers), numbers);

    CDKBJInfo legacy(d.parcel);
    for (const CString& key : keys) {
        CString value;
        add(legacy.GetData(key, value), value);
    }
    CStringArray legacyValues;
    addList(legacy.GetData(legacyValues, area, islands), legacyValues);
    addNumber(legacy.GetArea(area), area);

    // Units and blocks are read bound with SetObject: constructing from an id stamps the
    // record, a write.
    CStringArray labels;
    addList(CDKTCInfo(d.parcel).GetData(labels, values), values);
    CDYBJInfo unit;
    unit.SetObject(d.parcel);
    addList(unit.GetData(labels, values), values);
    addNumber(unit.GetArea(area), area);
    CJFBJInfo block;
    block.SetObject(d.parcel);
    addList(block.GetData(labels, values), values);
    addNumber(block.GetArea(area), area);
    CDKTCInfo hatch(d.parcel);
    addFlags({unit.IsDybj(), block.IsJfbj(), CJZBJInfo(d.parcel).IsJZbj(), hatch.IsDktc(),
              hatch.IsDksktc()});
    addList(CJZBJInfo(d.parcel).GetData(labels, values), values);
    addNumber(CJZBJInfo(d.parcel).GetArea(area), area);
    CString line;
    add(CGHHXInfo(d.parcel).GetData(dk::LBL_DKBH, line), line);

    AcDbObjectIdArray ids;
    ids.append(d.parcel);
    ids.append(d.island);
    addNumber(GetDKIdsArea(ids, area), area);
    area = 0;
    addNumber(GetGHDKAllArea(ids, area), area);
    area = 0;
    addNumber(GetXZDKAllArea(ids, area), area);
    int people = 0;
    addNumber(GetGHDKAllRKSForGIS(ids, people), people);
    using Total = int (*)(const AcDbObjectIdArray&, double&);
    for (Total total : {Total{FGetHArea}, Total{FGetH1Area}, Total{FGetH11Area}, Total{FGetH2Area},
                        Total{FGetH9Area}, Total{FGetEArea}, Total{FGetE1Area}}) {
        addNumber(total(ids, area), area);
    }
    area = 0;
    addNumber(GetDKAreaByClass(CString(L"R"), ids, area), area);
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Drawing& d = drawing();
    FuzzedDataProvider in(data, size);
    setXdata(d.parcel, xdata(in, d));
    setXdata(d.island, in.ConsumeBool() ? xdata(in, d) : db::ValueList());
    CStringArray keys;
    for (int n = in.ConsumeIntegralInRange(1, 4); n > 0; --n)
        keys.Add(text(in, d).c_str());

    db::LeakCounts before = db::leakCounts();
    db::ValueList parcelData = xdataOf(d.parcel), islandData = xdataOf(d.island);
    std::wstring plain = readAll(d, keys);
    if (xdataOf(d.parcel) != parcelData || xdataOf(d.island) != islandData)
        fault("a reader changed the xdata");
    if (db::leakCounts() != before)
        fault("a reader left something open",
              CString(db::describeLeaks(before, db::leakCounts()).c_str()));
    {
        dk::RecordSession session;
        std::wstring first = readAll(d, keys);
        std::wstring again = readAll(d, keys);
        if (first != plain) fault("a session reads otherwise", (plain + L"\n" + first).c_str());
        if (again != plain)
            fault("a session's second read differs", (plain + L"\n" + again).c_str());
    }

    // Told its generation, a read gives what asking for it gives; the bulk read of the
    // keys gives what one read per key gives.
    CDKBJXDInfo parcel(d.parcel);
    int generation = CheckDKDataVer(d.parcel);
    CStringArray values, appNames;
    parcel.GetData(keys, values, appNames);
    for (int i = 0; i < keys.GetSize(); ++i) {
        CString asked, told;
        int found = parcel.GetData(keys[i], asked);
        if (parcel.GetData(generation, keys[i], told) != found || told != asked)
            fault("a read told the generation differs", keys[i] + L": " + asked + L" | " + told);
        if (values[i] != asked)
            fault("the bulk read differs", keys[i] + L": " + asked + L" | " + values[i]);
    }
    // What a case allocated is freed within it: otherwise the fuzzer, counting more
    // allocations than frees, runs the case a second time to look for a leak.
    setXdata(d.parcel, {});
    setXdata(d.island, {});
    return 0;
}
