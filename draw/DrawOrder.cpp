#include "draw/DrawOrder.h"

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaSelSet.h"

namespace {

// The entities of those types in the current space; the caller releases the list.
resbuf* currentSpaceFilter(const ACHAR* types) {
    return acutBuildList(RTDXF0, types, 67, kova::cad::GetCurSpace(), RTNONE);
}

}  // namespace

void FSolidHatchDown() {
    resbuf* filter = currentSpaceFilter(L"HATCH,SOLID");
    AcDbObjectIdArray ids;
    {
        kova::CFArxSelSet selection;
        selection.allSelect(filter);
        selection.asArray(ids);
    }
    acutRelRb(filter);
    if (ids.length() < 1) return;
    ads_name ss;
    if (!kova::ent::IdsToSS(ids, ss)) return;
    // The trailing empty answer belongs to the sequence.
    acedCommand(RTSTR, L"draworder", RTPICKS, ss, RTSTR, L"", RTSTR, L"B", RTSTR, L"", RTNONE);
    acedSSFree(ss);
}

void FSetHatchBottomOrTop(int top) {
    const ACHAR* option = top == 1 ? L"F" : L"B";
    resbuf* filter = currentSpaceFilter(L"HATCH");
    kova::CFArxSelSet selection;
    if (selection.allSelect(filter) == kova::CFArxSelSet::kSelected) {
        ads_name ss;
        selection.asAdsName(ss);
        acedCommand(RTSTR, L"draworder", RTPICKS, ss, RTSTR, L"", RTSTR, option, RTNONE);
    }
    selection.clear();
    acutRelRb(filter);
}
