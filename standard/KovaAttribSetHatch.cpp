// The class hatch lookups.
#include "standard/ClassTableFiles.h"
#include "standard/KovaAttribSet.h"
#include "standard/KovaAttribSetColorRule.h"

#include <cwchar>

namespace {

using classtable::Source;

void hatchFrom(const std::shared_ptr<const ParsedClassTable>& table, const CString& code,
               CString& pattern, double& scale, double& angle) {
    if (!table || code.IsEmpty()) return;
    const ParsedClassTable::Entry* entry = table->Find(code);
    if (entry == nullptr || !entry->hasHatch || !entry->hatch.complete) return;
    pattern = entry->hatch.pattern;
    scale = entry->hatch.scale;
    angle = entry->hatch.angle;
}

}  // namespace

void CKovaAttribSet::FGetHatchFromCur(const CString& code, CString& pattern, double& scale,
                                      double& angle) {
    if (code.IsEmpty()) return;
    hatchFrom(classtable::Open(Source::Current), code, pattern, scale, angle);
}

void CKovaAttribSet::FGetHatchFromCurDX(const CString& code, CString& pattern, double& scale,
                                        double& angle) {
    if (code.IsEmpty()) return;
    hatchFrom(classtable::Open(Source::Current, 0), code, pattern, scale, angle);
}

void CKovaAttribSet::FGetHatchFromNEWGB(const CString& code, CString& pattern, double& scale,
                                        double& angle) {
    if (code.IsEmpty()) return;
    hatchFrom(classtable::Open(Source::NewNational), code, pattern, scale, angle);
}

void CKovaAttribSet::FGetHatchFromOLDGB(const CString& code, CString& pattern, double& scale,
                                        double& angle) {
    if (code.IsEmpty()) return;
    hatchFrom(classtable::Open(Source::OldNational), code, pattern, scale, angle);
}

int CKovaAttribSet::FGetHatchColorIndexFromCur(const CString& code, int aboveGround) {
    return ColourRule::kPattern.Index(code, aboveGround);
}

AcCmColor CKovaAttribSet::FGetHatchCmColorFromCur(const CString& code, int aboveGround) {
    return ColourRule::kPattern.Colour(code, aboveGround);
}

double CKovaAttribSet::FCutNum(double value, int decimals) {
    CString format, text;
    format.Format(L"%%0.%df", decimals);
    text.Format(format, value);
    return std::wcstod(text, nullptr);
}
