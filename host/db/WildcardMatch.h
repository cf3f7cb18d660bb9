#pragma once
// Wildcard patterns of the host: the rules of its wcmatch, used by selection filters
// and by acutWcMatch.
//
//   #  one digit            @  one letter (ASCII, or any character beyond ASCII)
//   .  one character that is neither letter nor digit
//   ?  any one character    *  any run of characters, the empty one included
//   [abc] [a-z]  one of the set    [~abc]  one character not in the set
//   `  the next character stands for itself
//   ,  separates alternatives; the text matches when any alternative does
//   ~  at the start of an alternative: matches when the rest does not
//
// A "[" without its closing "]" stands for itself.
#include <string_view>

namespace db {

// Letters compare without regard to ASCII case unless caseSensitive is set (the host's
// selection filters ignore case; its wcmatch function does not).
bool wcmatch(std::wstring_view text, std::wstring_view pattern, bool caseSensitive = false);

}  // namespace db
