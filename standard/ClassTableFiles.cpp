#include "standard/ClassTableFiles.h"

#include "host/kova/KovaDataSet.h"
#include "standard/ClassTableCache.h"

namespace classtable {

namespace {

const wchar_t* const kClassDir = L"用地分类\\";

CString fileOf(Source source) {
    switch (source) {
        case Source::OldNational:
        case Source::CommonOldNational:
            return L"1990国标城市用地类别.txt";
        case Source::NewNational:
        case Source::CommonNewNational:
            return L"2011国标城乡用地类别.txt";
        case Source::Current:
            break;
    }
    return CKovaDataSet::FGetCurYDLB();
}

}  // namespace

CString UndergroundName(const CString& fileName) {
    CString name = fileName;
    name.Replace(L".txt", L"_地下.txt");
    return name;
}

CString PathOf(Source source, int aboveGround) {
    CString file = fileOf(source);
    if (aboveGround == 0) file = UndergroundName(file);
    bool common = source == Source::CommonOldNational || source == Source::CommonNewNational;
    CString directory = common ? CString(CKovaDataSet::CommonStandardName()) + L"\\" + kClassDir
                               : CString(kClassDir);
    CString path;
    if (!CKovaDataSet::FGetGStandardOneFilePath(
            path, directory, file, common ? L"" : CKovaDataSet::FGetStandardName().GetString(),
            1)) {
        return CString();
    }
    return path;
}

std::shared_ptr<const ParsedClassTable> Open(Source source, int aboveGround) {
    return ClassTableCache::Get(PathOf(source, aboveGround));
}

const ParsedClassTable::Entry* FindOrFirst(const ParsedClassTable& table, const CString& code) {
    const ParsedClassTable::Entry* entry = table.Find(code);
    if (entry != nullptr) return entry;
    int slash = code.Find(L'/');
    return slash > 0 ? table.Find(code.Left(slash)) : nullptr;
}

}  // namespace classtable
