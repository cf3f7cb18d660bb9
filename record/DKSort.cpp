#include "record/DKSort.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <vector>

#include "host/kova/KovaError.h"
#include "record/DKBJXDInfo.h"

namespace {

// The value of text that is wholly a decimal number.
bool asNumber(const CString& text, double& value) {
    const wchar_t* begin = text;
    if (*begin == L'\0') return false;
    wchar_t* end = nullptr;
    value = std::wcstod(begin, &end);
    return end != begin && *end == L'\0' && !std::iswspace(*begin);
}

int compareDigitRuns(const wchar_t*& a, const wchar_t*& b) {
    // Leading zeros do not change the value; a longer run of significant digits is larger.
    while (*a == L'0' && std::iswdigit(a[1]))
        ++a;
    while (*b == L'0' && std::iswdigit(b[1]))
        ++b;
    const wchar_t *ea = a, *eb = b;
    while (std::iswdigit(*ea))
        ++ea;
    while (std::iswdigit(*eb))
        ++eb;
    int result = 0;
    if (ea - a != eb - b) {
        result = ea - a < eb - b ? -1 : 1;
    } else {
        for (const wchar_t *p = a, *q = b; p < ea; ++p, ++q) {
            if (*p != *q) {
                result = *p < *q ? -1 : 1;
                break;
            }
        }
    }
    a = ea;
    b = eb;
    return result;
}

int naturalCompare(const wchar_t* a, const wchar_t* b) {
    while (*a && *b) {
        if (std::iswdigit(*a) && std::iswdigit(*b)) {
            if (int c = compareDigitRuns(a, b)) return c;
            continue;
        }
        if (*a != *b) return *a < *b ? -1 : 1;
        ++a;
        ++b;
    }
    if (*a == *b) return 0;
    return *a == L'\0' ? -1 : 1;
}

}  // namespace

int FCompareFieldValues(const CString& a, const CString& b) {
    double x = 0, y = 0;
    bool numberA = asNumber(a, x), numberB = asNumber(b, y);
    if (numberA && numberB) return x < y ? -1 : (y < x ? 1 : 0);
    if (numberA != numberB) return numberA ? -1 : 1;
    return naturalCompare(a, b);
}

int FSortObjByField(AcDbObjectIdArray& ids, const CString& field, bool descending) {
    if (ids.isEmpty() || field.IsEmpty()) return 0;
    return kova::Guarded(L"FSortObjByField", 0, [&] {
        struct Item {
            AcDbObjectId id;
            CString value;
        };
        std::vector<Item> items;
        for (AcDbObjectId id : ids) {
            CString value;
            if (!id.isNull() && id.isValid() && !id.isErased()) {
                CDKBJXDInfo(id).GetData(static_cast<const wchar_t*>(field), value);
            }
            value.Trim();
            items.push_back({id, value});
        }
        std::stable_sort(items.begin(), items.end(), [&](const Item& a, const Item& b) {
            if (a.value.IsEmpty() || b.value.IsEmpty())
                return !a.value.IsEmpty() && b.value.IsEmpty();
            int c = FCompareFieldValues(a.value, b.value);
            return descending ? c > 0 : c < 0;
        });
        for (int i = 0; i < ids.length(); ++i)
            ids[i] = items[static_cast<std::size_t>(i)].id;
        return ids.length();
    });
}
