#include "host/mfc/CStringArray.h"

#include <algorithm>

namespace {

// What a bad index reads; never handed out writable.
const CString& emptyString() {
    static const CString empty;
    return empty;
}

}  // namespace

void CStringArray::SetSize(INT_PTR newSize, INT_PTR /*growBy*/) {
    items_.resize(newSize > 0 ? static_cast<std::size_t>(newSize) : 0);
}

const CString& CStringArray::GetAt(INT_PTR index) const {
    if (index < 0 || index >= GetSize()) return emptyString();
    return items_[static_cast<std::size_t>(index)];
}

void CStringArray::SetAt(INT_PTR index, const CString& text) {
    if (index < 0 || index >= GetSize()) return;
    items_[static_cast<std::size_t>(index)] = text;
}

CString& CStringArray::ElementAt(INT_PTR index) {
    if (index < 0 || index >= GetSize()) {
        // Each bad access gets the scratch string freshly emptied, so what one caller
        // wrote there is never read back by another.
        thread_local CString scratch;
        scratch.Empty();
        return scratch;
    }
    return items_[static_cast<std::size_t>(index)];
}

INT_PTR CStringArray::Add(const CString& text) {
    items_.push_back(text);
    return GetSize() - 1;
}

INT_PTR CStringArray::Append(const CStringArray& other) {
    const INT_PTR oldSize = GetSize();
    if (&other == this) {
        const std::vector<CString> copy = items_;
        items_.insert(items_.end(), copy.begin(), copy.end());
    } else {
        items_.insert(items_.end(), other.items_.begin(), other.items_.end());
    }
    return oldSize;
}

void CStringArray::Copy(const CStringArray& other) {
    if (&other != this) items_ = other.items_;
}

void CStringArray::RemoveAt(INT_PTR index, INT_PTR count) {
    if (index < 0 || index >= GetSize() || count <= 0) return;
    const INT_PTR last = std::min(index + count, GetSize());
    items_.erase(items_.begin() + index, items_.begin() + last);
}

void CStringArray::InsertAt(INT_PTR index, const CString& text, INT_PTR count) {
    if (index < 0 || count <= 0) return;
    if (index > GetSize()) items_.resize(static_cast<std::size_t>(index));
    const CString copy(text);  // text may be an element of this array
    items_.insert(items_.begin() + index, static_cast<std::size_t>(count), copy);
}

void CStringArray::InsertAt(INT_PTR startIndex, const CStringArray* other) {
    if (!other || startIndex < 0 || other->IsEmpty()) return;
    const std::vector<CString> copy = other->items_;
    if (startIndex > GetSize()) items_.resize(static_cast<std::size_t>(startIndex));
    items_.insert(items_.begin() + startIndex, copy.begin(), copy.end());
}
