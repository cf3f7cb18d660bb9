#pragma once
// The MFC array of strings. MFC asserts on an index out of range; here such a read gives
// an empty string, a write is ignored, and ElementAt gives a scratch string that belongs
// to no array, so a bad index can never touch memory it does not own.
#include <vector>

#include "host/mfc/CString.h"
#include "host/mfc/afx.h"
#include "kplan/Export.h"

class KPLAN_API CStringArray {
  public:
    using iterator = std::vector<CString>::iterator;
    using const_iterator = std::vector<CString>::const_iterator;

    CStringArray() = default;

    INT_PTR GetSize() const { return static_cast<INT_PTR>(items_.size()); }
    INT_PTR GetCount() const { return GetSize(); }
    bool IsEmpty() const { return items_.empty(); }
    INT_PTR GetUpperBound() const { return GetSize() - 1; }
    // Grows with empty strings or shrinks; a negative size empties the array. The growth
    // step of MFC is accepted and has no use here.
    void SetSize(INT_PTR newSize, INT_PTR growBy = -1);

    const CString& GetAt(INT_PTR index) const;
    void SetAt(INT_PTR index, const CString& text);
    CString& ElementAt(INT_PTR index);
    const CString& operator[](INT_PTR index) const { return GetAt(index); }
    CString& operator[](INT_PTR index) { return ElementAt(index); }

    // Returns the index of the new element.
    INT_PTR Add(const CString& text);
    // Returns the size before appending.
    INT_PTR Append(const CStringArray& other);
    void Copy(const CStringArray& other);

    void RemoveAll() { items_.clear(); }
    // Removes up to count elements from index; nothing for an index outside the array.
    void RemoveAt(INT_PTR index, INT_PTR count = 1);
    // Inserts count copies before index; an index past the end grows the array with empty
    // strings up to it, as MFC does. A negative index or count does nothing.
    void InsertAt(INT_PTR index, const CString& text, INT_PTR count = 1);
    void InsertAt(INT_PTR startIndex, const CStringArray* other);

    iterator begin() { return items_.begin(); }
    iterator end() { return items_.end(); }
    const_iterator begin() const { return items_.begin(); }
    const_iterator end() const { return items_.end(); }

    friend bool operator==(const CStringArray&, const CStringArray&) = default;

  private:
    std::vector<CString> items_;
};
