#include "host/dxf/TagWriter.h"

#include <charconv>
#include <cmath>

namespace dxf {

namespace {

std::size_t appendReal(char* out, double value) {
    if (!std::isfinite(value)) value = 0;  // no DXF reader takes inf or nan
    auto r = std::to_chars(out, out + 32, value);
    std::size_t n = static_cast<std::size_t>(r.ptr - out);
    bool plain = true;
    for (std::size_t i = 0; i < n; ++i) {
        if (out[i] == '.' || out[i] == 'e') plain = false;
    }
    if (plain) {
        out[n++] = '.';
        out[n++] = '0';
    }
    return n;
}

}  // namespace

std::string formatReal(double value) {
    char buffer[40];
    return std::string(buffer, appendReal(buffer, value));
}

TagWriter::TagWriter(Sink sink) : sink_(std::move(sink)) {
    buffer_.reserve(kSpillSize + 4096);
}

void TagWriter::code(int code) {
    char buffer[16];
    auto r = std::to_chars(buffer, buffer + sizeof buffer, code);
    std::size_t n = static_cast<std::size_t>(r.ptr - buffer);
    // Right-aligned in three columns, as the host writes them.
    if (n < 3) buffer_.append(3 - n, ' ');
    buffer_.append(buffer, n);
    buffer_ += '\n';
}

void TagWriter::text(int c, std::string_view value) {
    code(c);
    // A value is one line: line breaks (binary files and text from programs can hold
    // them) are written in the file's caret form, ^J and ^M.
    if (value.find_first_of("\r\n") == std::string_view::npos) {
        buffer_.append(value);
    } else {
        for (char ch : value) {
            if (ch == '\n') {
                buffer_ += "^J";
            } else if (ch == '\r') {
                buffer_ += "^M";
            } else {
                buffer_ += ch;
            }
        }
    }
    buffer_ += '\n';
    spill();
}

void TagWriter::real(int c, double value) {
    code(c);
    char buffer[40];
    buffer_.append(buffer, appendReal(buffer, value));
    buffer_ += '\n';
    spill();
}

void TagWriter::integer(int c, std::int64_t value) {
    code(c);
    char buffer[24];
    auto r = std::to_chars(buffer, buffer + sizeof buffer, value);
    buffer_.append(buffer, r.ptr);
    buffer_ += '\n';
    spill();
}

void TagWriter::handle(int c, std::uint64_t value) {
    code(c);
    char buffer[24];
    auto r = std::to_chars(buffer, buffer + sizeof buffer, value, 16);
    for (char* p = buffer; p < r.ptr; ++p) {
        if (*p >= 'a' && *p <= 'f') *p = static_cast<char>(*p - 'a' + 'A');
    }
    buffer_.append(buffer, r.ptr);
    buffer_ += '\n';
    spill();
}

void TagWriter::point(int base, double x, double y) {
    real(base, x);
    real(base + 10, y);
}

void TagWriter::point(int base, double x, double y, double z) {
    real(base, x);
    real(base + 10, y);
    real(base + 20, z);
}

bool TagWriter::flush() {
    if (!buffer_.empty() && ok_) {
        ok_ = sink_(buffer_);
        if (ok_) written_ += buffer_.size();
    }
    buffer_.clear();
    return ok_;
}

}  // namespace dxf
