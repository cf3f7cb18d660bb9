#pragma once
// The font of a picture's text: one that covers Chinese, found through fontconfig.
#include <string>

namespace render {

// The family of an installed font that covers Simplified Chinese ("Noto Sans CJK SC"
// when there, else the first fontconfig lists). False with a message naming the Debian
// package to install when there is none.
bool findCjkFont(std::string& family, std::string& error);

}  // namespace render
