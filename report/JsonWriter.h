#pragma once
// The tables, warnings and balance of a report as JSON values (nlohmann-json): figures as
// printed (rounded), blanks as null, every text valid UTF-8 when dumped with
// dumpJson.
#include <nlohmann/json.hpp>
#include <string>

#include "report/Balance.h"

namespace kplan::report {

// Raised whenever the meaning of a key changes; new keys leave it.
inline constexpr int kJsonSchema = 2;

nlohmann::json tablesJson(const Report& report);
nlohmann::json warningsJson(const Report& report);
nlohmann::json balanceJson(const Report& report);

// Indented text; bytes that are not UTF-8 become U+FFFD instead of failing the run.
std::string dumpJson(const nlohmann::json& value);

// "current" or "planned".
const char* scenarioKey(Scenario scenario);

}  // namespace kplan::report
