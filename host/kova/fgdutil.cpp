#include "host/kova/fgdutil.h"

namespace fgdutil {

int Str2StrArr(const CString& text, CStringArray& list, const CString& separator) {
    list.RemoveAll();
    if (text.IsEmpty()) return 0;
    if (separator.IsEmpty()) {
        list.Add(text);
        return 1;
    }
    const std::wstring& whole = text.wstr();
    const std::wstring& sep = separator.wstr();
    std::size_t start = 0;
    for (;;) {
        const std::size_t hit = whole.find(sep, start);
        if (hit == std::wstring::npos) {
            list.Add(CString(whole.substr(start)));
            break;
        }
        list.Add(CString(whole.substr(start, hit - start)));
        start = hit + sep.size();
    }
    return static_cast<int>(list.GetSize());
}

BOOL StrArrFindStr(const CStringArray& list, const CString& text, int& index) {
    for (INT_PTR i = 0; i < list.GetSize(); ++i) {
        if (list.GetAt(i) == text) {
            index = static_cast<int>(i);
            return TRUE;
        }
    }
    index = -1;
    return FALSE;
}

BOOL StrArrFindStr(const CStringArray& list, const CString& text) {
    int index = -1;
    return StrArrFindStr(list, text, index);
}

}  // namespace fgdutil
