#include "cli/ClassNames.h"

namespace kplan::cli {

ClassNames::ClassNames() {
    CKovaAttribSet set;
    set.FReadCurFile();
    names_ = set.NameMap();
}

std::string ClassNames::of(const std::string& code) const {
    CString key = CString::FromUtf8(code);
    key.Trim();
    auto found = names_.find(key);
    if (found != names_.end()) return found->second.ToUtf8();
    if (key.Find(L'/') < 0) return {};
    std::string joined;
    int start = 0;
    bool any = false;
    for (CString part = key.Tokenize(L"/", start); start >= 0; part = key.Tokenize(L"/", start)) {
        part.Trim();
        auto name = names_.find(part);
        any = any || name != names_.end();
        joined += (joined.empty() ? "" : "/") +
                  (name != names_.end() ? name->second.ToUtf8() : part.ToUtf8());
    }
    return any ? joined : std::string();
}

}  // namespace kplan::cli
