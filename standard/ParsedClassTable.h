#pragma once
// A class table taken apart once, so that a lookup is a map search instead of a reading
// of the file. It holds for every code exactly what the line-by-line lookups would find:
// the colour and the hatch of the first line of the code that carries one, the name,
// remark and layers of the last line (as the full-table reader has them), the code as
// the table writes it (first line), and the ini values of the file.
//
// Codes are matched ignoring ASCII letter case (class codes are upper case by
// convention; "r2" finds "R2") and after trimming.
#include <map>
#include <memory>
#include <vector>

#include "host/kova/fgbfile.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

class KPLAN_API ParsedClassTable {
  public:
    // The "@" field of the first line of a code that has one, cut and split.
    struct Hatch {
        bool complete = false;  // exactly three "/" parts: name, scale and angle
        CString pattern;
        double scale = 0.0, angle = 0.0;
    };
    struct Entry {
        CString code;  // the trimmed code of the first line, as the table writes it
        bool hasColour = false;
        CString colour;  // colour text of the first line with "$" (may be empty)
        bool hasHatch = false;
        Hatch hatch;
        CString name, remark;               // last line that gives them
        CString boundaryLayer, hatchLayer;  // "*" and "&" fields after a blank, last line
    };

    // Reads the file; null when it cannot be opened.
    static std::shared_ptr<const ParsedClassTable> Load(const CString& path);

    // The entry of a code, or null.
    const Entry* Find(const CString& code) const;
    // A trimmed ini value of the file ("" when missing).
    CString Setting(const wchar_t* section, const wchar_t* key) const;
    // 0 for a current-status table (a line "[现状用地]" or "[现状地块]"), else 1.
    int IsPlanning() const { return planning_; }
    CString Path() const { return ini_.GetPath(); }

    // Every line of the file that may be a class line (trimmed; not empty, no comment, no
    // section header), in file order, for the readers that build maps of their own.
    const std::vector<CString>& ClassLines() const { return classLines_; }

    // The form in which codes are compared: trimmed, ASCII letters upper case.
    static CString Key(const CString& code);

  private:
    explicit ParsedClassTable(const CString& path) : ini_(path, 1) {}
    void addLine(const CString& trimmed);

    fgbfile::CIniFile ini_;
    std::map<CString, Entry> entries_;
    std::vector<CString> classLines_;
    // Every ini value under "SECTION\nKEY" folded as Key() folds, the first one winning
    // as in the ini reader.
    std::map<CString, CString> settings_;
    int planning_ = 1;
};
