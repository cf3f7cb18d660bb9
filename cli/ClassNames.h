#pragma once
// Names of land-use classes from the current class table, read once per run.
#include <string>

#include "standard/KovaAttribSet.h"

namespace kplan::cli {

class ClassNames {
  public:
    ClassNames();
    // The table's name of a code; a compound code ("B1/R2") gets the names of its parts
    // joined the same way. "" for a code the table does not know.
    std::string of(const std::string& code) const;

  private:
    CStringMap names_;
};

}  // namespace kplan::cli
