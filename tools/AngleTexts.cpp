#include "AngleTexts.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "NumberFields.hpp"
#include "RealWords.hpp"
#include "Texts.hpp"

#include <corvale/numeric/Angles.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace corvale::tool {

namespace {

// Whole minutes and seconds of an angle that is written in digits, in the unit of its last digit.
struct Layout {
    std::string_view digits;  // D, M or S where a digit is wanted, else the character itself
    std::int64_t perSecond;   // units of the last digit in a second
    std::string_view name;
};
constexpr Layout kDegreeLayout = {"DDMMSS.SSS", 1000, "sDDMMSS.SSS"};
constexpr Layout kWideLayout = {"DDDMMSS.SSS", 1000, "sDDDMMSS.SSS"};
constexpr Layout kHourLayout = {"DDMMSSS", 10, "HHMMSSs"};

const Layout& LayoutOf(std::string_view digits, bool inHours) {
    if (inHours) return kHourLayout;
    return digits.find('.') == kWideLayout.digits.find('.') ? kWideLayout : kDegreeLayout;
}

// Where `text` first departs from the layout; its size where it does not.
std::size_t Departure(std::string_view text, std::string_view layout) {
    for (std::size_t i = 0; i < layout.size(); ++i) {
        const bool wantsDigit = layout[i] != '.';
        if (i >= text.size()) return i;
        if (wantsDigit ? !IsDigit(text[i]) : text[i] != '.') return i;
    }
    return layout.size();
}

std::int64_t DigitsOf(std::string_view text, std::string_view layout, char place) {
    std::int64_t value = 0;
    for (std::size_t i = 0; i < layout.size(); ++i)
        if (layout[i] == place) value = value * 10 + (text[i] - '0');
    return value;
}

// What a letter behind a number counts, in seconds of its angle or hour.
struct UnitLetter {
    char letter;
    std::int64_t seconds;
};
constexpr UnitLetter kUnitLetters[] = {{'d', 3600}, {'h', 3600}, {'m', 60},
                                       {'\'', 60},  {'s', 1},    {'"', 1}};

// A number without a unit may end in an exponent with D: 10d30 is one.
constexpr std::string_view kNotInReals = ":hHmMsS'\"";
constexpr std::string_view kNotInLayouts = ":dDhHmMsS'\"";

// An angle as up to three numbers with colons between them or with unit letters behind them.
class Sexagesimal {
  public:
    Sexagesimal(std::string_view text, bool inHours)
        : field_(Trim(text).text),
          column_(Trim(text).column),
          hasColons_(Has(":")),
          isInHours_(Has("hH") || (inHours && !Has("dD"))) {}

    RealField Read() {
        const bool isNegative = field_.starts_with('-');
        at_ = isNegative || field_.starts_with('+') ? 1 : 0;
        do {
            if (const std::string why = Part(); !why.empty())
                return {{}, column_ + at_, Joined(Quoted(field_), " is no angle: ", why)};
        } while (at_ < field_.size() || field_.back() == ':');
        // an hour is 15 degrees: both numbers are below 2^53
        const double perDegree = static_cast<double>((isInHours_ ? 240 : 3600) * scale_);
        const double degrees = static_cast<double>(seconds_ * scale_ + fraction_) / perDegree;
        return {isNegative ? -degrees : degrees, column_};
    }

  private:
    [[nodiscard]] bool Has(std::string_view characters) const {
        return field_.find_first_of(characters) != std::string_view::npos;
    }

    // Takes one number with what follows it; says why it cannot.
    std::string Part() {
        if (scale_ > 1) return "only its last number may have a fraction";
        const std::size_t begin = at_;
        const std::int64_t whole = Digits(3);
        if (at_ == begin) return "a digit is missing";
        if (last_ != kNone && whole > 59) return "it has 60 minutes or seconds, or more";
        const std::int64_t fraction = Fraction();
        if (at_ < field_.size() && IsDigit(field_[at_])) return "it has more digits than are read";
        const std::int64_t unit = hasColons_ ? UnitOfPlace() : UnitOfLetter();
        if (unit == 0 || unit >= last_)
            return hasColons_ ? "there are three numbers at most, and only colons between them"
                              : "its units are d or h, m and s, each behind its number";
        last_ = unit;
        seconds_ += whole * unit;
        fraction_ = fraction * unit;
        return "";
    }

    std::int64_t Digits(std::size_t most) {
        std::int64_t value = 0;
        for (; most > 0 && at_ < field_.size() && IsDigit(field_[at_]); ++at_, --most)
            value = value * 10 + (field_[at_] - '0');
        return value;
    }

    // Nine digits: a billionth of a second, with which 999 degrees fit in a double.
    std::int64_t Fraction() {
        if (at_ >= field_.size() || field_[at_] != '.') return 0;
        const std::size_t begin = ++at_;
        const std::int64_t fraction = Digits(9);
        for (std::size_t i = begin; i < at_; ++i) scale_ *= 10;
        return fraction;
    }

    std::int64_t UnitOfPlace() {
        if (at_ < field_.size() && field_[at_++] != ':') return 0;
        return last_ == kNone ? 3600 : last_ / 60;
    }

    std::int64_t UnitOfLetter() {
        if (at_ >= field_.size()) return 0;
        const char lower = static_cast<char>(field_[at_] | 0x20);
        const auto* const unit = std::ranges::find(kUnitLetters, lower, &UnitLetter::letter);
        if (unit == std::end(kUnitLetters)) return 0;
        ++at_;
        return unit->seconds;
    }

    static constexpr std::int64_t kNone = 216'000;  // above every unit

    std::string_view field_;
    std::size_t column_;
    bool hasColons_, isInHours_;
    std::size_t at_ = 0;
    std::int64_t last_ = kNone;  // the unit of the number before
    std::int64_t seconds_ = 0, fraction_ = 0, scale_ = 1;
};

RealField ReadDegrees(std::string_view text) {
    if (text.find_first_of(kNotInReals) != std::string_view::npos)
        return Sexagesimal(text, false).Read();
    return ReadReal(text);
}

// The library writes two digits of degrees. What is behind the point does not depend on them: it
// goes through the library alone, and may carry one degree.
std::string DegreeText(double degrees) {
    const std::array<char, 11> code = GenFunctions::DegToDDMMSSSSS_Str(std::fmod(degrees, 1.0));
    const int carried = code[2] - '0';
    const std::string whole =
        std::to_string(static_cast<int>(std::trunc(std::abs(degrees))) + carried);
    return Joined(degrees < 0 ? "-" : "0", whole.size() < 2 ? "0" : "", whole,
                  std::string_view(code.data(), code.size()).substr(3));
}

}  // namespace

Converted EncodeAngle(std::string_view text, bool inHours) {
    const RealField field = ReadDegrees(text);
    if (!field.value) return Unusable{field.column, field.why};
    if (inHours) {
        const std::array<char, 7> code = GenFunctions::DegToHHMMSSS_Str(*field.value);
        return std::string(code.data(), code.size());
    }
    constexpr double tooMany = 1000;
    if (std::abs(*field.value) < tooMany) {
        std::string shown = DegreeText(*field.value);
        if (shown.size() <= kWideLayout.name.size()) return shown;
    }
    return Unusable{field.column, Quoted(Trim(text).text) + " degrees do not fit in three digits"};
}

Converted DecodeAngle(std::string_view text, bool inHours) {
    const auto [field, column] = Trim(text);
    if (field.find_first_of(kNotInLayouts) != std::string_view::npos) {
        const RealField angle = Sexagesimal(text, inHours).Read();
        if (!angle.value) return Unusable{angle.column, angle.why};
        return RealText(*angle.value);
    }
    const bool hasSign = !inHours && !field.empty() && (field[0] == '-' || field[0] == '0');
    const std::string_view digits = field.substr(hasSign ? 1 : 0);
    const Layout& layout = LayoutOf(digits, inHours);
    const std::string refusal = Joined(Quoted(field), " is no angle ", layout.name);
    if (!inHours && !hasSign) return Unusable{column, refusal + ": it begins with '-' or '0'"};

    const std::size_t departure = Departure(digits, layout.digits);
    if (departure < layout.digits.size() || digits.size() > layout.digits.size())
        return Unusable{column + (hasSign ? 1 : 0) + departure, refusal};

    const std::int64_t whole = DigitsOf(digits, layout.digits, 'D');
    const std::int64_t minutes = DigitsOf(digits, layout.digits, 'M');
    const std::int64_t seconds = DigitsOf(digits, layout.digits, 'S');
    if (minutes >= 60 || seconds >= 60 * layout.perSecond || (inHours && whole >= 24))
        return Unusable{column, Joined(refusal, ": it has ", inHours ? "24 hours, " : "",
                                       "60 minutes or 60 seconds, or more")};
    const std::int64_t units = (whole * 60 + minutes) * 60 * layout.perSecond + seconds;
    // an hour is 15 degrees: 2400 tenths of a second are one
    const double perDegree = inHours ? 2400.0 : 3600.0 * static_cast<double>(layout.perSecond);
    const double degrees = static_cast<double>(units) / perDegree;
    return RealText(field[0] == '-' ? -degrees : degrees);
}

}  // namespace corvale::tool
