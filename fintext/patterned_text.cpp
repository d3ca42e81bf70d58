// Amounts through a picture pattern and as money.  A pattern is worked off from its right end, where the last
// decimal of the text belongs; the output grows backwards and is turned round when it is done.
// Tests: tests/fintext/patterned_text_test.cpp.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "base/ascii.h"
#include "core/string.h"
#include "fintext/financial_text.h"

namespace {

// The styles of money with a meaning of their own; any other supplies missing decimals, without a dollar
// sign.
enum MoneyStyle : int { plainStyle = 0, dollarStyle = 1 };

bool isPlace(char c) {
    return c == '#' || c == '.';
}

// A scan of a pattern against a text, both from right to left.
class PatternScan {
  public:
    PatternScan(std::string_view text, std::string_view pattern) : text_(text), pattern_(pattern) {}

    // Appends to the output, right to left, everything but the prefix.
    void writeDigits(std::string& output);
    // The part of the pattern left of the repeating group.
    [[nodiscard]] std::string_view prefix() const;

  private:
    [[nodiscard]] bool groupHasPlace() const;

    std::string_view text_;  // shrinks from its right end
    std::string_view pattern_;
    std::size_t right_ = std::string_view::npos;  // of the * at the right end of the group, once it is met
    std::size_t left_ = std::string_view::npos;
};

void PatternScan::writeDigits(std::string& output) {
    std::size_t next = pattern_.size();  // one right of the character that is worked off next
    while (!text_.empty() && next > 0) {
        const char c = pattern_[--next];
        if (isPlace(c)) {
            output += text_.back();
            text_.remove_suffix(1);
        } else if (c != '*') {
            output += c;
        } else if (right_ == std::string_view::npos) {
            right_ = next;
        } else {
            left_ = next;
            if (!groupHasPlace()) break;  // it would repeat for ever
            next = right_;
        }
    }
    // Where the text ran out within the group, its left end is still ahead.
    if (right_ != std::string_view::npos && left_ == std::string_view::npos && next > 0) {
        left_ = pattern_.rfind('*', next - 1);
    }
}

std::string_view PatternScan::prefix() const {
    return left_ == std::string_view::npos ? std::string_view() : pattern_.substr(0, left_);
}

bool PatternScan::groupHasPlace() const {
    const std::string_view group = pattern_.substr(left_, right_ - left_);
    return std::any_of(group.begin(), group.end(), isPlace);
}

// The whole part with a comma in front of every third character from the right.
void appendGrouped(std::string& target, std::string_view whole) {
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0) target += ',';
        target += whole[i];
    }
}

}  // namespace

void formatStringWithPattern(char* text, const char* pattern, char* target, eNegType negative) {
    if (target == nullptr) return;
    if (text == nullptr) {
        std::strcpy(target, "$0.0");
        return;
    }
    if (pattern == nullptr) return;

    stripTrailDecimal(text, 2);
    std::uint32_t length = 0;
    const char* const start = trim(text, length, ' ');
    std::string_view amount(start, length);
    const bool isNegative = amount.starts_with('-');
    if (isNegative) amount.remove_prefix(1);

    std::string output;  // from right to left
    if (isNegative && negative == eNegParens) output += ')';
    if (isNegative && negative == eNegTrailing) output += '-';
    PatternScan scan(amount, pattern);
    scan.writeDigits(output);
    if (output.ends_with(',')) output.pop_back();
    if (isNegative && negative != eNegTrailing) output += negative == eNegParens ? '(' : '-';
    const std::string_view prefix = scan.prefix();
    output.append(prefix.rbegin(), prefix.rend());
    *std::reverse_copy(output.begin(), output.end(), target) = '\0';
}

void formatToMoneyFormat(const char* text, tarnString& target, int style) {
    if (text == nullptr || *text == '\0') return target.assign("$0.00");
    std::string_view amount(text);
    const bool negative = amount.starts_with('-');
    if (negative) amount.remove_prefix(1);
    const std::string_view whole = amount.substr(0, amount.find('.'));
    const std::string_view decimals = amount.substr(whole.size());  // with the point
    if (whole.empty() || amount.find(',') != std::string_view::npos) return target.assign(text);

    std::string money;
    if (negative) money += '-';
    if (style == dollarStyle) money += '$';
    appendGrouped(money, whole);
    money += decimals;
    if (decimals.size() == 2 && tarn::isDigit(decimals[1])) money += '0';
    if (decimals.empty() && style != plainStyle) money += ".00";
    target.assign(money.c_str());
}
