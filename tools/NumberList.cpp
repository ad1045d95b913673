#include "NumberList.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "RealWords.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvale::tool {

namespace {

constexpr std::size_t kNumbersStart = std::string_view("QZ_MOIC ").size();  // counted from 0
constexpr std::string_view kItemEnds = " \t,/";

bool IsItemEnd(char c) {
    return c == ' ' || c == '\t' || c == ',' || c == '/';
}

bool IsLetter(char c) {
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'z';
}

std::string Plural(std::size_t count, std::string_view noun) {
    return Joined(count, " ", noun, count == 1 ? "" : "s");
}

std::string Kept(std::size_t first) {
    if (first >= kElements) return "value 128 keeps what it held";
    return Joined("values ", first, " to 128 keep what they held");
}

// How many words there are up to a slash or the end, and where the first one begins. Of a line that
// is not kept to its end more may follow.
struct Words {
    std::size_t count = 0;
    std::size_t first = std::string_view::npos;
    bool mayBeMore = false;
};

// "1 word is", "at least 3 words are"
std::string CountOf(const Words& words, std::string_view noun, std::string_view one,
                    std::string_view several) {
    return Joined(words.mayBeMore ? "at least " : "", Plural(words.count, noun), " ",
                  words.count == 1 ? one : several);
}

std::string MoreWords(const Words& words) {
    return CountOf(words, "more word", "is not read", "are not read");
}

// Walks along the items of the card and says what it meets.
class Reading {
  public:
    Reading(std::string_view line, std::size_t length, ElementValues& values,
            std::vector<NumberItem>* items = nullptr)
        : whole_(line),
          record_(line.substr(0, kColumns)),
          isWhole_(length == line.size()),
          at_(kNumbersStart),
          values_(values),
          items_(items) {}

    NumberList Read() {
        while (element_ < kElements && Step()) {}
        if (element_ >= kElements) LookBeyondLast();
        LookForNothing();
        LookForDecimalCommas();
        return std::move(list_);
    }

  private:
    // Takes the next item; false where the list ends.
    bool Step() {
        at_ = AfterBlanks(at_);
        if (at_ >= record_.size()) return EndOfRecord();
        if (record_[at_] == '/') return Slash();
        if (record_[at_] == ',') {
            mayBeDecimal_ = false;
            ++at_;
            ++element_;
            return true;
        }
        lastWord_ = at_;
        lastElement_ = element_;
        if (const std::size_t end = at_ + DecimalLength(record_.substr(at_)); IsShortItem(end)) {
            values_.SetDecimal(element_, record_.substr(at_, end - at_), at_ + 1);
            list_.isSet.set(element_++);
            return EndItem(end);
        }
        const std::string_view word = WordAt(at_);
        const bool isCut = at_ + word.size() == kColumns && whole_.size() > kColumns &&
                           !IsItemEnd(whole_[kColumns]);
        const std::size_t first = element_;
        if (!Item(word)) return Unusable(word);
        if (isCut) CutNumber(word, ~Elements() << first & ~(~Elements() << element_));
        return EndItem(at_ + word.size());
    }

    // Whether what begins here and ends at `end` is an item that needs no second look, as most do.
    [[nodiscard]] bool IsShortItem(std::size_t end) const {
        return end > at_ && end <= at_ + ElementValues::kTextWidth &&
               (end == whole_.size() || (end < record_.size() && IsItemEnd(record_[end])));
    }

    // An item ends at `end`; one comma may follow it. True: more items may follow.
    bool EndItem(std::size_t end) {
        if (items_ != nullptr)
            items_->push_back({lastWord_ + 1, end - lastWord_, lastElement_,
                               std::min(element_, kElements) - lastElement_});
        at_ = AfterBlanks(end);
        if (at_ < record_.size() && record_[at_] == ',') {
            if (mayBeDecimal_) NoteComma(end);
            ++at_;
        }
        return true;
    }

    // Behind the item that ends at `end` there is a comma. Commas may stand for decimal points as
    // long as each has a digit on either side, and no word has two.
    void NoteComma(std::size_t end) {
        const bool isBetweenDigits = at_ == end && IsDigit(record_[end - 1]) &&
                                     end + 1 < record_.size() && IsDigit(record_[end + 1]);
        const bool isSecond = !commas_.empty() && commas_.back().at + 1 == lastWord_;
        mayBeDecimal_ = isBetweenDigits && !isSecond;
        if (mayBeDecimal_) commas_.push_back({end, lastWord_, lastElement_, element_});
    }

    // The word in which a comma stands, if it is a number with a decimal comma.
    struct Comma {
        std::size_t at, word, firstElement, lastElement;
    };
    [[nodiscard]] std::string_view DecimalWord(const Comma& comma) const {
        const std::size_t end =
            std::min(record_.find_first_of(kItemEnds, comma.at + 1), record_.size());
        const std::string_view whole = record_.substr(comma.word, comma.at - comma.word);
        const std::size_t digits = whole.find('*') + 1;  // 0 where nothing is repeated
        const std::string_view fraction = record_.substr(comma.at + 1, end - comma.at - 1);
        const bool isNumber =
            whole.find_first_not_of("0123456789", IsDigit(whole[digits]) ? digits : digits + 1) ==
                std::string_view::npos &&
            RealLength(fraction, kCardExponents) == fraction.size();
        return isNumber ? record_.substr(comma.word, end - comma.word) : std::string_view();
    }

    void LookForDecimalCommas() {
        if (!mayBeDecimal_ || commas_.empty()) return;
        const std::string_view read = record_.substr(0, at_);
        if (read.find('.') != std::string_view::npos) return;
        for (const Comma& comma : commas_)
            if (DecimalWord(comma).empty()) return;
        for (const Comma& comma : commas_) {
            const std::string_view word = DecimalWord(comma);
            std::string point(word);
            point[comma.at - comma.word] = '.';
            element_ = comma.firstElement;
            Say(FindingKind::DecimalComma, comma.word, word.size(),
                Next(comma.lastElement - comma.firstElement + 1),
                Quoted(word) + " is read as two values: a comma separates",
                Joined("as one value it is ", point, "; two have a blank behind the comma"));
            list_.findings.back().fix = {{comma.at + 1, 1, "."}};
        }
    }

    // A value, n*value or n*. False where it is none of them.
    bool Item(std::string_view word) {
        const std::size_t star = word.find('*');
        if (star == std::string_view::npos) {
            if (RealLength(word, kCardExponents) != word.size()) return false;
            Set(1, word);
            return true;
        }
        const std::size_t count = RepeatCount(word.substr(0, star));
        const std::string_view value = word.substr(star + 1);
        if (count == 0 || RealLength(value, kCardExponents) != value.size()) return false;
        overshoot_ = element_ + count > kElements ? element_ + count - kElements : 0;
        if (value.empty())
            element_ += count;
        else
            Set(count, value);
        return true;
    }

    // 0 where `digits` are no repeat count; a huge one is cut.
    static std::size_t RepeatCount(std::string_view digits) {
        constexpr std::size_t most = 999'999'999;
        std::size_t count = 0;
        for (const char c : digits) {
            if (c < '0' || c > '9') return 0;
            count = std::min(count * 10 + static_cast<std::size_t>(c - '0'), most);
        }
        return count;
    }

    void Set(std::size_t count, std::string_view word) {
        const double value = CardReal(word);
        list_.setsAllToOne = element_ == 0 && count >= kElements;
        LookAtSize(word, value, Next(count));
        const std::size_t end = std::min(element_ + count, kElements);
        for (; element_ < end; ++element_) {
            values_.Set(element_, value, at_ + 1);
            list_.isSet.set(element_);
        }
    }

    void Say(FindingKind kind, std::size_t at, std::size_t length, Elements elements,
             std::string message, std::string help = "") {
        list_.findings.push_back({kind, at + 1, std::max<std::size_t>(length, 1),
                                  std::move(message), std::move(help), nullptr, elements});
    }

    // As many elements from the next one on, as far as there are any.
    [[nodiscard]] Elements Next(std::size_t count) const {
        return count >= kElements ? ~Elements() << element_ : ~(~Elements() << count) << element_;
    }

    // `digits` are within `record_`.
    void LookAtSize(std::string_view digits, double value, const Elements& elements) {
        if (value != 0.0 && !std::isinf(value)) return;
        const auto at = static_cast<std::size_t>(digits.data() - record_.data());
        if (std::isinf(value))
            Say(FindingKind::TooLarge, at, digits.size(), elements,
                ValueName(digits) + ", is too large for a real and sets an infinity");
        const std::string_view mantissa = digits.substr(0, digits.find_first_of("EeDdQq+-", 1));
        if (value == 0.0 && mantissa.find_first_of("123456789") != std::string_view::npos)
            Say(FindingKind::TooSmall, at, digits.size(), elements,
                ValueName(digits) + ", is too small for a real and sets 0");
    }

    [[nodiscard]] std::string ValueName(std::string_view word) const {
        return Joined("QZ_MOIC value ", element_ + 1, ", ", Quoted(word));
    }

    bool Unusable(std::string_view word) {
        const Words more = WordsFrom(at_ + word.size());
        std::string message = ValueName(word) + ", is not a number";
        if (const std::string why = WhyUnusable(word); !why.empty())
            message += Joined(" (", why, ")");
        message += Joined("; ", Kept(element_ + 1));
        if (more.count > 0) message += Joined(", and ", MoreWords(more));
        Say(FindingKind::NotANumber, at_, word.size(), Next(1), message, AdviceBefore(at_));
        if (const std::size_t end = whole_.find_last_not_of('\r') + 1; end < at_ + word.size())
            list_.findings.back().fix = {{end + 1, whole_.size() - end, ""}};
        else if (list_.isSet.any() && IsRemark(at_))
            list_.findings.back().fix = {{at_ + 1, 0, "/ "}};
        return false;
    }

    // Whether all words from `at` on are words: no numbers, no exponents apart from theirs, no
    // infinities.
    [[nodiscard]] bool IsRemark(std::size_t at) const {
        const std::string_view line = whole_.substr(0, whole_.find_last_not_of('\r') + 1);
        if (!isWhole_) return false;
        while ((at = line.find_first_not_of(" \t,", at)) < line.size() && line[at] != '/') {
            const std::string_view word = line.substr(at, line.find_first_of(kItemEnds, at) - at);
            const bool isExponent = kCardExponents.find(word.front()) != std::string_view::npos &&
                                    word.size() > 1 &&
                                    RealLength(word.substr(1), "") == word.size() - 1;
            if (!IsLetter(word.front()) || isExponent ||
                WhyNoReal(word, 0).starts_with("words for"))
                return false;
            at += word.size();
        }
        return true;
    }

    // A word that begins with a letter is more likely a remark than a number.
    [[nodiscard]] std::string AdviceBefore(std::size_t at) const {
        return IsLetter(whole_[at]) ? "to end the list before a remark, write a slash" : "";
    }

    static std::string WhyUnusable(std::string_view word) {
        const std::size_t star = word.find('*');
        if (star == std::string_view::npos) {
            const std::string why = WhyNoReal(word, RealLength(word, kCardExponents));
            return why.starts_with("it begins with '") ? "" : why;
        }
        if (RepeatCount(word.substr(0, star)) == 0)
            return "a repeat count is a whole number above 0, without a sign";
        if (word.find('*', star + 1) != std::string_view::npos) return "a second repeat count";
        const std::string_view value = word.substr(star + 1);
        return Joined("what is repeated: ", WhyNoReal(value, RealLength(value, kCardExponents)));
    }

    bool EndOfRecord() {
        const Words lost = WordsFrom(std::min(kColumns, whole_.size()));
        const bool goesOn =
            list_.findings.empty() || list_.findings.back().kind != FindingKind::CutNumber;
        if (lost.count > 0 && goesOn)
            Say(FindingKind::Cut, lost.first, 1, {},
                CountOf(lost, "word", "stands beyond column 512 and is not read",
                        "stand beyond column 512 and are not read"),
                "a second card can set further elements: it begins with a repeat count, as in "
                "QZ_MOIC 60* 1.5");
        return false;
    }

    void CutNumber(std::string_view word, const Elements& cut) {
        const Words more = WordsFrom(whole_.find_first_of(kItemEnds, kColumns));
        Say(FindingKind::CutNumber, at_, word.size(), cut,
            Joined("the line is cut at column 512, within a number: ", Quoted(word), " is read",
                   more.count > 0 ? Joined(", and ", MoreWords(more)) : ""));
    }

    // A slash between two digits is more likely a slip than the end of a list.
    bool Slash() {
        if (record_[at_ - 1] != ' ' && at_ + 1 < record_.size() && IsDigit(record_[at_ - 1]) &&
            IsDigit(record_[at_ + 1]))
            Say(FindingKind::Slash, at_, 1, Next(1),
                Joined("the slash ends the list: it does not divide; ", Kept(element_ + 1)));
        return false;
    }

    void LookBeyondLast() {
        Words extra = WordsFrom(at_);
        const bool isRepeated = extra.count == 0;  // by the count of the last item
        extra.count += overshoot_;
        if (extra.count > 0)
            Say(FindingKind::BeyondLast, isRepeated ? lastWord_ : extra.first, 1, {},
                CountOf(extra, "value", "after the 128th is not used",
                        "after the 128th are not used"),
                isRepeated ? "" : AdviceBefore(extra.first));
        if (extra.count > 0 && !isRepeated && overshoot_ == 0 && IsRemark(extra.first))
            list_.findings.back().fix = {{extra.first + 1, 0, "/ "}};
    }

    void LookForNothing() {
        if (list_.isSet.none() && list_.findings.empty())
            Say(FindingKind::SetsNothing, 0, kNumbersStart - 1, {}, "the card sets no value");
    }

    [[nodiscard]] Words WordsFrom(std::size_t at) const {
        Words words;
        while ((at = whole_.find_first_not_of(" \t,", at)) < whole_.size() && whole_[at] != '/') {
            words.first = std::min(words.first, at);
            ++words.count;
            at = whole_.find_first_of(kItemEnds, at);
        }
        words.mayBeMore = !isWhole_ && at >= whole_.size();
        return words;
    }
    [[nodiscard]] std::size_t AfterBlanks(std::size_t at) const {
        while (at < record_.size() && (record_[at] == ' ' || record_[at] == '\t')) ++at;
        return at;
    }
    [[nodiscard]] std::string_view WordAt(std::size_t at) const {
        std::size_t end = at;
        while (end < record_.size() && !IsItemEnd(record_[end])) ++end;
        return record_.substr(at, end - at);
    }

    std::string_view whole_, record_;
    bool isWhole_;  // `whole_` is: else only as much as is kept of a line
    std::size_t at_;
    ElementValues& values_;
    std::vector<NumberItem>* items_;  // where they are listed; may be null
    std::size_t element_ = 0;         // counted from 0
    std::size_t lastWord_ = 0;        // where the last item begins
    std::size_t lastElement_ = 0;     // and the first element that it sets
    std::size_t overshoot_ = 0;       // how many of its values are beyond the 128th
    bool mayBeDecimal_ = true;        // all commas so far may stand for points
    std::vector<Comma> commas_;
    NumberList list_;
};

}  // namespace

double ElementValues::operator[](std::size_t element) const {
    const std::size_t size = sizes_[element];
    return size == 0 ? values_[element] : CardReal({texts_[element].data(), size});
}

std::vector<NumberItem> ItemsOf(std::string_view line, std::size_t length) {
    std::vector<NumberItem> items;
    ElementValues values;
    static_cast<void>(Reading(line, length, values, &items).Read());
    return items;
}

NumberList ReadNumbers(std::string_view line, std::size_t length, ElementValues& values) {
    return Reading(line, length, values).Read();
}

}  // namespace corvale::tool
