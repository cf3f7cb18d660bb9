#pragma once
// Names of land-use classes as the class lookups give them: the drawing's own names, the
// current class table's, the built-in ones ("KB" 空白用地), and for a compound code the
// names of its parts.
#include <string>

namespace kplan::cli {

class ClassNames {
  public:
    // "" for a code nothing names.
    std::string of(const std::string& code) const;
};

}  // namespace kplan::cli
