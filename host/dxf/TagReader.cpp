#include "host/dxf/TagReader.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <sstream>

#include "host/db/GroupCode.h"
#include "host/db/TextCodec.h"

namespace dxf {

namespace {

// Chunks grow from the first size to the last by doubling: a small file costs little
// memory (and little fresh memory, which costs page faults), a large one is read in
// chunks of the size that reads it fastest.
constexpr std::size_t kFirstChunkSize = 1 << 14;
constexpr std::size_t kChunkSize = 1 << 20;

// Released chunks are kept for reuse, as fresh memory costs page faults; under the
// address sanitizer they are freed, so that a value used after its release is caught.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kReuseChunks = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kReuseChunks = false;
#else
constexpr bool kReuseChunks = true;
#endif
#else
constexpr bool kReuseChunks = true;
#endif
constexpr char kBinarySentinel[] = "AutoCAD Binary DXF\r\n\x1a";  // and a NUL: 22 bytes

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
        s.remove_suffix(1);
    return s;
}

std::string shown(std::string_view s) {
    std::string out;
    // Text that is not UTF-8 is shown by its bytes, so that the message stays readable.
    bool utf8 = db::isValidUtf8(s.substr(0, 40));
    for (char c : s.substr(0, 40)) {
        unsigned char u = static_cast<unsigned char>(c);
        if (u < 0x20 || u == 0x7F || (u >= 0x80 && !utf8)) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02X", u);
            out += buffer;
        } else {
            out += c;
        }
    }
    if (s.size() > 40) out += "...";
    return "\"" + out + "\"";
}

}  // namespace

TagReader::TagReader(std::istream& in, std::string name)
    : in_(in), name_(std::move(name)), nextChunkSize_(kFirstChunkSize) {}

void TagReader::fail(std::size_t line, const std::string& what) {
    inPlace_ = false;
    if (!error_.empty()) return;
    error_ = where(line) + ": " + what;
}

std::string TagReader::where(std::size_t line) const {
    return name_ + (binary_ ? ": byte " : ": line ") + std::to_string(line);
}

bool TagReader::refill() {
    if (eof_) return false;
    // What is left of the last chunk (a line at most) is carried over: there is always
    // room for more after it.
    std::size_t carried = chunks_.empty() ? 0 : chunks_.back().size - pos_;
    std::size_t wanted = (std::min)(kChunkSize, carried + nextChunkSize_);
    nextChunkSize_ = (std::min)(kChunkSize, nextChunkSize_ * 2);
    Chunk chunk;
    if (!spare_.empty() && spare_.back().capacity >= wanted) {
        chunk = std::move(spare_.back());
        spare_.pop_back();
    } else {
        chunk.data.reset(new char[wanted]);
        chunk.capacity = wanted;
    }
    if (!chunks_.empty()) {
        Chunk& last = chunks_.back();
        std::memcpy(chunk.data.get(), last.data.get() + pos_, carried);
        last.size = pos_;
    }
    in_.read(chunk.data.get() + carried, static_cast<std::streamsize>(chunk.capacity - carried));
    std::size_t got = static_cast<std::size_t>(in_.gcount());
    if (got == 0) {
        eof_ = true;
        if (!chunks_.empty()) chunks_.back().size += carried;  // nothing moved after all
        spare_.push_back(std::move(chunk));
        return false;
    }
    if (in_.bad()) {
        fail(line_, "the file could not be read");
        return false;
    }
    chunk.size = carried + got;
    chunk.serial = ++serial_;
    chunks_.push_back(std::move(chunk));
    pos_ = 0;
    bytesRead_ += got;
    if (onChunk_) onChunk_(bytesRead_);
    return true;
}

void TagReader::release() {
    // The last tag read stays valid: a caller may hold it as the start of the next object.
    while (chunks_.size() > 1) {
        if (kReuseChunks) spare_.push_back(std::move(chunks_.front()));
        chunks_.erase(chunks_.begin());
    }
    if (text_.size() > 1) text_.erase(text_.begin(), text_.end() - 1);
}

void TagReader::releaseBefore(std::uint64_t serial) {
    std::size_t drop = 0;
    while (drop + 1 < chunks_.size() && chunks_[drop].serial < serial)
        ++drop;
    for (std::size_t i = 0; i < drop; ++i)
        if (kReuseChunks) spare_.push_back(std::move(chunks_[i]));
    chunks_.erase(chunks_.begin(), chunks_.begin() + static_cast<std::ptrdiff_t>(drop));
}

bool TagReader::readLine(std::string_view& text) {
    for (;;) {
        if (!chunks_.empty()) {
            Chunk& c = chunks_.back();
            const char* begin = c.data.get() + pos_;
            std::size_t left = c.size - pos_;
            const void* nl = std::memchr(begin, '\n', left);
            if (nl != nullptr) {
                std::size_t length = static_cast<std::size_t>(static_cast<const char*>(nl) - begin);
                if (length > kMaxLineLength) {
                    fail(line_ + 1,
                         "line too long (over " + std::to_string(kMaxLineLength) + " bytes)");
                    return false;
                }
                text = std::string_view(begin, length);
                if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
                pos_ += length + 1;
                ++line_;
                return true;
            }
            if (left > kMaxLineLength) {
                fail(line_ + 1,
                     "line too long (over " + std::to_string(kMaxLineLength) + " bytes)");
                return false;
            }
            if (eof_) {
                if (left == 0) return false;
                // The last line of a file may lack its line end.
                text = std::string_view(begin, left);
                if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
                pos_ += left;
                ++line_;
                return true;
            }
        }
        if (!refill() && failed()) return false;
        if (eof_ && chunks_.empty()) return false;
    }
}

bool TagReader::needBytes(std::size_t count) {
    while (chunks_.empty() || chunks_.back().size - pos_ < count) {
        if (!refill()) return false;
    }
    return true;
}

bool TagReader::nextSlow(TagView& tag) {
    if (failed()) return false;
    if (!started_) {
        started_ = true;
        if (needBytes(22) && std::memcmp(chunks_.back().data.get(), kBinarySentinel, 21) == 0 &&
            chunks_.back().data[21] == 0) {
            binary_ = true;
            pos_ = 22;
            line_ = 22;
            // The first tag is "0 SECTION": a second zero byte means 2-byte codes.
            wideCodes_ = needBytes(2) && chunks_.back().data[pos_ + 1] == 0;
        }
    }
    if (binary_) return nextBinary(tag);
    inPlace_ = !chunks_.empty();
    std::string_view codeText;
    // What next() could not split in place: a tag across chunks, padding, an error.
    if (!readLine(codeText)) return false;
    tag.line = line_;
    std::string_view code = trim(codeText);
    // Group codes are short: read by hand.
    int value = 0;
    bool negative = !code.empty() && code.front() == '-';
    std::size_t digits = negative ? 1 : 0;
    bool ok = code.size() > digits && code.size() - digits <= 6;
    for (std::size_t i = digits; ok && i < code.size(); ++i) {
        unsigned d = static_cast<unsigned>(code[i] - '0');
        ok = d < 10;
        value = value * 10 + static_cast<int>(d);
    }
    if (!ok) {
        fail(line_, "expected a group code, found " + shown(codeText));
        return false;
    }
    tag.code = negative ? -value : value;
    return readValue(tag);
}

bool TagReader::readValue(TagView& tag) {
    std::string_view text;
    if (!readLine(text)) {
        if (!failed())
            fail(line_ + 1, "expected the value of group code " + std::to_string(tag.code) +
                                ", found the end of the file");
        return false;
    }
    tag.value = text;
    return true;
}

bool TagReader::nextBinary(TagView& tag) {
    std::size_t codeBytes = wideCodes_ ? 2 : 1;
    if (!needBytes(1)) return false;
    if (!needBytes(codeBytes)) {
        fail(line_, "truncated group code");
        return false;
    }
    const unsigned char* p =
        reinterpret_cast<const unsigned char*>(chunks_.back().data.get() + pos_);
    int code = wideCodes_ ? static_cast<std::int16_t>(p[0] | (p[1] << 8)) : p[0];
    if (!wideCodes_ && code == 255) {  // an extended code follows in two bytes
        if (!needBytes(3)) {
            fail(line_, "truncated group code");
            return false;
        }
        p = reinterpret_cast<const unsigned char*>(chunks_.back().data.get() + pos_);
        code = p[1] | (p[2] << 8);
        codeBytes = 3;
    }
    tag.line = line_;
    pos_ += codeBytes;
    line_ += codeBytes;
    tag.code = code;
    auto fixed = [&](std::size_t size) -> const unsigned char* {
        if (!needBytes(size)) {
            fail(tag.line, "truncated value of group code " + std::to_string(code));
            return nullptr;
        }
        const unsigned char* at =
            reinterpret_cast<const unsigned char*>(chunks_.back().data.get() + pos_);
        pos_ += size;
        line_ += size;
        return at;
    };
    char buffer[64];
    std::string text;
    switch (db::kindOfGroupCode(code)) {
        case db::ValueKind::Real:
        case db::ValueKind::Point: {
            const unsigned char* at = fixed(8);
            if (!at) return false;
            double d;
            std::memcpy(&d, at, 8);
            auto r = std::to_chars(buffer, buffer + sizeof buffer, d);
            text.assign(buffer, r.ptr);
            break;
        }
        case db::ValueKind::Int16:
        case db::ValueKind::Bool: {
            // R12 binary files store flags of 290-299 in one byte, the others in two.
            bool oneByte = db::kindOfGroupCode(code) == db::ValueKind::Bool;
            const unsigned char* at = fixed(oneByte ? 1 : 2);
            if (!at) return false;
            int v = oneByte ? at[0] : static_cast<std::int16_t>(at[0] | (at[1] << 8));
            text = std::to_string(v);
            break;
        }
        case db::ValueKind::Int32: {
            const unsigned char* at = fixed(4);
            if (!at) return false;
            std::int32_t v;
            std::memcpy(&v, at, 4);
            text = std::to_string(v);
            break;
        }
        case db::ValueKind::Int64: {
            const unsigned char* at = fixed(8);
            if (!at) return false;
            std::int64_t v;
            std::memcpy(&v, at, 8);
            text = std::to_string(v);
            break;
        }
        case db::ValueKind::Binary: {
            const unsigned char* at = fixed(1);
            if (!at) return false;
            std::size_t n = at[0];
            const unsigned char* bytes = fixed(n);
            if (!bytes) return false;
            static const char hex[] = "0123456789ABCDEF";
            for (std::size_t i = 0; i < n; ++i) {
                text += hex[bytes[i] >> 4];
                text += hex[bytes[i] & 15];
            }
            break;
        }
        default: {
            for (;;) {
                if (!needBytes(1)) {
                    fail(tag.line, "unterminated string of group code " + std::to_string(code));
                    return false;
                }
                char c = chunks_.back().data[pos_++];
                ++line_;
                if (c == 0) break;
                text += c;
                if (text.size() > kMaxLineLength) {
                    fail(line_, "string too long");
                    return false;
                }
            }
            break;
        }
    }
    text_.push_back(std::move(text));
    tag.value = text_.back();
    return true;
}

bool readTags(std::string_view text, std::vector<std::pair<int, std::string>>& tags,
              std::string& error) {
    std::istringstream in{std::string(text)};
    TagReader reader(in, "<text>");
    TagView tag;
    tags.clear();
    while (reader.next(tag))
        tags.emplace_back(tag.code, std::string(tag.value));
    error = reader.error();
    return !reader.failed();
}

}  // namespace dxf
