#include "report/ClassHierarchy.h"

#include <algorithm>
#include <cctype>

#include "host/kova/KovaDataSet.h"
#include "standard/ClassTableCache.h"
#include "standard/ClassTableLine.h"
#include "standard/KovaAttribSet.h"
#include "standard/StandardFolders.h"

namespace kplan::report {

namespace {

std::string folded(const std::string& code) {
    std::string key = trimCode(code);
    std::transform(key.begin(), key.end(), key.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return key;
}

}  // namespace

std::string trimCode(const std::string& code) {
    static const std::string fullWidthBlank = "\xE3\x80\x80";
    std::string text = code;
    bool changed = true;
    while (changed) {
        changed = false;
        while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) {
            text.pop_back();
            changed = true;
        }
        while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) {
            text.erase(0, 1);
            changed = true;
        }
        if (text.size() >= 3 && text.compare(0, 3, fullWidthBlank) == 0) {
            text.erase(0, 3);
            changed = true;
        }
        if (text.size() >= 3 && text.compare(text.size() - 3, 3, fullWidthBlank) == 0) {
            text.erase(text.size() - 3);
            changed = true;
        }
    }
    return text;
}

ClassHierarchy::ClassHierarchy(const std::vector<std::pair<std::string, std::string>>& classes) {
    for (const auto& [code, name] : classes) {
        int known = find(code);
        if (known >= 0) {
            nodes_[static_cast<std::size_t>(known)].name = name;
            continue;
        }
        index_.emplace(folded(code), static_cast<int>(nodes_.size()));
        nodes_.push_back({trimCode(code), name, -1, {}});
    }
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        std::string key = folded(nodes_[i].code);
        for (std::size_t length = key.size(); length-- > 1;) {
            int parent = find(key.substr(0, length));
            if (parent >= 0) {
                nodes_[i].parent = parent;
                nodes_[static_cast<std::size_t>(parent)].children.push_back(static_cast<int>(i));
                break;
            }
        }
    }
}

ClassHierarchy ClassHierarchy::FromTable(const ParsedClassTable& table) {
    std::vector<std::pair<std::string, std::string>> classes;
    for (const CString& text : table.ClassLines()) {
        ClassTableLine line;
        if (line.parse(text)) classes.emplace_back(line.code.ToUtf8(), line.name.ToUtf8());
    }
    return ClassHierarchy(classes);
}

ClassHierarchy ClassHierarchy::Current() {
    CString path = CKovaAttribSet::FGetCurStandardFile(standard_folders::kClassDir,
                                                       CKovaDataSet::FGetCurYDLB(), 1);
    std::shared_ptr<const ParsedClassTable> table = ClassTableCache::Get(path);
    return table ? FromTable(*table) : ClassHierarchy();
}

std::vector<int> ClassHierarchy::roots() const {
    std::vector<int> found;
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        if (nodes_[i].parent < 0) found.push_back(static_cast<int>(i));
    }
    return found;
}

int ClassHierarchy::find(const std::string& code) const {
    std::string key = folded(code);
    auto found = index_.find(key);
    return found == index_.end() ? -1 : found->second;
}

bool ClassHierarchy::within(int index, int ancestor) const {
    for (int at = index; at >= 0; at = node(at).parent) {
        if (at == ancestor) return true;
    }
    return false;
}

}  // namespace kplan::report
