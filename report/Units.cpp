#include "report/Units.h"

namespace kplan::report {

bool parseAreaUnit(const std::string& text, AreaUnit& unit) {
    if (text == "hm2" || text == "ha") {
        unit = AreaUnit::Hectare;
    } else if (text == "m2") {
        unit = AreaUnit::SquareMetre;
    } else if (text == "mu") {
        unit = AreaUnit::Mu;
    } else if (text == "km2") {
        unit = AreaUnit::SquareKilometre;
    } else {
        return false;
    }
    return true;
}

double perHectare(AreaUnit unit) {
    switch (unit) {
        case AreaUnit::SquareMetre:
            return 10000;
        case AreaUnit::Mu:
            return 15;
        case AreaUnit::SquareKilometre:
            return 0.01;
        case AreaUnit::Hectare:
            break;
    }
    return 1;
}

std::string unitName(AreaUnit unit, bool english) {
    switch (unit) {
        case AreaUnit::SquareMetre:
            return english ? "m2" : "平方米";
        case AreaUnit::Mu:
            return english ? "mu" : "亩";
        case AreaUnit::SquareKilometre:
            return english ? "km2" : "平方千米";
        case AreaUnit::Hectare:
            break;
    }
    return english ? "ha" : "公顷";
}

}  // namespace kplan::report
