#include "draw/EntAreaHatch.h"

#include "host/arx/acedads.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaDocLock.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaSysVar.h"

void CFEntAreaHatch::SetHatchColor(int colorIndex) {
    colorIndex_ = colorIndex;
}

void CFEntAreaHatch::AddBoundaryEnt(AcDbObjectId id) {
    hatches_.append(id);
}

int CFEntAreaHatch::AreaHatch(AcDbObjectId boundary) {
    return AreaHatch(boundary, 1, 1, 0);
}

int CFEntAreaHatch::AreaHatch(AcDbObjectId boundary, int colorIndex, int enabled,
                              int keepBoundary) {
    if (keepBoundary) hatches_.append(boundary);
    if (!enabled || boundary.isNull() || !boundary.isValid()) return 0;
    colorIndex_ = colorIndex;
    ads_name name;
    if (acdbGetAdsName(name, boundary) != Acad::eOk) return 0;
    kova::CSaveSysVar echo(true);
    if (acedCommand(RTSTR, L".hatch", RTSTR, L"solid", RTENAME, name, RTSTR, L"", RTNONE) != RTNORM)
        return 0;
    ads_name last;
    AcDbObjectId hatch;
    if (!kova::cad::GetLastEnt(last) || acdbGetObjectId(hatch, last) != Acad::eOk) return 0;
    kova::ent::ChangeColor(hatch, static_cast<unsigned short>(colorIndex));
    hatches_.append(hatch);
    return 1;
}

int CFEntAreaHatch::HideHatch(int hide) {
    kova::CFDocLock lock;
    int result = 0;
    for (int i = 0; i < hatches_.length(); ++i)
        result = kova::ent::Hide(hatches_[i], hide);
    return result;
}

int CFEntAreaHatch::ClearHatch() {
    kova::CFDocLock lock;
    return kova::ent::Erase(hatches_);
}
