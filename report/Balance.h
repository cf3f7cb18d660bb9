#pragma once
// The balance tables of a plan from the areas of its parcels: the tables of the national
// standard the class table belongs to (GB 50137-2011: 城乡用地汇总表 and 城市建设用地平衡表;
// GBJ 137-90: 城市用地平衡表), or one table by major class for any other table. Every
// area of the scope is in a row: parcels by class, codes no class holds, land no parcel
// covers, and land two parcels both claim (taken off once), so the rows add up to the
// scope's area.
#include <string>
#include <vector>

#include "report/ClassHierarchy.h"
#include "report/Table.h"
#include "report/Units.h"

namespace kplan::report {

// A parcel as measured: its land within the scope, in hectares.
struct ParcelArea {
    std::string handle;
    std::string code;   // "FS_DKXZ" as read, untrimmed
    std::string ratio;  // "FS_HHBL", the mix of a compound code ("4:6")
    double hectares = 0;
};

// The parcels of one column group (现状 or 规划).
struct Measured {
    Scenario scenario = Scenario::Planned;
    std::vector<ParcelArea> parcels;
    bool scoped = false;  // measured within a scope line
    double scopeHectares = 0;
    double overlapHectares = 0;             // land inside the scope that two parcels both hold
    std::vector<std::string> overlapping;   // handles of the parcels concerned
    long population = 0;                    // FN_ZRKS of the parcels, or as given
    std::vector<std::string> openOutlines;  // parcels left out: outlines that are not closed
    std::vector<std::string> zeroAreas;     // parcels counted with no area
};

enum class MixedCodes { First, Split };

struct BalanceOptions {
    std::string remainderCode;  // the class land no parcel covers counts as; "" for its own row
    MixedCodes mixed = MixedCodes::First;
    AreaUnit unit = AreaUnit::Hectare;
    int decimals = 2;
};

// Something the reader of a table must know: what is left out, guessed or out of range.
struct Warning {
    std::string kind;  // "empty_code", "unknown_code", "code_case", "mixed_ratio", "zero_area",
                       // "remainder", "overlap", "left_out"
    Scenario scenario = Scenario::Planned;
    std::string code;  // the code as written, where one concerns it
    double hectares = 0;
    double percent = 0;  // remainder: its share of the scope
    std::vector<std::string> handles;
    std::string detail, detailEn;  // left out: why
};

// The figures a table's total stands on, per column group.
struct BalanceLine {
    Scenario scenario = Scenario::Planned;
    bool scoped = false;
    double scopeHectares = 0, parcelHectares = 0, remainderHectares = 0, overlapHectares = 0,
           unknownHectares = 0;
    long parcels = 0, population = 0;
};

struct Report {
    std::vector<Table> tables;
    std::vector<Warning> warnings;
    std::vector<BalanceLine> balance;
};

// The tables, rounded so that printed rows add up to printed totals. False with a
// message when the options name a remainder class the table does not hold.
bool buildReport(const ClassHierarchy& classes, const std::vector<Measured>& measured,
                 const BalanceOptions& options, Report& report, std::string& error);

// One line telling the reader what a warning means.
std::string describe(const Warning& warning, bool english);

}  // namespace kplan::report
