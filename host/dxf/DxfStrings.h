#pragma once
// Strings of a drawing file: UTF-8 from AC1021 on, the drawing's code page before,
// with the \U+XXXX and \M+nXXXX escapes that carry characters the code page lacks.
#include <string>
#include <string_view>

namespace dxf {

// True for versions whose files are UTF-8 ("AC1021" and later).
bool isUtf8Version(std::string_view version);

class DxfStrings {
  public:
    DxfStrings(std::string_view version, std::string codePage);

    // File bytes to text with every escape expanded.
    std::wstring toWide(std::string_view bytes) const;
    std::string toUtf8(std::string_view bytes) const;
    // True when the bytes are their own UTF-8 (the common case: ASCII, or UTF-8 in a
    // UTF-8 file, without escapes), so that toUtf8 has nothing to do.
    bool isUtf8AsIs(std::string_view bytes) const;

    // Text to file bytes: UTF-8, or the code page with escapes for what it lacks.
    std::string fromWide(std::wstring_view text) const;
    std::string fromUtf8(std::string_view text) const;

    bool utf8() const { return utf8_; }
    const std::string& codePage() const { return codePage_; }

  private:
    bool utf8_;
    std::string codePage_;
};

// Expands \U+XXXX and \M+nXXXX (n: 1 Shift-JIS, 2 Big5, 3 Korean, 4 Johab, 5 GBK).
std::wstring expandDxfEscapes(std::wstring_view text);

}  // namespace dxf
