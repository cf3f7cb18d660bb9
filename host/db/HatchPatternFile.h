#pragma once
// The hatch pattern files the portable host ships, in the plain .pat text format:
//
//   ;; a comment
//   *NAME, description
//   angle, x-origin, y-origin, delta-x, delta-y [, dash-1, dash-2, ...]
//
// one line per line family of the pattern. delta-x runs along the family's direction,
// delta-y across it; dashes are positive, gaps negative, dots 0.
//
// Two files: kplan.pat for imperial drawings ($MEASUREMENT 0) and kplaniso.pat for metric
// ones. They are found in the first of: the folder set with setHatchPatternFolder, the
// environment variable KPLAN_PATTERNS, "patterns" beside the standards root of KPLAN_DATA
// (the command line's --data does the same), the install's share/kplan/patterns (seen from
// the program or shared library, host/db/InstalledData.h), <exe dir>/../share/kplan/patterns,
// <exe dir>/data/patterns, <exe dir>/../data/patterns and the source tree's data/patterns.
// The search runs once per value of those environment variables; each file is read once
// and kept.
#include <string>
#include <string_view>
#include <vector>

namespace db {

// One line family as a drawing stores it: the offset in drawing coordinates.
struct PatternLine {
    double angle = 0;  // degrees
    double baseX = 0, baseY = 0, offsetX = 0, offsetY = 0;
    std::vector<double> dashes;
};

struct HatchPattern {
    std::string name;  // as written, matched without regard to case
    std::string description;
    std::vector<PatternLine> lines;
};

class HatchPatternFile {
  public:
    // Reads the text of a .pat file. On a malformed line, false with an error naming the
    // file, the line and what is wrong; nothing is kept then.
    bool parse(std::string_view text, const std::string& fileName, std::string& error);
    // The pattern of that name (ASCII case ignored), null when the file lacks it.
    const HatchPattern* find(std::wstring_view name) const;
    const std::vector<HatchPattern>& patterns() const { return patterns_; }

  private:
    std::vector<HatchPattern> patterns_;
};

// An empty folder goes back to the search above. Files already read stay read.
void setHatchPatternFolder(const std::string& folder);
std::string hatchPatternFolder();

// The pattern file of a metric or an imperial drawing, read on first use; null, with the
// error (missing or malformed file), when it cannot be had.
const HatchPatternFile* hatchPatterns(bool metric, std::string& error);

}  // namespace db
