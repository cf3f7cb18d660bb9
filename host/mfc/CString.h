#pragma once
// The MFC string of a Unicode build over std::wstring. Positions and lengths are ints in
// wchar_t units (one per code point here); out-of-range arguments are clamped as MFC
// clamps them, and where MFC asserts the behaviour below is defined and documented.
#include <compare>
#include <cstdarg>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>

#include "host/db/WindowsFormat.h"
#include "host/mfc/afx.h"
#include "kplan/Export.h"

class KPLAN_API CString {
  public:
    CString() = default;
    CString(const wchar_t* text);  // nullptr gives an empty string
    CString(const wchar_t* text, int length);
    explicit CString(wchar_t ch, int count = 1);
    CString(std::wstring text) : text_(std::move(text)) {}
    CString(std::wstring_view text) : text_(text) {}
    CString(const char* utf8);  // nullptr gives an empty string
    CString(const CString&) = default;
    CString(CString&&) noexcept = default;
    CString& operator=(const CString&) = default;
    CString& operator=(CString&&) noexcept = default;
    CString& operator=(const wchar_t* text);
    CString& operator=(wchar_t ch);

    static CString FromUtf8(std::string_view utf8);
    std::string ToUtf8() const;
    const std::wstring& wstr() const { return text_; }

    int GetLength() const { return static_cast<int>(text_.size()); }
    bool IsEmpty() const { return text_.empty(); }
    void Empty() { text_.clear(); }

    // Out of range: GetAt gives L'\0' and SetAt does nothing.
    wchar_t GetAt(int index) const;
    void SetAt(int index, wchar_t ch);
    wchar_t operator[](int index) const { return GetAt(index); }

    operator const wchar_t*() const { return text_.c_str(); }
    const wchar_t* GetString() const { return text_.c_str(); }

    // GetBuffer(n) makes room for at least n characters and the terminator; the string is
    // then at least n long until ReleaseBuffer. ReleaseBuffer(-1) takes the length from the
    // first L'\0', any other length is clamped to the buffer.
    wchar_t* GetBuffer(int minLength = 0);
    wchar_t* GetBufferSetLength(int length);
    void ReleaseBuffer(int newLength = -1);
    void FreeExtra() { text_.shrink_to_fit(); }

    void SetString(const wchar_t* text);
    void SetString(const wchar_t* text, int length);
    void Append(const wchar_t* text);
    void Append(const wchar_t* text, int length);
    void Append(const CString& text) { text_ += text.text_; }
    void AppendChar(wchar_t ch) { text_.push_back(ch); }
    void Truncate(int length);

    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    // -1 when absent. Find of a character gives -1 for a start outside the string; Find of
    // a string accepts a start up to the length (an empty needle is found at the start).
    int Find(wchar_t ch, int start = 0) const;
    int Find(const wchar_t* sub, int start = 0) const;
    int ReverseFind(wchar_t ch) const;
    int FindOneOf(const wchar_t* chars) const;

    int Replace(wchar_t oldChar, wchar_t newChar);
    int Replace(const wchar_t* oldText, const wchar_t* newText);
    int Remove(wchar_t ch);
    int Insert(int index, wchar_t ch);
    int Insert(int index, const wchar_t* text);
    int Delete(int index, int count = 1);

    // Case mapping is the simple Unicode mapping of the C.UTF-8 locale whatever locale the
    // process runs in (ASCII alone if that locale is missing).
    CString& MakeUpper();
    CString& MakeLower();
    CString& MakeReverse();

    // White space is what the Windows runtime's iswspace accepts: \t \n \v \f \r, blank,
    // U+0085, U+00A0, U+1680, U+2000 to U+200A, U+2028, U+2029, U+202F, U+205F and U+3000
    // (the ideographic space of Chinese text). A character set removes any of its members.
    CString& Trim();
    CString& Trim(wchar_t ch);
    CString& Trim(const wchar_t* chars);
    CString& TrimLeft();
    CString& TrimLeft(wchar_t ch);
    CString& TrimLeft(const wchar_t* chars);
    CString& TrimRight();
    CString& TrimRight(wchar_t ch);
    CString& TrimRight(const wchar_t* chars);

    CString SpanIncluding(const wchar_t* chars) const;
    CString SpanExcluding(const wchar_t* chars) const;
    // Skips leading delimiters, returns the token and moves start past its delimiter; at
    // the end returns "" and sets start to -1. Without delimiters the rest of the string is
    // the one token.
    CString Tokenize(const wchar_t* delimiters, int& start) const;

    // Ordinal comparisons give -1, 0 or 1; CompareNoCase folds with MakeLower's mapping and
    // Collate follows the process locale's collation.
    int Compare(const wchar_t* other) const;
    int CompareNoCase(const wchar_t* other) const;
    int Collate(const wchar_t* other) const;

    CString& operator+=(const CString& text);
    CString& operator+=(const wchar_t* text);
    CString& operator+=(wchar_t ch);

    // printf formatting with the conventions of the Windows runtime: %s and %c are wide,
    // %S, %hs, %C and %hc narrow (UTF-8 here), %ls/%ws/%lc wide, %I64d/%I32d/%Id sized
    // integers. Arguments keep their own types, so a CString or std::wstring may be passed
    // to %s and a mismatched argument is converted rather than misread: a number for %s
    // prints as a number, a string for %d prints as the string. %n writes nothing; a
    // missing argument prints nothing.
    template <typename... Args>
    void Format(const wchar_t* format, const Args&... args);
    template <typename... Args>
    void AppendFormat(const wchar_t* format, const Args&... args);
    // The same for a C variable argument list, where the conversion decides the type.
    void FormatV(const wchar_t* format, va_list args);
    void AppendFormatV(const wchar_t* format, va_list args);

    // Hidden friends, so that comparisons and sums of other string types never see them.
    // The rewritten forms give !=, <, >, <=, >= and the reversed operand orders.
    friend bool operator==(const CString& a, const CString& b) { return a.text_ == b.text_; }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
        return a.text_ <=> b.text_;
    }
    friend bool operator==(const CString& a, const wchar_t* b) { return a.Compare(b) == 0; }
    friend std::strong_ordering operator<=>(const CString& a, const wchar_t* b) {
        return a.Compare(b) <=> 0;
    }

    friend CString operator+(const CString& a, const CString& b) { return CString(a) += b; }
    friend CString operator+(const CString& a, const wchar_t* b) { return CString(a) += b; }
    friend CString operator+(const wchar_t* a, const CString& b) { return CString(a) += b; }
    friend CString operator+(const CString& a, wchar_t b) { return CString(a) += b; }
    friend CString operator+(wchar_t a, const CString& b) { return CString(a) += b; }

  private:
    std::wstring text_;
};

// Writes the string as UTF-8 (GoogleTest prints values through it).
KPLAN_API std::ostream& operator<<(std::ostream& out, const CString& text);

// Not in MFC: left out by the platform check, as the hash of object ids (host/arx/dbid.h).
#ifndef KPLAN_NO_HOST_HASHES
template <>
struct std::hash<CString> {
    std::size_t operator()(const CString& text) const noexcept {
        return std::hash<std::wstring>()(text.wstr());
    }
};
#endif

namespace mfc_detail {

template <typename T>
db::FormatArg toFormatArg(const T& value) {
    using U = std::remove_cv_t<T>;
    db::FormatArg arg;
    if constexpr (std::is_array_v<U>) {
        using E = std::remove_cv_t<std::remove_extent_t<U>>;
        static_assert(std::is_same_v<E, wchar_t> || std::is_same_v<E, char>,
                      "Format takes character arrays only");
        std::size_t n = 0;
        while (n < std::extent_v<U> && value[n] != 0)
            ++n;
        if constexpr (std::is_same_v<E, wchar_t>) {
            arg.kind = db::FormatArg::Kind::Wide;
            arg.ws = value;
        } else {
            arg.kind = db::FormatArg::Kind::Narrow;
            arg.s = value;
        }
        arg.length = n;
    } else if constexpr (std::is_same_v<U, bool>) {
        arg.kind = db::FormatArg::Kind::Signed;
        arg.size = sizeof(int);
        arg.i = value ? 1 : 0;
    } else if constexpr (std::is_integral_v<U> || std::is_enum_v<U>) {
        using I = typename std::conditional_t<std::is_enum_v<U>, std::underlying_type<U>,
                                              std::type_identity<U>>::type;
        arg.size = sizeof(I);
        if constexpr (std::is_signed_v<I>) {
            arg.kind = db::FormatArg::Kind::Signed;
            arg.i = static_cast<long long>(value);
        } else {
            arg.kind = db::FormatArg::Kind::Unsigned;
            arg.u = static_cast<unsigned long long>(value);
        }
    } else if constexpr (std::is_floating_point_v<U>) {
        arg.kind = db::FormatArg::Kind::Floating;
        arg.size = sizeof(U);
        arg.f = value;
    } else if constexpr (std::is_same_v<U, const wchar_t*> || std::is_same_v<U, wchar_t*>) {
        arg.kind = db::FormatArg::Kind::Wide;
        arg.ws = value;
        arg.length = value ? std::char_traits<wchar_t>::length(value) : 0;
    } else if constexpr (std::is_same_v<U, const char*> || std::is_same_v<U, char*>) {
        arg.kind = db::FormatArg::Kind::Narrow;
        arg.s = value;
        arg.length = value ? std::char_traits<char>::length(value) : 0;
    } else if constexpr (std::is_same_v<U, CString>) {
        arg.kind = db::FormatArg::Kind::Wide;
        arg.ws = value.GetString();
        arg.length = static_cast<std::size_t>(value.GetLength());
    } else if constexpr (std::is_same_v<U, std::wstring> || std::is_same_v<U, std::wstring_view>) {
        arg.kind = db::FormatArg::Kind::Wide;
        arg.ws = value.data();
        arg.length = value.size();
    } else if constexpr (std::is_same_v<U, std::string> || std::is_same_v<U, std::string_view>) {
        arg.kind = db::FormatArg::Kind::Narrow;
        arg.s = value.data();
        arg.length = value.size();
    } else if constexpr (std::is_pointer_v<U> || std::is_null_pointer_v<U>) {
        arg.kind = db::FormatArg::Kind::Pointer;
        arg.p = value;
    } else {
        static_assert(std::is_pointer_v<U>, "Format cannot print this type");
    }
    return arg;
}

}  // namespace mfc_detail

template <typename... Args>
void CString::Format(const wchar_t* format, const Args&... args) {
    const db::FormatArg list[] = {mfc_detail::toFormatArg(args)..., {}};
    text_ = db::formatArgs(format, list, sizeof...(Args));
}

template <typename... Args>
void CString::AppendFormat(const wchar_t* format, const Args&... args) {
    const db::FormatArg list[] = {mfc_detail::toFormatArg(args)..., {}};
    text_ += db::formatArgs(format, list, sizeof...(Args));
}
