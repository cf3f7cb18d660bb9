#pragma once
// The lowest layer of DXF writing: tags into a buffer that is handed to a sink in
// large pieces. Reals are written in the shortest form that reads back to the same
// double.
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace dxf {

class TagWriter {
  public:
    // The sink takes the bytes and says whether they were stored.
    using Sink = std::function<bool(std::string_view)>;
    explicit TagWriter(Sink sink);

    void text(int code, std::string_view value);
    void real(int code, double value);
    void integer(int code, std::int64_t value);
    void handle(int code, std::uint64_t value);
    // Group code base (10, 11, ...) and base+10, base+20 for y and z.
    void point(int base, double x, double y);
    void point(int base, double x, double y, double z);

    // Hands what is buffered to the sink; false once the sink has refused anything.
    bool flush();
    bool ok() const { return ok_; }
    std::uint64_t bytesWritten() const { return written_; }

  private:
    void code(int code);
    void spill() {
        if (buffer_.size() >= kSpillSize) flush();
    }
    static constexpr std::size_t kSpillSize = 1 << 20;

    Sink sink_;
    std::string buffer_;
    std::uint64_t written_ = 0;
    bool ok_ = true;
};

// The shortest text of a double that reads back to it, always with a decimal point
// or an exponent, so that it is recognisably real.
std::string formatReal(double value);

}  // namespace dxf
