#include "cli/ClassNames.h"

#include "standard/KovaAttribSet.h"

namespace kplan::cli {

std::string ClassNames::of(const std::string& code) const {
    return CKovaAttribSet::FGetDKXZMCFromCur(CString::FromUtf8(code)).ToUtf8();
}

}  // namespace kplan::cli
