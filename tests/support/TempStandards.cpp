#include "tests/support/TempStandards.h"

#include <fstream>
#include <random>
#include <stdexcept>

#include "host/db/TextCodec.h"
#include "host/kova/KovaDataSet.h"

namespace fs = std::filesystem;

TempStandards::TempStandards() {
    std::random_device random;
    root_ = fs::temp_directory_path() / ("kplan-standards-" + std::to_string(random()));
    fs::create_directories(root_ / db::wideToUtf8(kStandard));
    CKovaDataSet::FSetGStandardDirPath(db::utf8ToWide(root_.string()).c_str());
    CKovaDataSet::FSetStandardName(kStandard);
    CKovaDataSet::FSetCurYDLB(kClassTable);
    CKovaDataSet::FSetNameDict_GHType(L"");
}

TempStandards::~TempStandards() {
    CKovaDataSet::FSetGStandardDirPath(L"");
    CKovaDataSet::FSetStandardName(L"");
    CKovaDataSet::FSetCurYDLB(L"");
    CKovaDataSet::FSetNameDict_GHType(L"");
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

std::filesystem::path TempStandards::copyShipped(const std::wstring& relative) {
    fs::path from =
        fs::path(KPLAN_SOURCE_DIR "/data/standards/通用国标") / db::wideToUtf8(relative);
    fs::path to = root_ / db::wideToUtf8(kStandard) / db::wideToUtf8(relative);
    fs::create_directories(to.parent_path());
    fs::copy_file(from, to, fs::copy_options::overwrite_existing);
    return to;
}

std::string TempStandards::encode(const std::wstring& text, Encoding encoding) {
    auto utf16 = [&text](bool bigEndian) {
        std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
        auto unit = [&](unsigned u) {
            char hi = static_cast<char>(u >> 8), lo = static_cast<char>(u & 0xFF);
            bytes += bigEndian ? std::string{hi, lo} : std::string{lo, hi};
        };
        for (wchar_t c : text) {
            auto cp = static_cast<unsigned>(c);
            if (cp >= 0x10000) {
                cp -= 0x10000;
                unit(0xD800 + (cp >> 10));
                unit(0xDC00 + (cp & 0x3FF));
            } else {
                unit(cp);
            }
        }
        return bytes;
    };
    switch (encoding) {
        case Encoding::Utf8:
            return db::wideToUtf8(text);
        case Encoding::Utf8Bom:
            return "\xEF\xBB\xBF" + db::wideToUtf8(text);
        case Encoding::Utf16Le:
            return utf16(false);
        case Encoding::Utf16Be:
            return utf16(true);
        case Encoding::Gbk: {
            std::string bytes;
            if (!db::encodeCodePage(text, "ANSI_936", bytes)) {
                throw std::runtime_error("text not representable in GBK");
            }
            return bytes;
        }
    }
    return {};
}

fs::path TempStandards::write(const std::wstring& relative, const std::wstring& content,
                              Encoding encoding) {
    // Paths go through UTF-8 explicitly: the wide-string path conversion follows the locale.
    bool fromRoot = !relative.empty() && relative[0] == L'/';
    fs::path path = fromRoot ? root_ / db::wideToUtf8(relative.substr(1))
                             : root_ / db::wideToUtf8(kStandard) / db::wideToUtf8(relative);
    fs::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << encode(content, encoding);
    return path;
}

fs::path TempStandards::writeClassTable(const std::wstring& content, Encoding encoding) {
    return write(std::wstring(L"用地分类/") + kClassTable, content, encoding);
}
