#include <algorithm>
#include <stdexcept>

#include "filter/LdapExpression.hpp"

namespace cppmicroservices::detail {

namespace {

using Operator = LdapExpression::Operator;

// How much of a filter a message quotes.
constexpr std::size_t kShownBytes = 200;

class LdapParser {
 public:
  explicit LdapParser(const std::string& filter) : text(filter) {}

  LdapExpression parse() {
    LdapExpression expression = parseFilter(1);
    skipBlanks();
    if (!atEnd()) fail("text after the last closing parenthesis");
    return expression;
  }

 private:
  LdapExpression parseFilter(int depth) {
    if (depth > LdapExpression::kMaximumDepth) fail("filters nested too deeply");
    skipBlanks();
    expect('(');
    skipBlanks();
    LdapExpression expression = isJunction(peek()) ? parseJunction(depth) : parseCondition();
    expect(')');
    return expression;
  }

  LdapExpression parseJunction(int depth) {
    LdapExpression expression;
    const char sign = text[position++];
    expression.operation = sign == '&'   ? Operator::kAnd
                           : sign == '|' ? Operator::kOr
                                         : Operator::kNot;
    do {
      expression.operands.push_back(parseFilter(depth + 1));
      skipBlanks();
    } while (expression.operation != Operator::kNot && peek() == '(');
    return expression;
  }

  LdapExpression parseCondition() {
    LdapExpression expression;
    expression.attribute = parseAttribute();
    expression.operation = parseOperator();
    expression.pieces = parseValue();
    return expression;
  }

  std::string parseAttribute() {
    const std::size_t begin = position;
    position = std::min(text.find_first_of("=<>~()", position), text.size());
    std::size_t end = position;
    while (end > begin && isBlank(text[end - 1])) --end;
    if (end == begin) fail("no attribute name");
    return text.substr(begin, end - begin);
  }

  Operator parseOperator() {
    const char sign = peek();
    if (sign == '=') {
      ++position;
      return Operator::kEqual;
    }
    if ((sign != '~' && sign != '<' && sign != '>') || text[position + 1] != '=') {
      fail("no operator: =, ~=, >= or <=");
    }
    position += 2;
    return sign == '~'   ? Operator::kApproximate
           : sign == '<' ? Operator::kAtMost
                         : Operator::kAtLeast;
  }

  // Ends before the first closing parenthesis that the value has not opened itself.
  std::vector<std::string> parseValue() {
    std::vector<std::string> pieces(1);
    std::size_t open = 0;
    for (; !atEnd() && (open > 0 || text[position] != ')'); ++position) {
      if (text[position] == '(') ++open;
      if (text[position] == ')') --open;
      if (text[position] == '*') {
        pieces.emplace_back();
        continue;
      }
      if (text[position] == '\\' && ++position == text.size()) fail("nothing after the backslash");
      pieces.back() += text[position];
    }
    return pieces;
  }

  static bool isJunction(char character) {
    return character == '&' || character == '|' || character == '!';
  }
  static bool isBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
  }

  bool atEnd() const { return position == text.size(); }
  char peek() const { return atEnd() ? '\0' : text[position]; }
  void skipBlanks() {
    while (isBlank(peek())) ++position;
  }
  void expect(char character) {
    if (peek() != character) fail(std::string("no ") + character);
    ++position;
  }
  [[noreturn]] void fail(const std::string& problem) const {
    const std::string shown =
        text.size() > kShownBytes ? text.substr(0, kShownBytes) + "..." : text;
    throw std::invalid_argument("the filter \"" + shown + "\" cannot be parsed: " + problem +
                                " at character " + std::to_string(position + 1));
  }

  const std::string& text;
  std::size_t position = 0;
};

}  // namespace

LdapExpression parseLdapExpression(const std::string& text) {
  return LdapParser(text).parse();
}

}  // namespace cppmicroservices::detail
