#pragma once
// Text conversions between the wide strings of the programming surface (one wchar_t per
// code point, as wchar_t is 32 bits here) and the bytes of files: UTF-8, UTF-16 and the
// Windows code pages that older drawings and class tables are written in.
#include <string>
#include <string_view>

namespace db {

// Ill-formed UTF-8 becomes U+FFFD, one per maximal ill-formed subsequence (the Unicode
// recommendation), so a damaged byte costs one character, not the rest of the line.
std::wstring utf8ToWide(std::string_view bytes);
// The same into out, whose storage is reused.
void utf8ToWide(std::string_view bytes, std::wstring& out);

// Values that are not Unicode scalar values (surrogates, above U+10FFFF) become U+FFFD.
std::string wideToUtf8(std::wstring_view text);

// True when the bytes are well-formed UTF-8 (no overlongs, surrogates or values past
// U+10FFFF).
bool isValidUtf8(std::string_view bytes);

// The iconv name for a drawing's code page: "ANSI_936" gives "GBK" (Windows code page 936,
// with the euro sign at 0x80), "ANSI_n" gives "CPn", "DOSn" gives "IBMn", "UTF-8" and
// "ANSI_65001" give "UTF-8"; any other name is passed through for iconv to judge.
// Case-insensitive.
std::string iconvNameForCodePage(std::string_view codePage);

// Decodes bytes of the code page. Bytes the code page does not define become U+FFFD.
// Returns false when the code page is unknown (out is then empty) or when some byte had
// to be replaced; out holds the best reading in the latter case.
bool decodeCodePage(std::string_view bytes, std::string_view codePage, std::wstring& out);

// Encodes into the code page. Returns false when the code page is unknown (out is then
// empty) or when some character has no encoding there; out then has "?" in its place, as
// the Windows converter does by default.
bool encodeCodePage(std::wstring_view text, std::string_view codePage, std::string& out);

// Like encodeCodePage, but a character the code page cannot hold is written as the
// drawing-file escape "\U+XXXX" (four upper-case hex digits of its UTF-16 code unit; a
// character beyond the BMP becomes two escapes for its surrogate pair). Returns false only
// for an unknown code page.
bool encodeCodePageWithEscapes(std::wstring_view text, std::string_view codePage, std::string& out);

// Replaces every "\U+XXXX" (exactly four hex digits, either case) by its character; two
// escapes forming a surrogate pair become one character, a lone surrogate U+FFFD. A
// backslash not followed by such an escape stays as it is.
std::wstring expandUnicodeEscapes(std::wstring_view text);

// The text of a file: a BOM decides UTF-8, UTF-16 LE or UTF-16 BE (and is dropped);
// without one, well-formed UTF-8 is read as UTF-8 and anything else as GBK. Surrogate
// pairs of UTF-16 are combined; lone surrogates and a dangling odd byte become U+FFFD.
std::wstring decodeTextFile(std::string_view bytes);

}  // namespace db
