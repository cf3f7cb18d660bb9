#include "record/DKScan.h"

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaSelSet.h"
#include "host/kova/fgdutil.h"
#include "record/XDataAccess.h"

namespace dk {

int SelectParcels(const wchar_t* types, const wchar_t* apps, bool currentSpaceOnly,
                  AcDbObjectIdArray& ids) {
    ids.removeAll();
    if (currentSpaceOnly) {
        resbuf* filter =
            acutBuildList(RTDXF0, types, 67, kova::cad::GetCurSpace(), -3, 1001, apps, 0);
        kova::CFArxSelSet selection;
        if (selection.allSelect(filter) == kova::CFArxSelSet::kSelected) selection.asArray(ids);
        acutRelRb(filter);
        return ids.length();
    }
    resbuf* filter = acutBuildList(RTDXF0, types, -3, 1001, apps, 0);
    ads_name ss = {0, 0};
    int rc = acedSSGet(L"X", nullptr, nullptr, filter, ss);
    acutRelRb(filter);
    if (rc != RTNORM) return 0;
    kova::ent::SSToIds(ss, ids);
    acedSSFree(ss);
    return ids.length();
}

IdAppender::IdAppender(AcDbObjectIdArray& ids) : ids_(ids) {
    seen_.reserve(static_cast<std::size_t>(ids.length()) * 2);
    for (AcDbObjectId id : ids)
        seen_.insert(id);
}

bool IdAppender::add(AcDbObjectId id, bool checkLive) {
    if (checkLive && (!id.isValid() || id.isErased())) return false;
    if (!seen_.insert(id).second) return false;
    ids_.append(id);
    return true;
}

bool AppendNewString(CStringArray& list, const CString& text) {
    if (fgdutil::StrArrFindStr(list, text)) return false;
    list.Add(text);
    return true;
}

bool ClassBeginsWith(const CString& cls, const CString& prefix) {
    if (prefix.IsEmpty()) return false;
    return cls.Left(prefix.GetLength()) == prefix;
}

CString LargeClass(const CString& cls) {
    CString cut = cls.Left(FStrHaveChinese(cls) ? 2 : 1);
    cut.MakeUpper();
    return cut;
}

CString MidClass(const CString& cls) {
    CString cut = cls.Left(FStrHaveChinese(cls) ? 3 : 2);
    cut.MakeUpper();
    return cut;
}

}  // namespace dk
