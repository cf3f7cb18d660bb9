#pragma once
// Xdata as loaders keep it until it is used: per item its group code and its text
// (strings in UTF-8, numbers as the file wrote them), packed into one string. Each item
// is its code (2 bytes, little-endian), the length of its text (7 bits a byte, low first,
// the high bit saying more follows) and the text. Readers that need one value find it on
// these bytes without decoding the rest.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace db {

// Appends one item.
inline void appendPacked(std::string& packed, int code, std::string_view text) {
    packed += static_cast<char>(code & 0xFF);
    packed += static_cast<char>((code >> 8) & 0xFF);
    std::size_t rest = text.size();
    do {
        unsigned char b = rest & 0x7F;
        rest >>= 7;
        packed += static_cast<char>(rest ? b | 0x80 : b);
    } while (rest);
    packed.append(text);
}

// Calls f(code, text) for each item, in order; a truncated item ends the walk. When f
// returns bool, false stops it.
template <typename F>
void forEachPacked(std::string_view packed, F f) {
    std::size_t i = 0, n = packed.size();
    while (i + 2 < n) {
        int code = static_cast<std::int16_t>(static_cast<unsigned char>(packed[i]) |
                                             (static_cast<unsigned char>(packed[i + 1]) << 8));
        i += 2;
        std::size_t length = 0;
        int shift = 0;
        while (i < n) {
            unsigned char b = static_cast<unsigned char>(packed[i++]);
            length |= static_cast<std::size_t>(b & 0x7F) << shift;
            shift += 7;
            if (!(b & 0x80)) break;
        }
        if (length > n - i) return;
        std::string_view text(packed.data() + i, length);
        i += length;
        if constexpr (std::is_same_v<decltype(f(code, text)), bool>) {
            if (!f(code, text)) return;
        } else {
            f(code, text);
        }
    }
}

}  // namespace db
