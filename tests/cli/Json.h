#pragma once
// Just enough JSON to read what kplan prints, so that tests look values up by key
// instead of matching text. Malformed input gives a null value and ok() false.
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

class Json {
  public:
    enum class Type { Null, Bool, Number, String, Array, Object };

    static Json parse(const std::string& text) {
        std::size_t at = 0;
        bool ok = true;
        Json value = read(text, at, ok);
        skip(text, at);
        if (!ok || at != text.size()) return invalid();
        return value;
    }

    bool ok() const { return valid_; }
    Type type() const { return type_; }
    bool isNull() const { return type_ == Type::Null; }
    double number() const { return number_; }
    const std::string& string() const { return text_; }
    std::size_t size() const { return type_ == Type::Object ? members_.size() : items_.size(); }
    const Json& operator[](std::size_t i) const { return i < items_.size() ? items_[i] : none(); }
    const Json& operator[](const std::string& key) const {
        auto it = members_.find(key);
        return it == members_.end() ? none() : it->second;
    }
    bool has(const std::string& key) const { return members_.count(key) > 0; }
    std::vector<std::string> keys() const {
        std::vector<std::string> out;
        for (const auto& m : members_)
            out.push_back(m.first);
        return out;
    }

  private:
    static const Json& none() {
        static const Json n;
        return n;
    }
    static Json invalid() {
        Json j;
        j.valid_ = false;
        return j;
    }
    static void skip(const std::string& t, std::size_t& at) {
        while (at < t.size() && (t[at] == ' ' || t[at] == '\n' || t[at] == '\r' || t[at] == '\t'))
            ++at;
    }
    static bool literal(const std::string& t, std::size_t& at, const char* word) {
        std::string w(word);
        if (t.compare(at, w.size(), w) != 0) return false;
        at += w.size();
        return true;
    }
    static std::string readString(const std::string& t, std::size_t& at, bool& ok) {
        std::string out;
        ++at;  // the opening quote
        while (at < t.size() && t[at] != '"') {
            if (t[at] == '\\' && at + 1 < t.size()) {
                char e = t[++at];
                out += e == 'n' ? '\n' : e == 't' ? '\t' : e == 'r' ? '\r' : e;
                if (e == 'u') ok = false;  // kplan escapes no text this way in these tests
            } else {
                out += t[at];
            }
            ++at;
        }
        if (at >= t.size()) ok = false;
        ++at;
        return out;
    }
    static Json read(const std::string& t, std::size_t& at, bool& ok) {
        skip(t, at);
        Json j;
        if (at >= t.size()) {
            ok = false;
            return j;
        }
        char c = t[at];
        if (c == '{' || c == '[') {
            j.type_ = c == '{' ? Type::Object : Type::Array;
            char close = c == '{' ? '}' : ']';
            ++at;
            skip(t, at);
            if (at < t.size() && t[at] == close) {
                ++at;
                return j;
            }
            while (ok) {
                skip(t, at);
                if (j.type_ == Type::Object) {
                    if (at >= t.size() || t[at] != '"') {
                        ok = false;
                        break;
                    }
                    std::string key = readString(t, at, ok);
                    skip(t, at);
                    if (at >= t.size() || t[at++] != ':') ok = false;
                    j.members_[key] = read(t, at, ok);
                } else {
                    j.items_.push_back(read(t, at, ok));
                }
                skip(t, at);
                if (at < t.size() && t[at] == ',') {
                    ++at;
                } else if (at < t.size() && t[at] == close) {
                    ++at;
                    break;
                } else {
                    ok = false;
                }
            }
        } else if (c == '"') {
            j.type_ = Type::String;
            j.text_ = readString(t, at, ok);
        } else if (literal(t, at, "null")) {
        } else if (literal(t, at, "true") || literal(t, at, "false")) {
            j.type_ = Type::Bool;
            j.number_ = t[at - 1] == 'e' && t[at - 2] == 'u' ? 1 : 0;
        } else {
            char* end = nullptr;
            j.number_ = std::strtod(t.c_str() + at, &end);
            if (end == t.c_str() + at) ok = false;
            j.type_ = Type::Number;
            at = static_cast<std::size_t>(end - t.c_str());
        }
        return j;
    }

    Type type_ = Type::Null;
    bool valid_ = true;
    double number_ = 0;
    std::string text_;
    std::vector<Json> items_;
    std::map<std::string, Json> members_;
};
