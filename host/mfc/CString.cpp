#include "host/mfc/CString.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <locale.h>
#include <wctype.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cwchar>
#include <ostream>

#include "host/db/TextCodec.h"

namespace {

#ifdef _WIN32
// Case mapping must not depend on the user's locale: the invariant one of the platform.
wchar_t mapCase(wchar_t ch, DWORD flag) {
    wchar_t out = ch;
    return LCMapStringEx(LOCALE_NAME_INVARIANT, flag, &ch, 1, &out, 1, nullptr, nullptr, 0) == 1
               ? out
               : ch;
}

wchar_t toUpper(wchar_t ch) {
    if (ch >= L'a' && ch <= L'z') return static_cast<wchar_t>(ch - L'a' + L'A');
    if (ch < 0x80) return ch;
    return mapCase(ch, LCMAP_UPPERCASE);
}

wchar_t toLower(wchar_t ch) {
    if (ch >= L'A' && ch <= L'Z') return static_cast<wchar_t>(ch - L'A' + L'a');
    if (ch < 0x80) return ch;
    return mapCase(ch, LCMAP_LOWERCASE);
}
#else
// Case mapping must not depend on whatever locale the program set, so it uses its own.
locale_t caseLocale() {
    static const locale_t locale = [] {
        locale_t l = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr));
        return l ? l : static_cast<locale_t>(nullptr);
    }();
    return locale;
}

wchar_t toUpper(wchar_t ch) {
    if (ch >= L'a' && ch <= L'z') return static_cast<wchar_t>(ch - L'a' + L'A');
    if (ch < 0x80) return ch;
    locale_t l = caseLocale();
    return l ? static_cast<wchar_t>(towupper_l(static_cast<wint_t>(ch), l)) : ch;
}

wchar_t toLower(wchar_t ch) {
    if (ch >= L'A' && ch <= L'Z') return static_cast<wchar_t>(ch - L'A' + L'a');
    if (ch < 0x80) return ch;
    locale_t l = caseLocale();
    return l ? static_cast<wchar_t>(towlower_l(static_cast<wint_t>(ch), l)) : ch;
}
#endif

bool isWhite(wchar_t ch) {
    if (ch == L' ' || (ch >= 0x09 && ch <= 0x0D)) return true;
    if (ch < 0x85) return false;
    return ch == 0x85 || ch == 0xA0 || ch == 0x1680 || (ch >= 0x2000 && ch <= 0x200A) ||
           ch == 0x2028 || ch == 0x2029 || ch == 0x202F || ch == 0x205F || ch == 0x3000;
}

bool inSet(wchar_t ch, const wchar_t* chars) {
    if (!chars) return false;
    for (const wchar_t* p = chars; *p; ++p) {
        if (*p == ch) return true;
    }
    return false;
}

int sign(int value) {
    return value < 0 ? -1 : (value > 0 ? 1 : 0);
}

template <typename Pred>
void trimLeftIf(std::wstring& text, Pred pred) {
    std::size_t i = 0;
    while (i < text.size() && pred(text[i]))
        ++i;
    text.erase(0, i);
}

template <typename Pred>
void trimRightIf(std::wstring& text, Pred pred) {
    std::size_t n = text.size();
    while (n > 0 && pred(text[n - 1]))
        --n;
    text.resize(n);
}

}  // namespace

CString::CString(const wchar_t* text) {
    if (text) text_ = text;
}

CString::CString(const wchar_t* text, int length) {
    if (text && length > 0) text_.assign(text, static_cast<std::size_t>(length));
}

CString::CString(wchar_t ch, int count) {
    if (count > 0) text_.assign(static_cast<std::size_t>(count), ch);
}

CString::CString(const char* utf8) {
    if (utf8) text_ = db::utf8ToWide(utf8);
}

CString& CString::operator=(const wchar_t* text) {
    if (text) {
        text_ = text;  // assign copes with text pointing into text_
    } else {
        text_.clear();
    }
    return *this;
}

CString& CString::operator=(wchar_t ch) {
    text_.assign(1, ch);
    return *this;
}

CString CString::FromUtf8(std::string_view utf8) {
    return CString(db::utf8ToWide(utf8));
}

std::string CString::ToUtf8() const {
    return db::wideToUtf8(text_);
}

wchar_t CString::GetAt(int index) const {
    if (index < 0 || index >= GetLength()) return L'\0';
    return text_[static_cast<std::size_t>(index)];
}

void CString::SetAt(int index, wchar_t ch) {
    if (index < 0 || index >= GetLength()) return;
    text_[static_cast<std::size_t>(index)] = ch;
}

wchar_t* CString::GetBuffer(int minLength) {
    if (minLength > GetLength()) text_.resize(static_cast<std::size_t>(minLength));
    return text_.data();
}

wchar_t* CString::GetBufferSetLength(int length) {
    text_.resize(static_cast<std::size_t>(std::max(length, 0)));
    return text_.data();
}

void CString::ReleaseBuffer(int newLength) {
    if (newLength < 0) {
        text_.resize(std::wcslen(text_.c_str()));
    } else if (newLength < GetLength()) {
        text_.resize(static_cast<std::size_t>(newLength));
    }
}

void CString::SetString(const wchar_t* text) {
    *this = text;
}

void CString::SetString(const wchar_t* text, int length) {
    if (!text || length <= 0) {
        text_.clear();
    } else {
        text_.assign(text, static_cast<std::size_t>(length));
    }
}

void CString::Append(const wchar_t* text) {
    if (text) text_.append(text);
}

void CString::Append(const wchar_t* text, int length) {
    if (text && length > 0) text_.append(text, static_cast<std::size_t>(length));
}

void CString::Truncate(int length) {
    if (length >= 0 && length < GetLength()) text_.resize(static_cast<std::size_t>(length));
}

CString CString::Left(int count) const {
    if (count <= 0) return CString();
    return CString(text_.substr(0, static_cast<std::size_t>(count)));
}

CString CString::Right(int count) const {
    if (count <= 0) return CString();
    if (count >= GetLength()) return *this;
    return CString(text_.substr(text_.size() - static_cast<std::size_t>(count)));
}

CString CString::Mid(int first) const {
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
    const long long length = GetLength();
    long long from = std::max(first, 0);
    long long n = std::max(count, 0);
    if (from > length) return CString();
    if (from + n > length) n = length - from;
    return CString(text_.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(n)));
}

int CString::Find(wchar_t ch, int start) const {
    if (start < 0 || start >= GetLength()) return -1;
    const auto pos = text_.find(ch, static_cast<std::size_t>(start));
    return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::Find(const wchar_t* sub, int start) const {
    if (!sub || start < 0 || start > GetLength()) return -1;
    const auto pos = text_.find(sub, static_cast<std::size_t>(start));
    return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::ReverseFind(wchar_t ch) const {
    const auto pos = text_.rfind(ch);
    return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::FindOneOf(const wchar_t* chars) const {
    if (!chars || !*chars) return -1;
    const auto pos = text_.find_first_of(chars);
    return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::Replace(wchar_t oldChar, wchar_t newChar) {
    if (oldChar == newChar) return 0;
    int count = 0;
    for (wchar_t& ch : text_) {
        if (ch == oldChar) {
            ch = newChar;
            ++count;
        }
    }
    return count;
}

int CString::Replace(const wchar_t* oldText, const wchar_t* newText) {
    if (!oldText || !*oldText) return 0;
    const std::wstring from(oldText);
    const std::wstring to(newText ? newText : L"");
    std::wstring result;
    int count = 0;
    std::size_t pos = 0;
    for (;;) {
        const auto hit = text_.find(from, pos);
        if (hit == std::wstring::npos) break;
        result.append(text_, pos, hit - pos);
        result += to;
        pos = hit + from.size();
        ++count;
    }
    if (count > 0) {
        result.append(text_, pos, std::wstring::npos);
        text_ = std::move(result);
    }
    return count;
}

int CString::Remove(wchar_t ch) {
    const auto before = text_.size();
    std::erase(text_, ch);
    return static_cast<int>(before - text_.size());
}

int CString::Insert(int index, wchar_t ch) {
    const int at = std::clamp(index, 0, GetLength());
    text_.insert(static_cast<std::size_t>(at), 1, ch);
    return GetLength();
}

int CString::Insert(int index, const wchar_t* text) {
    if (text) {
        const int at = std::clamp(index, 0, GetLength());
        const std::wstring copy(text);  // text may point into this string
        text_.insert(static_cast<std::size_t>(at), copy);
    }
    return GetLength();
}

int CString::Delete(int index, int count) {
    const long long length = GetLength();
    const long long from = std::max(index, 0);
    long long n = std::max(count, 0);
    if (from + n > length) n = length - from;
    if (n > 0) text_.erase(static_cast<std::size_t>(from), static_cast<std::size_t>(n));
    return GetLength();
}

CString& CString::MakeUpper() {
    for (wchar_t& ch : text_)
        ch = toUpper(ch);
    return *this;
}

CString& CString::MakeLower() {
    for (wchar_t& ch : text_)
        ch = toLower(ch);
    return *this;
}

CString& CString::MakeReverse() {
    std::reverse(text_.begin(), text_.end());
    return *this;
}

CString& CString::Trim() {
    return TrimRight().TrimLeft();
}
CString& CString::Trim(wchar_t ch) {
    return TrimRight(ch).TrimLeft(ch);
}
CString& CString::Trim(const wchar_t* chars) {
    return TrimRight(chars).TrimLeft(chars);
}

CString& CString::TrimLeft() {
    trimLeftIf(text_, isWhite);
    return *this;
}

CString& CString::TrimLeft(wchar_t ch) {
    trimLeftIf(text_, [ch](wchar_t c) { return c == ch; });
    return *this;
}

CString& CString::TrimLeft(const wchar_t* chars) {
    trimLeftIf(text_, [chars](wchar_t c) { return inSet(c, chars); });
    return *this;
}

CString& CString::TrimRight() {
    trimRightIf(text_, isWhite);
    return *this;
}

CString& CString::TrimRight(wchar_t ch) {
    trimRightIf(text_, [ch](wchar_t c) { return c == ch; });
    return *this;
}

CString& CString::TrimRight(const wchar_t* chars) {
    trimRightIf(text_, [chars](wchar_t c) { return inSet(c, chars); });
    return *this;
}

CString CString::SpanIncluding(const wchar_t* chars) const {
    std::size_t n = 0;
    while (n < text_.size() && inSet(text_[n], chars))
        ++n;
    return CString(text_.substr(0, n));
}

CString CString::SpanExcluding(const wchar_t* chars) const {
    std::size_t n = 0;
    while (n < text_.size() && !inSet(text_[n], chars))
        ++n;
    return CString(text_.substr(0, n));
}

CString CString::Tokenize(const wchar_t* delimiters, int& start) const {
    const int length = GetLength();
    if (start >= 0 && start < length) {
        if (!delimiters || !*delimiters) {
            CString rest = Mid(start);
            start = length;
            return rest;
        }
        int from = start;
        while (from < length && inSet(text_[static_cast<std::size_t>(from)], delimiters))
            ++from;
        if (from < length) {
            int until = from;
            while (until < length && !inSet(text_[static_cast<std::size_t>(until)], delimiters))
                ++until;
            start = until + 1;
            return Mid(from, until - from);
        }
    }
    start = -1;
    return CString();
}

int CString::Compare(const wchar_t* other) const {
    return sign(text_.compare(other ? other : L""));
}

int CString::CompareNoCase(const wchar_t* other) const {
    const std::wstring_view b(other ? other : L"");
    const std::size_t n = std::min(text_.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        const wchar_t ca = toLower(text_[i]);
        const wchar_t cb = toLower(b[i]);
        if (ca != cb) return ca < cb ? -1 : 1;
    }
    return text_.size() == b.size() ? 0 : (text_.size() < b.size() ? -1 : 1);
}

int CString::Collate(const wchar_t* other) const {
    return sign(std::wcscoll(text_.c_str(), other ? other : L""));
}

CString& CString::operator+=(const CString& text) {
    text_ += text.text_;
    return *this;
}

CString& CString::operator+=(const wchar_t* text) {
    if (text) text_ += std::wstring(text);  // text may point into this string
    return *this;
}

CString& CString::operator+=(wchar_t ch) {
    text_.push_back(ch);
    return *this;
}

void CString::FormatV(const wchar_t* format, va_list args) {
    text_ = db::formatVa(format, args);
}

void CString::AppendFormatV(const wchar_t* format, va_list args) {
    text_ += db::formatVa(format, args);
}

std::ostream& operator<<(std::ostream& out, const CString& text) {
    return out << text.ToUtf8();
}
