#pragma once
// The font of a picture's text: one that covers Chinese, found through fontconfig.
#include <string>

namespace render {

// The family of an installed font that covers Simplified Chinese ("Noto Sans CJK SC"
// when there, else the first fontconfig lists). False with a message naming the Debian
// package to install when there is none.
bool findCjkFont(std::string& family, std::string& error);

// Frees what cairo and fontconfig keep for the whole process (font caches, the
// configuration), so that a leak checker at exit sees nothing left. Only when no cairo
// object is alive any more, as at the end of a program; a later picture loads them again.
void releaseFontCaches();

}  // namespace render
