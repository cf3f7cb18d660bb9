#include "report/JsonWriter.h"

namespace kplan::report {

namespace {

const char* measureKey(Measure measure) {
    switch (measure) {
        case Measure::Share:
            return "share";
        case Measure::PerPerson:
            return "per_person_m2";
        case Measure::Area:
            break;
    }
    return "area";
}

const char* unitKey(AreaUnit unit) {
    switch (unit) {
        case AreaUnit::SquareMetre:
            return "m2";
        case AreaUnit::Mu:
            return "mu";
        case AreaUnit::SquareKilometre:
            return "km2";
        case AreaUnit::Hectare:
            break;
    }
    return "hm2";
}

}  // namespace

const char* scenarioKey(Scenario scenario) {
    return scenario == Scenario::Current ? "current" : "planned";
}

nlohmann::json tablesJson(const Report& report) {
    nlohmann::json tables = nlohmann::json::array();
    for (const Table& table : report.tables) {
        nlohmann::json columns = nlohmann::json::array();
        for (const Column& c : table.columns) {
            columns.push_back({{"measure", measureKey(c.measure)},
                               {"scenario", scenarioKey(c.scenario)},
                               {"decimals", c.decimals}});
        }
        nlohmann::json rows = nlohmann::json::array();
        for (const Row& row : table.rows) {
            nlohmann::json values = nlohmann::json::array();
            for (double v : row.values)
                values.push_back(isBlank(v) ? nlohmann::json() : nlohmann::json(v));
            rows.push_back({{"level", row.level},
                            {"among", row.among},
                            {"total", row.total},
                            {"code", row.code},
                            {"name", row.name},
                            {"name_en", row.nameEn},
                            {"values", values},
                            {"out_of_range", row.outOfRange}});
        }
        tables.push_back({{"key", table.key},
                          {"title", table.title},
                          {"title_en", table.titleEn},
                          {"unit", unitKey(table.unit)},
                          {"share_of", table.shareBase},
                          {"columns", columns},
                          {"rows", rows},
                          {"notes", table.notes}});
    }
    return tables;
}

nlohmann::json warningsJson(const Report& report) {
    nlohmann::json warnings = nlohmann::json::array();
    for (const Warning& w : report.warnings) {
        warnings.push_back({{"kind", w.kind},
                            {"scenario", scenarioKey(w.scenario)},
                            {"code", w.code},
                            {"area_ha", w.hectares},
                            {"handles", w.handles},
                            {"message", describe(w, false)},
                            {"message_en", describe(w, true)}});
    }
    return warnings;
}

nlohmann::json balanceJson(const Report& report) {
    nlohmann::json lines = nlohmann::json::array();
    for (const BalanceLine& b : report.balance) {
        lines.push_back(
            {{"scenario", scenarioKey(b.scenario)},
             {"scope_ha", b.scoped ? nlohmann::json(b.scopeHectares) : nlohmann::json()},
             {"parcels_ha", b.parcelHectares},
             {"remainder_ha", b.remainderHectares},
             {"overlap_ha", b.overlapHectares},
             {"unknown_ha", b.unknownHectares},
             {"parcels", b.parcels},
             {"population", b.population}});
    }
    return lines;
}

std::string dumpJson(const nlohmann::json& value) {
    return value.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace kplan::report
