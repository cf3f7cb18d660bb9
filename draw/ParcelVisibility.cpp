#include "draw/ParcelVisibility.h"

#include "host/kova/KovaDat.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"

namespace {

int hideLinked(AcDbObjectId owner, const ACHAR* linkName, int hide) {
    AcDbObjectIdArray ids;
    kova::dat::GetSoftIds(owner, linkName, ids);
    int done = 0;
    for (AcDbObjectId id : ids)
        done += kova::ent::Hide(id, hide);
    return done;
}

// Each back line after its dimensions.
int hideBackLines(AcDbObjectId parcel, const ACHAR* backLineLink, const ACHAR* dimensionLink,
                  int hide) {
    AcDbObjectIdArray lines;
    kova::dat::GetSoftIds(parcel, backLineLink, lines);
    int done = 0;
    for (AcDbObjectId line : lines) {
        done += hideLinked(line, dimensionLink, hide);
        done += kova::ent::Hide(line, hide);
    }
    return done;
}

int hideParcels(const AcDbObjectIdArray& parcels, int hide, bool withBoundary) {
    int done = 0;
    for (AcDbObjectId parcel : parcels) {
        done += hideLinked(parcel, L"填充色块", hide);
        done += hideLinked(parcel, L"ATTBLK_DKBJ_XNAME", hide);
        done += hideBackLines(parcel, L"DK_LINK_GC_BACKLINE", L"GCBACKLINE_LINK_DIM", hide);
        done += hideBackLines(parcel, L"DK_LINK_DC_BACKLINE", L"DCBACKLINE_LINK_DIM", hide);
        if (withBoundary) done += kova::ent::Hide(parcel, hide);
    }
    return done;
}

int hideOne(AcDbObjectId parcel, int hide, bool withBoundary) {
    if (!parcel.isValid() || parcel.isErased()) return 0;
    AcDbObjectIdArray one;
    one.append(parcel);
    return hideParcels(one, hide, withBoundary);
}

}  // namespace

int FHideDK(const AcDbObjectIdArray& parcels, int hide) {
    return kova::Guarded(L"qmplantuze::FHideDK", 0,
                         [&] { return hideParcels(parcels, hide, true); });
}

int FHideDK(AcDbObjectId parcel, int hide) {
    return kova::Guarded(L"qmplantuze::FHideDK", 0, [&] { return hideOne(parcel, hide, true); });
}

int FHideDKTC(const AcDbObjectIdArray& parcels, int hide) {
    return kova::Guarded(L"qmplantuze::FHideDKTC", 0,
                         [&] { return hideParcels(parcels, hide, false); });
}

int FHideDKTC(AcDbObjectId parcel, int hide) {
    return kova::Guarded(L"qmplantuze::FHideDKTC", 0, [&] { return hideOne(parcel, hide, false); });
}

int FEntIsHide(AcDbObjectId id) {
    return kova::Guarded(L"FEntIsHide", 0, [&] {
        if (!kova::ent::FIsValidId(id)) return 0;
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return 0;
        bool hidden = entity->visibility() == AcDb::kInvisible;
        entity->close();
        return hidden ? 1 : 0;
    });
}
