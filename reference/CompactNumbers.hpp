// Fixed notation through the C library, and the rules of the row compressor one by one. For the "C"
// locale and round-to-nearest.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

namespace corvale::reference {

// The fixed notation of both writers: no zero before the point.
inline std::string FixedNotation(double value, int decimals, bool signAlways) {
    if (std::isnan(value)) return "NaN";
    const std::string sign = std::signbit(value) ? "-" : signAlways ? "+" : "";
    if (std::isinf(value)) return sign + "Inf";
    std::array<char, 400> digits;
    std::snprintf(digits.data(), digits.size(), "%.*f", decimals, std::fabs(value));
    return sign + (digits[0] == '0' ? digits.data() + 1 : digits.data());
}

// The first `n` characters of what a field of `width` shows, in a text of `n`.
inline std::string CutToWidth(std::string rendering, std::size_t width, std::size_t n) {
    if (rendering.size() > width) rendering.assign(width, '*');
    rendering.resize(width, ' ');
    rendering.resize(n, ' ');
    return rendering;
}

// The rules of the row compressor in their order; positions count from 1.
class Compressor {
  public:
    explicit Compressor(std::string_view line)
        : line_(line), last_(static_cast<int>(line.find_last_not_of(' ') + 1)) {
        out_.fill(' ');
    }

    // Writes the result to a text as wide as the line, which may be the line itself.
    void Run(std::span<char> result) {
        while (i_ <= last_ && j_ <= 512) Step();
        for (std::size_t k = 0; k < result.size(); ++k) result[k] = k < 512 ? out_[k + 1] : ' ';
    }

  private:
    char In(int i) const {
        return i >= 1 && i <= last_ ? line_[static_cast<std::size_t>(i - 1)] : ' ';
    }
    void Put(int j, char c) {
        if (j <= 512) out_[static_cast<std::size_t>(j)] = c;
    }
    bool Is(std::string_view pattern) const {
        for (std::size_t k = 0; k < pattern.size(); ++k)
            if (In(i_ + static_cast<int>(k)) != pattern[k]) return false;
        return true;
    }
    void BlankRun() {
        for (int z = z0_; z <= z1_; ++z) Put(z, ' ');
    }
    int NumberEnd() {
        if (z0_ == 0) return j_;
        BlankRun();
        return z0_;
    }
    void Copy() {
        Put(j_++, In(i_++));
        z0_ = 0;
    }
    void Separate() {
        const int p = NumberEnd();
        Put(p, In(i_++));
        j_ = p + 1;
        flag_ = false;
        z0_ = 0;
    }
    void Exponent() {
        const int p = NumberEnd();
        Put(p, 'E');
        Put(p + 1, In(i_ + 1));
        const int digits = In(i_ + 2) != '0' ? 3 : In(i_ + 3) != '0' ? 2 : 1;
        for (int k = 0; k < digits; ++k) Put(p + 2 + k, In(i_ + 5 - digits + k));
        j_ = p + 2 + digits;
        i_ += 5;
        flag_ = false;
        z0_ = 0;
    }
    void PointOrZero(char c) {
        if (c == '.') {
            flag_ = true;
        } else if (flag_) {
            if (z0_ != 0) {
                z1_ = j_;
            } else {
                z0_ = In(i_ - 1) == '.' ? j_ - 1 : j_;
                z1_ = j_;
            }
        }
        Put(j_++, c);
        if (flag_ && i_ == last_ && z0_ != 0) BlankRun();
        ++i_;
    }
    void Step() {
        const char c = In(i_);
        if (c == ' ') {
            i_ += Is(" 0 ,") ? 2 : Is(" 0.000000000000000E+000 ") ? 23 : 1;
        } else if (c == ',' || c == ':') {
            flag_ ? Separate() : Copy();
        } else if (c == 'E') {
            flag_ ? Exponent() : Copy();
        } else if (c == '.' || c == '0') {
            PointOrZero(c);
        } else {
            Copy();
        }
    }

    std::string_view line_;
    int last_;
    std::array<char, 513> out_;
    int i_ = 1, j_ = 1, z0_ = 0, z1_ = 0;
    bool flag_ = false;
};

inline void CompressCsvLine(std::span<char> line) {
    Compressor({line.data(), line.size()}).Run(line);
}

}  // namespace corvale::reference
