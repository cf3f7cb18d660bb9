#include "render/CjkFont.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <vector>

namespace render {

bool findCjkFont(std::string& family, std::string& error) {
    std::vector<std::string> families;
    if (FcInit()) {
        FcPattern* pattern = FcPatternCreate();
        FcLangSet* languages = FcLangSetCreate();
        FcLangSetAdd(languages, reinterpret_cast<const FcChar8*>("zh-cn"));
        FcPatternAddLangSet(pattern, FC_LANG, languages);
        FcObjectSet* fields = FcObjectSetBuild(FC_FAMILY, nullptr);
        if (FcFontSet* fonts = FcFontList(nullptr, pattern, fields)) {
            for (int i = 0; i < fonts->nfont; ++i) {
                FcChar8* name = nullptr;
                if (FcPatternGetString(fonts->fonts[i], FC_FAMILY, 0, &name) == FcResultMatch)
                    families.emplace_back(reinterpret_cast<const char*>(name));
            }
            FcFontSetDestroy(fonts);
        }
        FcObjectSetDestroy(fields);
        FcLangSetDestroy(languages);
        FcPatternDestroy(pattern);
    }
    if (families.empty()) {
        error =
            "no font for Chinese text is installed; install the Debian package fonts-noto-cjk "
            "(apt-get install fonts-noto-cjk)";
        return false;
    }
    family = families.front();
    for (const std::string& name : families) {
        if (name == "Noto Sans CJK SC") family = name;
    }
    return true;
}

void releaseFontCaches() {
    cairo_debug_reset_static_data();
    FcFini();
}

}  // namespace render
