#pragma once
// How record fields become typed GIS fields and back: the key's prefix tells the type
// ("FS_" text, "FD_" and "FDC_" decimal, "FN_" whole number), and the names of older
// records (labels) are the keys they stand for.
#include <string>

namespace gis {

enum class FieldType { Text, Real, Integer };

// Any name that is not a key of a typed prefix is text.
FieldType fieldTypeOfKey(const std::string& key);
// "FS_DKBH", "FD_RJL", ...: a name with one of the record prefixes, upper case.
bool looksLikeKey(const std::string& name);
// The key a record's field name stands for: the key of a label of current or older
// records ("容积率" "FD_RJL", "户数" "FN_ZHS"), else the name itself.
std::string keyOfFieldName(const std::string& name);

// Record values are text as entered; these read them as the typed field needs, with
// blanks around allowed. False for an empty or malformed value.
bool parseReal(const std::string& text, double& value);
bool parseInteger(const std::string& text, long long& value);
// The shortest text that reads back to the same double ("2.5", "3", "0.1").
std::string realText(double value);

}  // namespace gis
