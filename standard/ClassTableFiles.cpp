#include "standard/ClassTableFiles.h"

#include <map>
#include <mutex>

#include "host/kova/KovaDataSet.h"
#include "standard/ClassTableCache.h"
#include "standard/StandardFolders.h"

namespace classtable {

namespace {

using namespace standard_folders;

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

std::shared_ptr<const ParsedClassTable> Open(Source source, int aboveGround) {
    CString file = fileOf(source);
    if (aboveGround == 0) file = UndergroundName(file);
    bool common = source == Source::CommonOldNational || source == Source::CommonNewNational;
    CString directory = common ? CString(CKovaDataSet::CommonStandardName()) + L"\\" + kClassDir
                               : CString(kClassDir);
    CString standard = common ? CString() : CKovaDataSet::FGetStandardName();

    // A table found in the standard itself is asked for by its path alone: the cache's
    // look at the file then also tells that it still exists, one status call per lookup.
    // A table borrowed from "通用国标" is located anew every time, so that a copy the
    // standard gains takes over at once.
    static std::map<CString, CString> ownTables;
    static std::mutex ownTablesMutex;  // lookups come from the threads of a batch at once
    CString key = CKovaDataSet::FGetGStandardDirPath() + L"|" + standard + L"|" + directory + file;
    CString own;
    {
        std::lock_guard<std::mutex> lock(ownTablesMutex);
        auto known = ownTables.find(key);
        if (known != ownTables.end()) own = known->second;
    }
    if (!own.IsEmpty()) {
        if (auto table = ClassTableCache::Get(own)) return table;
        std::lock_guard<std::mutex> lock(ownTablesMutex);
        ownTables.erase(key);
    }
    CString path;
    if (CKovaDataSet::FGetGStandardOneFilePath(path, directory, file, standard, 0)) {
        {
            std::lock_guard<std::mutex> lock(ownTablesMutex);
            ownTables[key] = path;
        }
        return ClassTableCache::Get(path);
    }
    if (CKovaDataSet::FGetGStandardOneFilePath(path, directory, file, standard, 1)) {
        return ClassTableCache::Get(path);
    }
    return nullptr;
}

const ParsedClassTable::Entry* FindOrFirst(const ParsedClassTable& table, const CString& code) {
    const ParsedClassTable::Entry* entry = table.Find(code);
    if (entry != nullptr) return entry;
    int slash = code.Find(L'/');
    return slash > 0 ? table.Find(code.Left(slash)) : nullptr;
}

}  // namespace classtable
