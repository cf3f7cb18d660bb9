#include "standard/ClassTableFiles.h"

#include "host/kova/KovaDataSet.h"
#include "standard/ClassTableCache.h"

namespace classtable {

namespace {

const wchar_t* const kClassDir = L"用地分类\\";

CString fileOf(Source source) {
    switch (source) {
        case Source::OldNational:
            return L"1990国标城市用地类别.txt";
        case Source::NewNational:
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
    CString path;
    if (!CKovaDataSet::FGetGStandardOneFilePath(path, kClassDir, file,
                                                CKovaDataSet::FGetStandardName(), 1)) {
        return CString();
    }
    return path;
}

std::shared_ptr<const ParsedClassTable> Open(Source source, int aboveGround) {
    return ClassTableCache::Get(PathOf(source, aboveGround));
}

std::shared_ptr<const ParsedClassTable> OpenCommon(Source source) {
    CString path;
    CString relative = CString(CKovaDataSet::CommonStandardName()) + L"\\" + kClassDir;
    if (!CKovaDataSet::FGetGStandardOneFilePath(path, relative, fileOf(source), L"", 1)) {
        return nullptr;
    }
    return ClassTableCache::Get(path);
}

}  // namespace classtable
