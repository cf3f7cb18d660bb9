#include <algorithm>
#include <cmath>
#include <cwctype>
#include <string>
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/acedinternal.h"
#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/CommandLine.h"

namespace {

bool isPoint(const resbuf* rb) {
    return rb != nullptr && (rb->restype == RTPOINT || rb->restype == RT3DPOINT);
}

// The window from the two corners, widened to the view's proportions.
int zoomWindow(AcDbDatabase& database, const ads_point a, const ads_point b) {
    double width = std::fabs(b[0] - a[0]), height = std::fabs(b[1] - a[1]);
    if (!(width > 0 || height > 0) || !std::isfinite(width) || !std::isfinite(height))
        return arx::refuseCommand(L"Zoom window has no size.");
    AcDbDatabase::View view = database.view();
    view.centerX = (a[0] + b[0]) / 2;
    view.centerY = (a[1] + b[1]) / 2;
    view.height = std::max(height, width / view.aspect);
    database.setView(view);
    return RTNORM;
}

int zoomExtents(AcDbDatabase& database) {
    auto* space = arx::peek<AcDbBlockTableRecord>(database.currentSpaceId());
    double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;
    if (space != nullptr) {
        for (AcDbObjectId id : space->entityIds()) {
            auto* entity = arx::peek<AcDbEntity>(id);
            AcDbExtents extents;
            if (entity == nullptr || id.isErased() || entity->getGeomExtents(extents) != Acad::eOk)
                continue;
            x0 = std::min(x0, extents.minPoint().x);
            y0 = std::min(y0, extents.minPoint().y);
            x1 = std::max(x1, extents.maxPoint().x);
            y1 = std::max(y1, extents.maxPoint().y);
        }
    }
    if (x0 > x1) return RTNORM;  // an empty drawing keeps its view, as the host's does
    ads_point a = {x0, y0, 0}, b = {x1, y1, 0};
    if (x0 == x1 && y0 == y1) {
        AcDbDatabase::View view = database.view();
        view.centerX = x0;
        view.centerY = y0;
        database.setView(view);
        return RTNORM;
    }
    return zoomWindow(database, a, b);
}

int zoom(AcDbDatabase& database, const resbuf* rb) {
    if (rb == nullptr || rb->restype != RTSTR)
        return arx::refuseCommand(L"ZOOM needs its option here: W with two corners, or E.");
    std::wstring option = arx::commandWord(rb->resval.rstring);
    const resbuf* first = rb->rbnext;
    if (option == L"W" || option == L"WINDOW") {
        if (!isPoint(first) || !isPoint(first->rbnext) || first->rbnext->rbnext != nullptr)
            return arx::refuseCommand(L"ZOOM Window needs two corner points.");
        return zoomWindow(database, first->resval.rpoint, first->rbnext->resval.rpoint);
    }
    if ((option == L"E" || option == L"EXTENTS") && first == nullptr) return zoomExtents(database);
    return arx::refuseCommand(L"Invalid option keyword for ZOOM: " +
                              std::wstring(rb->resval.rstring));
}

}  // namespace

// "._ZOOM", "_zoom" and "ZOOM" are the same command; options take the "_" too.
std::wstring arx::commandWord(const ACHAR* text) {
    std::wstring word(text ? text : L"");
    std::size_t start = word.find_first_not_of(L"._");
    word = start == std::wstring::npos ? std::wstring() : word.substr(start);
    std::transform(word.begin(), word.end(), word.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towupper(c)); });
    return word;
}

int arx::refuseCommand(const std::wstring& message) {
    acutPrintf(L"\n%s", message.c_str());
    return RTERROR;
}

namespace {

// The command and its answers as one line of the command history.
std::wstring historyLine(const resbuf* list) {
    std::wstring line;
    for (const resbuf* rb = list; rb != nullptr; rb = rb->rbnext) {
        if (!line.empty()) line += L' ';
        switch (rb->restype) {
            case RTSTR:
                line += rb->resval.rstring && *rb->resval.rstring ? rb->resval.rstring : L"\"\"";
                break;
            case RTPICKS: {
                Adesk::Int32 n = 0;
                acedSSLength(rb->resval.rlname, &n);
                line += L"<" + std::to_wstring(n) + L" selected>";
                break;
            }
            case RTENAME: {
                AcDbObjectId id;
                acdbGetObjectId(id, rb->resval.rlname);
                line += L"<entity " + id.handle().text() + L">";
                break;
            }
            case RTPOINT:
            case RT3DPOINT:
                line += std::to_wstring(rb->resval.rpoint[0]) + L"," +
                        std::to_wstring(rb->resval.rpoint[1]);
                break;
            case RTREAL:
                line += std::to_wstring(rb->resval.rreal);
                break;
            case RTSHORT:
                line += std::to_wstring(rb->resval.rint);
                break;
            default:
                line += L"<" + std::to_wstring(rb->restype) + L">";
        }
    }
    return line;
}

}  // namespace

int acedCmd(const resbuf* list) {
    if (list == nullptr || list->restype != RTSTR) return RTERROR;
    db::commandLine().noteCommand(historyLine(list));
    AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr) return RTERROR;
    std::wstring command = arx::commandWord(list->resval.rstring);
    if (command == L"ZOOM") return zoom(*database, list->rbnext);
    if (command == L"DRAWORDER") return arx::drawOrderCommand(*database, list->rbnext);
    if (command == L"HATCH") return arx::hatchCommand(*database, list->rbnext);
    return arx::refuseCommand(L"Unknown command \"" + std::wstring(list->resval.rstring) + L"\".");
}

int acedCommand(int type, ...) {
    va_list args;
    va_start(args, type);
    resbuf* list = acutBuildListV(type, args);
    va_end(args);
    if (list == nullptr) return RTERROR;
    int result = acedCmd(list);
    acutRelRb(list);
    return result;
}
