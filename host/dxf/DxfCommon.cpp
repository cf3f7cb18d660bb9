#include <charconv>
#include <cmath>
#include <cstring>

#include <fast_float/fast_float.h>

#include "host/arx/peek.h"
#include "host/db/GroupCode.h"
#include "host/db/TextCodec.h"
#include "host/dxf/Dxf.h"
#include "host/dxf/DxfModel.h"
#include "host/dxf/FieldTable.h"

namespace dxf {

namespace {

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    return s;
}

// fast_float gives an underflow 0 where from_chars refuses it as out of range: a number
// whose digits are not all zero cannot be 0.
bool underflowed(std::string_view text) {
    for (char c : text) {
        if (c == 'e' || c == 'E') break;
        if (c >= '1' && c <= '9') return true;
    }
    return false;
}

}  // namespace

// Reads as std::from_chars reads, to the bit, and leaves value as it leaves it when the
// text is no number (a partial read, "nan"); fast_float reads a drawing's numbers faster.
bool parseReal(std::string_view text, double& value) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double read = 0;
    auto [end, ec] = fast_float::from_chars(text.data(), text.data() + text.size(), read);
    // nan and inf are no number a drawing means.
    if (!text.empty() && ec == std::errc() && end == text.data() + text.size() &&
        std::isfinite(read) && !(read == 0 && underflowed(text))) {
        value = read;
        return true;
    }
    std::from_chars(text.data(), text.data() + text.size(), value);
    return false;
}

bool parseInt(std::string_view text, std::int64_t& value) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && ec == std::errc() && end == text.data() + text.size();
}

std::string numberProblem(std::string_view text) {
    std::string_view t = trimmed(text);
    if (!t.empty() && (t.front() == '+' || t.front() == '-')) t.remove_prefix(1);
    double value = 0;
    auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), value);
    bool whole = !t.empty() && end == t.data() + t.size();
    if (whole && ec == std::errc::result_out_of_range) return "number out of range";
    if (whole && ec == std::errc() && std::isnan(value)) return "NaN is not a number";
    if (whole && ec == std::errc() && std::isinf(value)) return "infinity is not a number";
    return "expected a number";
}

void ReadContext::badNumber(const TagView& tag) {
    if (bad_) return;
    bad_ = true;
    badLine_ = tag.line;
    std::string shown(tag.value.substr(0, 40));
    for (char& c : shown) {
        if (static_cast<unsigned char>(c) < 0x20) c = '?';
    }
    badWhat_ = "group code " + std::to_string(tag.code) + ": " + numberProblem(tag.value) +
               ", found \"" + shown + "\"";
}

bool ReadContext::takeBadNumber(std::size_t& line, std::string& what) {
    if (!bad_) return false;
    bad_ = false;
    line = badLine_;
    what = std::move(badWhat_);
    return true;
}

std::uint64_t ReadContext::parseHandle(std::string_view hex) {
    hex = trimmed(hex);
    std::uint64_t value = 0;
    auto [end, ec] = std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
    if (ec != std::errc() || end != hex.data() + hex.size()) return 0;
    return value;
}

AcDbObjectId ReadContext::idOf(std::uint64_t handle) {
    AcDbObjectId id;
    if (handle == 0) return id;
    // Entity after entity names the same owner.
    if (handle == lastHandle_) return lastId_;
    database.getAcDbObjectId(id, true, AcDbHandle(handle));
    lastHandle_ = handle;
    lastId_ = id;
    return id;
}

std::uint64_t WriteContext::handleOf(AcDbObjectId id) {
    if (id.isNull() || id.isErased() || arx::peekObject(id) == nullptr) return 0;
    return id.handle().value();
}

std::uint64_t WriteContext::refOf(AcDbObjectId id) {
    if (id.isNull() || id.isErased()) return 0;
    return id.handle().value();
}

void WriteContext::raw(const AcDbRawTag& tag) {
    switch (db::kindOfGroupCode(tag.code)) {
        case db::ValueKind::String:
            out.text(tag.code, strings.fromUtf8(tag.value));
            break;
        default:
            out.text(tag.code, tag.value);
            break;
    }
}

// Degrees in files, radians in memory: of the degree values that give the same
// radians, the shortest is written, so that 30 stays 30 and not 29.999999999999996.
double degToRad(double degrees) {
    return degrees * (M_PI / 180.0);
}

double radToDeg(double radians) {
    double best = radians * (180.0 / M_PI);
    if (degToRad(best) == radians && std::nearbyint(best) == best) return best;
    std::size_t bestLength = formatReal(best).size();
    double candidate = best;
    double down = best;
    for (int k = 0; k < 6; ++k) {
        candidate = std::nextafter(candidate, HUGE_VAL);
        down = std::nextafter(down, -HUGE_VAL);
        for (double c : {candidate, down}) {
            if (degToRad(c) != radians) continue;
            std::size_t length = formatReal(c).size();
            if (length < bestLength) {
                best = c;
                bestLength = length;
            }
        }
    }
    return best;
}

namespace {

// Xdata codes are nearly all 1000 to 1071: their kind without the general table.
bool isStringCode(int code) {
    if (code >= 1000 && code <= 1071) return code <= 1003 || (code >= 1006 && code <= 1009);
    return db::kindOfGroupCode(code) == db::ValueKind::String;
}

}  // namespace

std::string packXdata(ReadContext& ctx, std::span<const TagView> tags) {
    // Code (2 bytes), length (at most 4) and text, written in place: a value that grows
    // in conversion makes room for itself.
    std::size_t size = 0;
    for (const TagView& t : tags)
        size += t.value.size() + 6;
    std::string packed(size, '\0');
    char* out = packed.data();
    std::string converted;
    for (const TagView& t : tags) {
        std::string_view text = t.value;
        if (isStringCode(t.code) && !ctx.strings.isUtf8AsIs(text)) {
            converted = ctx.strings.toUtf8(text);
            text = converted;
            std::size_t used = static_cast<std::size_t>(out - packed.data());
            if (converted.size() > t.value.size()) {
                packed.resize(packed.size() + converted.size() - t.value.size());
                out = packed.data() + used;
            }
        } else if (t.code >= 1010 && t.code <= 1071) {
            double number = 0;
            if (t.code < 1060) {
                ctx.real(t, number);
            } else if (std::int64_t whole = 0; !parseInt(t.value, whole)) {
                ctx.real(t, number);  // an integer written as a real is kept as written
            }
        }
        *out++ = static_cast<char>(t.code & 0xFF);
        *out++ = static_cast<char>((t.code >> 8) & 0xFF);
        std::size_t rest = text.size();
        do {
            unsigned char b = rest & 0x7F;
            rest >>= 7;
            *out++ = static_cast<char>(rest ? b | 0x80 : b);
        } while (rest);
        if (!text.empty()) std::memcpy(out, text.data(), text.size());
        out += text.size();
    }
    packed.resize(static_cast<std::size_t>(out - packed.data()));
    return packed;
}

namespace {

// One value of a tag whose text is UTF-8; points take their y and z from the tags after.
db::Value valueOf(int code, std::string_view text) {
    db::Value v;
    v.code = code;
    switch (db::kindOfGroupCode(code)) {
        case db::ValueKind::Real: {
            double d = 0;
            parseReal(text, d);
            v.data = d;
            break;
        }
        case db::ValueKind::Point: {
            db::Point p{0, 0, 0};
            parseReal(text, p[0]);
            v.data = p;
            break;
        }
        case db::ValueKind::Int16:
        case db::ValueKind::Int32:
        case db::ValueKind::Int64:
        case db::ValueKind::Bool: {
            std::int64_t i = 0;
            parseInt(text, i);
            v.data = i;
            break;
        }
        case db::ValueKind::Binary: {
            db::Bytes bytes;
            for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
                unsigned value = 0;
                std::from_chars(text.data() + i, text.data() + i + 2, value, 16);
                bytes.push_back(static_cast<std::uint8_t>(value));
            }
            v.data = std::move(bytes);
            break;
        }
        default:
            v.data = db::utf8ToWide(text);
            break;
    }
    return v;
}

}  // namespace

void unpackXdata(const std::string& packed, db::ValueList& values) {
    // Values already in the list are overwritten rather than destroyed, so that a list
    // used again and again keeps the storage of its strings.
    std::size_t used = 0;
    forEachPacked(packed, [&](int code, std::string_view text) {
        if (used > 0) {
            db::Value& last = values[used - 1];
            auto* point = std::get_if<db::Point>(&last.data);
            // The y and z of a point come as tags of their own, 10 and 20 codes on.
            if (point && (code == last.code + 10 || code == last.code + 20)) {
                parseReal(text, (*point)[code == last.code + 10 ? 1 : 2]);
                return;
            }
        }
        if (used == values.size()) values.emplace_back();
        db::Value& v = values[used++];
        if (db::kindOfGroupCode(code) == db::ValueKind::String) {
            v.code = code;
            auto* kept = std::get_if<std::wstring>(&v.data);
            if (kept == nullptr) kept = &v.data.emplace<std::wstring>();
            db::utf8ToWide(text, *kept);
        } else {
            v = valueOf(code, text);
        }
    });
    values.resize(used);
}

bool compactXdata(AcDbObject& object) {
    if (object.packedXdata() != nullptr) return true;
    const db::ValueList& values = object.xdataValues();
    if (values.empty()) return true;
    std::string packed;
    auto put = [&](int code, std::string_view text) { db::appendPacked(packed, code, text); };
    for (const db::Value& v : values) {
        if (const auto* text = std::get_if<std::wstring>(&v.data)) {
            put(v.code, db::wideToUtf8(*text));
        } else if (const auto* d = std::get_if<double>(&v.data)) {
            put(v.code, formatReal(*d));
        } else if (const auto* p = std::get_if<db::Point>(&v.data)) {
            for (int k = 0; k < 3; ++k)
                put(v.code + 10 * k, formatReal((*p)[k]));
        } else if (const auto* i = std::get_if<std::int64_t>(&v.data)) {
            put(v.code, std::to_string(*i));
        } else {
            return false;  // object references and binary chunks stay unpacked
        }
    }
    object.restorePackedXdata(std::move(packed), &unpackXdata);
    return true;
}

void writePackedXdata(WriteContext& ctx, const std::string& packed) {
    forEachPacked(packed, [&](int code, std::string_view text) {
        if (db::kindOfGroupCode(code) == db::ValueKind::String) {
            ctx.textUtf8(code, text);
        } else {
            ctx.out.text(code, text);
        }
    });
}

db::ValueList readValues(ReadContext& ctx, const TagView* begin, const TagView* end) {
    db::ValueList values;
    values.reserve(static_cast<std::size_t>(end - begin));
    for (const TagView* t = begin; t < end; ++t) {
        db::Value v;
        v.code = t->code;
        switch (db::kindOfGroupCode(t->code)) {
            case db::ValueKind::Real: {
                double d = 0;
                ctx.real(*t, d);
                v.data = d;
                break;
            }
            case db::ValueKind::Point: {
                db::Point p{0, 0, 0};
                ctx.real(*t, p[0]);
                if (t + 1 < end && t[1].code == t->code + 10) {
                    ctx.real(*++t, p[1]);
                    if (t + 1 < end && t[1].code == t->code + 10) ctx.real(*++t, p[2]);
                }
                v.data = p;
                break;
            }
            case db::ValueKind::Int16:
            case db::ValueKind::Int32:
            case db::ValueKind::Int64:
            case db::ValueKind::Bool: {
                std::int64_t i = 0;
                if (!ctx.integer(*t, i)) {
                    v.data = ctx.wide(t->value);  // "1.0": kept as written
                    break;
                }
                v.data = i;
                break;
            }
            case db::ValueKind::Binary: {
                db::Bytes bytes;
                std::string_view hex = t->value;
                for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
                    unsigned value = 0;
                    std::from_chars(hex.data() + i, hex.data() + i + 2, value, 16);
                    bytes.push_back(static_cast<std::uint8_t>(value));
                }
                v.data = std::move(bytes);
                break;
            }
            case db::ValueKind::ObjectRef: {
                AcDbObjectId id = ctx.idOf(t->value);
                v.data = id.stub();
                break;
            }
            default:
                v.data = ctx.wide(t->value);
                break;
        }
        values.push_back(std::move(v));
    }
    return values;
}

void writeValues(WriteContext& ctx, const db::ValueList& values) {
    for (const db::Value& v : values) {
        if (const auto* text = std::get_if<std::wstring>(&v.data)) {
            ctx.text(v.code, *text);
        } else if (const auto* d = std::get_if<double>(&v.data)) {
            ctx.out.real(v.code, *d);
        } else if (const auto* p = std::get_if<db::Point>(&v.data)) {
            ctx.out.point(v.code, (*p)[0], (*p)[1], (*p)[2]);
        } else if (const auto* i = std::get_if<std::int64_t>(&v.data)) {
            ctx.out.integer(v.code, *i);
        } else if (const auto* bytes = std::get_if<db::Bytes>(&v.data)) {
            static const char hex[] = "0123456789ABCDEF";
            std::string text;
            for (std::uint8_t b : *bytes) {
                text += hex[b >> 4];
                text += hex[b & 15];
            }
            ctx.out.text(v.code, text);
        } else if (const auto* stub = std::get_if<db::Stub*>(&v.data)) {
            ctx.ref(v.code, AcDbObjectId(*stub));
        } else {
            ctx.out.text(v.code, "");
        }
    }
}

}  // namespace dxf
