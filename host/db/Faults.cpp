#include "host/db/Faults.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

namespace db {

namespace {
std::vector<std::string>& armed() {
    static std::vector<std::string> operations;
    return operations;
}
}  // namespace

void failNextCall(std::string_view operation) {
    armed().emplace_back(operation);
}

void clearFaults() {
    armed().clear();
}

void failIfArmed(std::string_view operation) {
    std::vector<std::string>& list = armed();
    if (list.empty()) return;
    auto it = std::find(list.begin(), list.end(), operation);
    if (it == list.end()) return;
    list.erase(it);
    throw std::bad_alloc();
}

}  // namespace db
