#include "record/LabelList.h"

#include "host/arx/acutads.h"
#include "host/kova/KovaDat.h"

namespace dk {

int ReadListValue(AcDbObjectId id, const wchar_t* app, const wchar_t* label, CString& value) {
    if (!id.isValid() || id.isErased() || label == nullptr) return 0;
    resbuf* list = nullptr;
    if (!kova::dat::ReadObjXdata(id, app, list)) return 0;
    int found = kova::dat::GetRbString(list, label, value);
    acutRelRb(list);
    return found;
}

int WriteListValue(AcDbObjectId id, const wchar_t* app, const wchar_t* label,
                   const wchar_t* value) {
    if (!id.isValid() || id.isErased() || label == nullptr || *label == 0) return 0;
    if (value == nullptr) value = L"";
    resbuf* list = nullptr;
    int ok = 0;
    if (kova::dat::ReadObjXdata(id, app, list)) {
        if (kova::dat::SetRbString(list, label, value)) {
            ok = kova::dat::AddObjXdata(id, app, list);
        } else {
            resbuf* pair = acutBuildList(1000, label, 1000, value, 0);
            ok = kova::dat::PasteObjXdata(id, app, pair);
            acutRelRb(pair);
        }
    } else {
        resbuf* pair = acutBuildList(1000, label, 1000, value, 0);
        ok = kova::dat::AddObjXdata(id, app, pair);
        acutRelRb(pair);
    }
    acutRelRb(list);
    return ok;
}

int WriteListPairs(AcDbObjectId id, const wchar_t* app, const CStringArray& labels,
                   const CStringArray& values) {
    if (!id.isValid() || id.isErased() || labels.GetSize() != values.GetSize()) return 0;
    resbuf* list = nullptr;
    kova::dat::ReadObjXdata(id, app, list);
    resbuf* last = list;
    while (last != nullptr && last->rbnext != nullptr)
        last = last->rbnext;
    int ok = 1;
    bool changed = false;
    for (INT_PTR i = 0; i < labels.GetSize(); ++i) {
        const wchar_t* label = labels[i];
        if (*label == 0) {
            ok = 0;
            continue;
        }
        changed = true;
        if (list != nullptr && kova::dat::SetRbString(list, label, values[i])) continue;
        resbuf* pair = acutBuildList(1000, label, 1000, static_cast<const wchar_t*>(values[i]), 0);
        if (list == nullptr) {
            list = pair;
        } else {
            last->rbnext = pair;
        }
        last = pair->rbnext;
    }
    if (changed && !kova::dat::AddObjXdata(id, app, list)) ok = 0;
    acutRelRb(list);
    return ok;
}

int ReadListPairs(AcDbObjectId id, const wchar_t* app, CStringArray& labels, CStringArray& values) {
    labels.RemoveAll();
    values.RemoveAll();
    if (!id.isValid() || id.isErased()) return 0;
    resbuf* list = nullptr;
    if (!kova::dat::ReadObjXdata(id, app, list)) return 0;
    bool label = true;
    for (resbuf* rb = list; rb != nullptr; rb = rb->rbnext) {
        if (rb->restype != 1000) continue;
        (label ? labels : values).Add(rb->resval.rstring);
        label = !label;
    }
    acutRelRb(list);
    if (values.GetSize() < labels.GetSize()) values.Add(L"");
    return static_cast<int>(labels.GetSize());
}

}  // namespace dk
