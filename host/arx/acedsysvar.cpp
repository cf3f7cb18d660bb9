// System variables: those of the application live here, those of a drawing are read
// from and written to the working database.
#include <cwchar>
#include <string>
#include <vector>

#include "host/arx/acdocman.h"
#include "host/arx/acedads.h"
#include "host/arx/acedinternal.h"
#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"

namespace {

struct AppVariable {
    const ACHAR* name = L"";
    short type = RTSHORT;  // or RT3DPOINT
    short initial = 0, min = 0, max = 0;
    short value = 0;
    AcGePoint3d point;
};

AppVariable variable(const ACHAR* name, short type, short initial, short min, short max) {
    AppVariable v;
    v.name = name;
    v.type = type;
    v.initial = v.value = initial;
    v.min = min;
    v.max = max;
    return v;
}

std::vector<AppVariable> initialVariables() {
    return {
        // Endpoint, centre, intersection and extension snaps, as a new profile has them.
        variable(L"OSMODE", RTSHORT, 4133, 0, 32767), variable(L"CMDECHO", RTSHORT, 1, 0, 1),
        variable(L"PICKBOX", RTSHORT, 3, 0, 50),      variable(L"ERRNO", RTSHORT, 0, -32768, 32767),
        variable(L"HIGHLIGHT", RTSHORT, 1, 0, 1),     variable(L"LASTPOINT", RT3DPOINT, 0, 0, 0),
    };
}

std::vector<AppVariable>& appVariables() {
    static std::vector<AppVariable> variables = initialVariables();
    return variables;
}

AppVariable* findAppVariable(const std::wstring& key) {
    for (AppVariable& v : appVariables()) {
        if (key == v.name) return &v;
    }
    return nullptr;
}

bool readShort(const resbuf* value, long& out) {
    if (value->restype == RTSHORT) {
        out = value->resval.rint;
    } else if (value->restype == RTLONG) {
        out = value->resval.rlong;
    } else {
        return false;
    }
    return true;
}

void setString(resbuf* result, const std::wstring& text) {
    result->restype = RTSTR;
    result->resval.rstring = acutNewString(text.c_str());
}

void setShort(resbuf* result, long value) {
    result->restype = RTSHORT;
    result->resval.rint = static_cast<short>(value);
}

std::wstring colorText(const AcCmColor& color) {
    if (color.isByLayer()) return L"BYLAYER";
    if (color.isByBlock()) return L"BYBLOCK";
    if (color.isByColor()) {
        return L"RGB:" + std::to_wstring(color.red()) + L"," + std::to_wstring(color.green()) +
               L"," + std::to_wstring(color.blue());
    }
    return std::to_wstring(color.colorIndex());
}

// Reads a whole decimal integer in [lo, hi].
bool parseInt(const std::wstring& text, long lo, long hi, long& value) {
    if (text.empty() || text.size() > 9) return false;
    long v = 0;
    for (wchar_t c : text) {
        if (c < L'0' || c > L'9') return false;
        v = v * 10 + (c - L'0');
    }
    if (v < lo || v > hi) return false;
    value = v;
    return true;
}

bool parseColor(const std::wstring& text, AcCmColor& color) {
    std::wstring key = arx::foldCase(text.c_str());
    if (key == L"BYLAYER") return color.setColorIndex(256) == Acad::eOk;
    if (key == L"BYBLOCK") return color.setColorIndex(0) == Acad::eOk;
    if (key.rfind(L"RGB:", 0) == 0) {
        long rgb[3];
        std::wstring rest = key.substr(4);
        for (int i = 0; i < 3; ++i) {
            std::size_t comma = rest.find(L',');
            if ((comma == std::wstring::npos) != (i == 2)) return false;
            if (!parseInt(rest.substr(0, comma), 0, 255, rgb[i])) return false;
            rest = comma == std::wstring::npos ? L"" : rest.substr(comma + 1);
        }
        return color.setRGB(static_cast<Adesk::UInt8>(rgb[0]), static_cast<Adesk::UInt8>(rgb[1]),
                            static_cast<Adesk::UInt8>(rgb[2])) == Acad::eOk;
    }
    long index = 0;
    if (!parseInt(key, 1, 255, index)) return false;
    return color.setColorIndex(static_cast<Adesk::UInt16>(index)) == Acad::eOk;
}

std::wstring drawingName(AcDbDatabase* database) {
    AcApDocument* document = acDocManager->documentOf(database);
    std::wstring path = document ? document->fileName() : L"";
    std::size_t slash = path.find_last_of(L"/\\");
    if (slash != std::wstring::npos) path = path.substr(slash + 1);
    return path.empty() ? L"Drawing1.dwg" : path;
}

enum class DrawingVariable { None, Clayer, Cecolor, Tilemode, Cvport, Dwgname };

DrawingVariable drawingVariable(const std::wstring& key) {
    if (key == L"CLAYER") return DrawingVariable::Clayer;
    if (key == L"CECOLOR") return DrawingVariable::Cecolor;
    if (key == L"TILEMODE") return DrawingVariable::Tilemode;
    if (key == L"CVPORT") return DrawingVariable::Cvport;
    if (key == L"DWGNAME") return DrawingVariable::Dwgname;
    return DrawingVariable::None;
}

int getDrawingVariable(DrawingVariable which, AcDbDatabase* database, resbuf* result) {
    switch (which) {
        case DrawingVariable::Clayer: {
            auto* layer = arx::peek<AcDbLayerTableRecord>(database->clayer());
            if (layer == nullptr) return RTERROR;
            setString(result, layer->nameText());
            return RTNORM;
        }
        case DrawingVariable::Cecolor:
            setString(result, colorText(database->cecolor()));
            return RTNORM;
        case DrawingVariable::Tilemode:
            setShort(result, database->tilemode() ? 1 : 0);
            return RTNORM;
        case DrawingVariable::Cvport:
            // Paper space is viewport 1; model space seen in tiles is viewport 2.
            setShort(result, database->tilemode() ? 2 : 1);
            return RTNORM;
        case DrawingVariable::Dwgname:
            setString(result, drawingName(database));
            return RTNORM;
        case DrawingVariable::None:
            break;
    }
    return RTERROR;
}

int setDrawingVariable(DrawingVariable which, AcDbDatabase* database, const resbuf* value) {
    switch (which) {
        case DrawingVariable::Clayer: {
            if (value->restype != RTSTR || value->resval.rstring == nullptr) return RTREJ;
            auto* table = arx::peek<AcDbLayerTable>(database->layerTableId());
            AcDbObjectId id;
            if (table == nullptr || table->getAt(value->resval.rstring, id) != Acad::eOk) {
                return RTREJ;
            }
            // The host refuses to make a frozen layer current.
            auto* layer = arx::peek<AcDbLayerTableRecord>(id);
            if (layer == nullptr || layer->isFrozen()) return RTREJ;
            return database->setClayer(id) == Acad::eOk ? RTNORM : RTREJ;
        }
        case DrawingVariable::Cecolor: {
            AcCmColor color;
            if (value->restype != RTSTR || value->resval.rstring == nullptr ||
                !parseColor(value->resval.rstring, color)) {
                return RTREJ;
            }
            return database->setCecolor(color) == Acad::eOk ? RTNORM : RTREJ;
        }
        case DrawingVariable::Tilemode: {
            long v = 0;
            if (!readShort(value, v) || v < 0 || v > 1) return RTREJ;
            return database->setTilemode(v == 1) == Acad::eOk ? RTNORM : RTREJ;
        }
        default:
            return RTREJ;
    }
}

}  // namespace

int acedGetVar(const ACHAR* name, resbuf* result) {
    if (name == nullptr || result == nullptr) return RTERROR;
    std::wstring key = arx::foldCase(name);
    if (AppVariable* v = findAppVariable(key)) {
        if (v->type == RT3DPOINT) {
            result->restype = RT3DPOINT;
            result->resval.rpoint[0] = v->point.x;
            result->resval.rpoint[1] = v->point.y;
            result->resval.rpoint[2] = v->point.z;
        } else {
            setShort(result, v->value);
        }
        return RTNORM;
    }
    DrawingVariable which = drawingVariable(key);
    if (which == DrawingVariable::None) return RTERROR;
    AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr) return RTERROR;
    return getDrawingVariable(which, database, result);
}

int acedSetVar(const ACHAR* name, const resbuf* value) {
    if (name == nullptr) return RTERROR;
    std::wstring key = arx::foldCase(name);
    AppVariable* v = findAppVariable(key);
    DrawingVariable which = drawingVariable(key);
    if (v == nullptr && which == DrawingVariable::None) return RTERROR;
    if (value == nullptr) return RTREJ;
    if (v != nullptr) {
        if (v->type == RT3DPOINT) {
            if (value->restype != RTPOINT && value->restype != RT3DPOINT) return RTREJ;
            double z = value->restype == RT3DPOINT ? value->resval.rpoint[2] : 0.0;
            v->point = {value->resval.rpoint[0], value->resval.rpoint[1], z};
            return RTNORM;
        }
        long n = 0;
        if (!readShort(value, n) || n < v->min || n > v->max) return RTREJ;
        v->value = static_cast<short>(n);
        return RTNORM;
    }
    AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr) return RTERROR;
    return setDrawingVariable(which, database, value);
}

namespace arx {

void resetSystemVariables() {
    for (AppVariable& v : appVariables()) {
        v.value = v.initial;
        v.point = AcGePoint3d();
    }
}

short systemVariableShort(const ACHAR* name, short fallback) {
    AppVariable* v = findAppVariable(foldCase(name));
    return v && v->type == RTSHORT ? v->value : fallback;
}

void setSystemVariableShort(const ACHAR* name, short value) {
    if (AppVariable* v = findAppVariable(foldCase(name)); v && v->type == RTSHORT) v->value = value;
}

AcGePoint3d lastPoint() {
    AppVariable* v = findAppVariable(L"LASTPOINT");
    return v ? v->point : AcGePoint3d();
}

void setLastPoint(const AcGePoint3d& point) {
    if (AppVariable* v = findAppVariable(L"LASTPOINT")) v->point = point;
}

}  // namespace arx
