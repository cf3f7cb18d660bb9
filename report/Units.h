#pragma once
// The area units a table may be printed in; parcels are measured in hectares.
#include <string>

namespace kplan::report {

enum class AreaUnit { Hectare, SquareMetre, Mu, SquareKilometre };

// "hm2", "m2", "mu" or "km2"; false for anything else.
bool parseAreaUnit(const std::string& text, AreaUnit& unit);
// How many of the unit one hectare makes (1 mu = 10000/15 m²).
double perHectare(AreaUnit unit);
// "公顷" / "hm2" and so on, for headers.
std::string unitName(AreaUnit unit, bool english);

}  // namespace kplan::report
