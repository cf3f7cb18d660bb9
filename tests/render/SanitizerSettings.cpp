// What the sanitizer build needs to know about the libraries behind the pictures.
#include <gtest/gtest.h>

#include "render/CjkFont.h"

namespace {

// The pictures of these tests load cairo's and fontconfig's process-wide caches; they are
// freed at the end so that the leak checker sees only what the tests left.
class FontCaches : public ::testing::Environment {
  public:
    void TearDown() override { render::releaseFontCaches(); }
};

const auto* const kFontCaches = ::testing::AddGlobalTestEnvironment(new FontCaches);

}  // namespace

// cairo 1.16 loses 768 bytes of its own while it finishes a PDF with a subset of a CJK
// font; the leak checker is told to leave what cairo allocates to cairo.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libcairo.so.2\n";
}
