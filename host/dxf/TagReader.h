#pragma once
// The lowest layer of DXF reading: a stream of (group code, value) tags. ASCII files
// are read in chunks, so a drawing of any size costs a few megabytes here; binary
// files are recognised by their sentinel and read the same way.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <istream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dxf {

struct TagView {
    int code = 0;
    // The value as the file has it, without the line end; valid until release().
    std::string_view value;
    // The line of the group code (ASCII), or the byte offset (binary).
    std::size_t line = 0;
};

class TagReader {
  public:
    // Lines longer than this are refused: no DXF writer makes them, and a file that
    // has one is not DXF. Far above the 2049 characters of a string, as a line read in a
    // code page may grow when written again (UTF-8, escapes).
    static constexpr std::size_t kMaxLineLength = 512 * 1024;

    // name is used in messages only.
    TagReader(std::istream& in, std::string name);

    // The next tag; false at the end of the input or on an error (then error() says
    // what was wrong, with the file name and line).
    bool next(TagView& tag) {
        // Inline, as it runs for every tag of a drawing: the usual tag, a short code
        // line and a value line both within the chunk, is split here.
        if (inPlace_) {
            const Chunk& c = chunks_.back();
            const char* base = c.data.get();
            const char* p = base + pos_;
            const char* end = base + c.size;
            while (p < end && *p == ' ')
                ++p;
            const char* digits = p;
            int code = 0;
            while (p < end && p - digits < 6 && static_cast<unsigned>(*p - '0') < 10)
                code = code * 10 + (*p++ - '0');
            if (p > digits && p < end && *p == '\r') ++p;
            if (p > digits && p < end && *p == '\n') {
                const char* value = p + 1;
                const char* valueEnd = findLineEnd(value, end);
                if (valueEnd != nullptr &&
                    static_cast<std::size_t>(valueEnd - value) <= kMaxLineLength) {
                    pos_ = static_cast<std::size_t>(valueEnd + 1 - base);
                    if (valueEnd > value && valueEnd[-1] == '\r') --valueEnd;
                    tag.code = code;
                    tag.value = std::string_view(value, static_cast<std::size_t>(valueEnd - value));
                    tag.line = line_ + 1;
                    line_ += 2;
                    return true;
                }
            }
        }
        return nextSlow(tag);
    }
    // Values handed out so far may be dropped; call between objects.
    void release();
    // For a caller that holds values longer: the chunk the last value read lies in,
    // and the release of the chunks before a given one.
    std::uint64_t chunkSerial() const { return chunks_.empty() ? serial_ : chunks_.back().serial; }
    void releaseBefore(std::uint64_t serial);

    bool failed() const { return !error_.empty(); }
    const std::string& error() const { return error_; }
    bool isBinary() const { return binary_; }
    const std::string& name() const { return name_; }
    // Records an error found by a layer above, at a line of this file.
    void fail(std::size_t line, const std::string& what);
    // "name: line N" (ASCII) or "name: byte N" (binary), as messages begin.
    std::string where(std::size_t line) const;
    std::size_t line() const { return line_; }
    // Called after each chunk read from the stream with the bytes read so far, for a
    // progress bar.
    void onChunk(std::function<void(std::uint64_t)> callback) { onChunk_ = std::move(callback); }
    std::function<void(std::uint64_t)> takeOnChunk() { return std::exchange(onChunk_, nullptr); }
    std::uint64_t bytesRead() const { return bytesRead_; }

  private:
    // The '\n' at or after p, or null. Most values are a few characters long: looked
    // for a word at a time before memchr, whose setup costs more than such a line.
    static const char* findLineEnd(const char* p, const char* end) {
        if constexpr (std::endian::native == std::endian::little) {
            constexpr std::uint64_t ones = 0x0101010101010101ull, highs = 0x8080808080808080ull;
            for (int words = 0; words < 4 && end - p >= 8; ++words, p += 8) {
                std::uint64_t w;
                std::memcpy(&w, p, 8);
                w ^= ones * '\n';
                // The lowest flagged byte is the first zero byte, i.e. the first '\n'.
                if (std::uint64_t zero = (w - ones) & ~w & highs)
                    return p + (std::countr_zero(zero) >> 3);
            }
        }
        return static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)));
    }
    struct Chunk {
        std::unique_ptr<char[]> data;
        std::size_t size = 0;
        std::size_t capacity = 0;
        std::uint64_t serial = 0;
    };
    bool nextSlow(TagView& tag);
    bool readLine(std::string_view& text);
    bool readValue(TagView& tag);
    bool refill();
    bool nextBinary(TagView& tag);
    bool needBytes(std::size_t count);

    std::istream& in_;
    std::string name_;
    std::string error_;
    std::vector<Chunk> chunks_;  // the last one is being read
    std::vector<Chunk> spare_;   // released, for reuse: fresh memory costs page faults
    std::size_t pos_ = 0;        // in the last chunk
    std::size_t line_ = 0;
    bool eof_ = false;
    bool started_ = false;
    bool binary_ = false;
    bool inPlace_ = false;          // ASCII, started, a chunk at hand, no error: next() may split
    bool wideCodes_ = true;         // binary: 2-byte group codes (R13 on)
    std::deque<std::string> text_;  // binary: values made text, until release()
    std::uint64_t bytesRead_ = 0;
    std::uint64_t serial_ = 0;   // of the last chunk made
    std::size_t nextChunkSize_;  // of the next chunk made; they grow
    std::function<void(std::uint64_t)> onChunk_;
};

// All tags of a text, for tests and small inputs; false with error set on failure.
bool readTags(std::string_view text, std::vector<std::pair<int, std::string>>& tags,
              std::string& error);

}  // namespace dxf
