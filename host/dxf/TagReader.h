#pragma once
// The lowest layer of DXF reading: a stream of (group code, value) tags. ASCII files
// are read in chunks, so a drawing of any size costs a few megabytes here; binary
// files are recognised by their sentinel and read the same way.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <istream>
#include <memory>
#include <string>
#include <string_view>
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
                const void* nl = std::memchr(value, '\n', static_cast<std::size_t>(end - value));
                const char* valueEnd = static_cast<const char*>(nl);
                if (nl != nullptr && static_cast<std::size_t>(valueEnd - value) <= kMaxLineLength) {
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

    bool failed() const { return !error_.empty(); }
    const std::string& error() const { return error_; }
    bool isBinary() const { return binary_; }
    const std::string& name() const { return name_; }
    // Records an error found by a layer above, at a line of this file.
    void fail(std::size_t line, const std::string& what);
    std::size_t line() const { return line_; }
    // Called after each chunk read from the stream with the bytes read so far, for a
    // progress bar.
    void onChunk(std::function<void(std::uint64_t)> callback) { onChunk_ = std::move(callback); }

  private:
    struct Chunk {
        std::unique_ptr<char[]> data;
        std::size_t size = 0;
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
    std::function<void(std::uint64_t)> onChunk_;
};

// All tags of a text, for tests and small inputs; false with error set on failure.
bool readTags(std::string_view text, std::vector<std::pair<int, std::string>>& tags,
              std::string& error);

}  // namespace dxf
