#include "foundation/json/Number.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>

#include "foundation/json/digits.hpp"

namespace foundation::json {

namespace {

// The exact decimal form of the midpoint of two neighboring doubles has at most 768 significant
// digits. All that matters about the digits after the first 800 is whether one of them is not 0,
// and a single further digit expresses that.
constexpr std::size_t kMaxDigits = 800;

// A decimal number normalized to 0.DIGITS x 10^point, without leading zeros in DIGITS.
class Decimal {
 public:
  explicit Decimal(std::u16string_view literal) : rest(literal) {
    if (rest.front() == u'-') {
      *end++ = '-';
      negative = true;
      rest.remove_prefix(1);
    }
    digitsStart = end;
    readDigits(1);
    if (!rest.empty() && rest.front() == u'.') {
      rest.remove_prefix(1);
      readDigits(0);
    }
    readExponent();
  }

  std::optional<double> nearest() {
    const double zero = negative ? -0.0 : 0.0;
    if (end == digitsStart) {
      return zero;
    }
    writeExponent();
    double result = zero;
    if (std::from_chars(buffer.data(), end, result).ec != std::errc::result_out_of_range) {
      return result;
    }
    // std::from_chars reports underflow and overflow with the same code.
    return point > 0 ? std::nullopt : std::optional<double>(zero);
  }

 private:
  // Each digit of the integer part moves the point by `pointStep`, which is 1 there and 0 in the
  // fraction. Leading zeros are dropped: those of the fraction move the point back by one each.
  void readDigits(int pointStep) {
    while (!rest.empty() && isDigit(rest.front())) {
      const char digit = static_cast<char>(rest.front());
      rest.remove_prefix(1);
      if (digit == '0' && end == digitsStart) {
        point -= 1 - pointStep;
        continue;
      }
      point += pointStep;
      appendDigit(digit);
    }
  }

  void appendDigit(char digit) {
    if (end < digitsStart + kMaxDigits) {
      *end++ = digit;
    } else if (digit != '0') {
      hasMoreDigits = true;
    }
  }

  void readExponent() {
    if (rest.empty()) {
      return;
    }
    rest.remove_prefix(1);
    const bool minus = rest.front() == u'-';
    if (!isDigit(rest.front())) {
      rest.remove_prefix(1);
    }
    // More than the number of digits that fit in memory, and far from overflow.
    constexpr std::int64_t kLimit = 1'000'000'000'000'000;
    std::int64_t exponent = 0;
    for (const char16_t unit : rest) {
      exponent = std::min(exponent * 10 + (unit - u'0'), kLimit);
    }
    point += minus ? -exponent : exponent;
  }

  void writeExponent() {
    if (hasMoreDigits) {
      *end++ = '1';
    }
    // Out of a double's range either way, whatever the digits.
    constexpr std::int64_t kMaxPoint = 100'000;
    const auto count = static_cast<std::int64_t>(end - digitsStart);
    *end++ = 'e';
    end = std::to_chars(end, buffer.data() + buffer.size(),
                        std::clamp(point, -kMaxPoint, kMaxPoint) - count)
              .ptr;
  }

  std::u16string_view rest;
  std::array<char, kMaxDigits + 32> buffer;
  char* end = buffer.data();
  char* digitsStart = end;
  std::int64_t point = 0;
  bool negative = false;
  bool hasMoreDigits = false;
};

// Returns nothing when the number does not fit in 64 bits.
std::optional<std::uint64_t> readDigits(std::u16string_view digits) {
  std::uint64_t value = 0;
  for (const char16_t unit : digits) {
    if (__builtin_mul_overflow(value, 10U, &value) ||
        __builtin_add_overflow(value, static_cast<unsigned>(unit - u'0'), &value)) {
      return std::nullopt;
    }
  }
  return value;
}

std::optional<Number> readInteger(std::u16string_view literal) {
  constexpr std::uint64_t kSignedLimit = std::uint64_t{1} << 63U;
  const bool negative = literal.front() == u'-';
  const auto magnitude = readDigits(literal.substr(negative ? 1 : 0));
  if (!magnitude || (negative && *magnitude > kSignedLimit)) {
    return std::nullopt;
  }
  if (negative) {
    return Number(static_cast<std::int64_t>(0 - *magnitude));
  }
  if (*magnitude < kSignedLimit) {
    return Number(static_cast<std::int64_t>(*magnitude));
  }
  return Number(*magnitude);
}

}  // namespace

std::optional<Number> parseNumber(std::u16string_view literal) {
  if (literal.find_first_of(u".eE") == std::u16string_view::npos) {
    if (const auto integer = readInteger(literal)) {
      return integer;
    }
  }
  if (const auto nearest = Decimal(literal).nearest()) {
    return Number(*nearest);
  }
  return std::nullopt;
}

}  // namespace foundation::json
