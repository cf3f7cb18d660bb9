#pragma once
// One tagged value of xdata or of an xrecord: a group code and what it carries.
#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/db/GroupCode.h"
#include "kplan/Export.h"

namespace db {

struct Stub;
using Point = std::array<double, 3>;
using Bytes = std::vector<std::uint8_t>;

struct KPLAN_API Value {
    int code = 0;
    // Integers of every width and booleans are held as int64; strings and handles as
    // text; object references as the stub of the object referred to.
    std::variant<std::monostate, std::wstring, double, Point, std::int64_t, Bytes, Stub*> data;

    static Value string(int code, std::wstring text) { return {code, std::move(text)}; }
    static Value real(int code, double value) { return {code, value}; }
    static Value point(int code, Point p) { return {code, p}; }
    static Value integer(int code, std::int64_t value) { return {code, value}; }
    static Value reference(int code, Stub* stub) { return {code, stub}; }

    const std::wstring* text() const { return std::get_if<std::wstring>(&data); }
    bool operator==(const Value&) const = default;
};

using ValueList = std::vector<Value>;

}  // namespace db
