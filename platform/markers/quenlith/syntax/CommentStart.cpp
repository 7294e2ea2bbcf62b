#include "quenlith/syntax/CommentStart.hpp"

#include "quenlith/syntax/MarkerUnits.hpp"

namespace quenlith::syntax {

namespace {

// Reads backwards from the end of a leader or opener.
class BackwardReader {
 public:
  BackwardReader(std::u16string_view text, std::size_t floor, std::size_t end)
      : text(text), floor(floor), end(end) {}

  void skipBlanks() {
    while (end > floor && isBlank(text[end - 1])) {
      --end;
    }
  }

  // The unit before the position; U+0000, which is not in a leader, opener or name, at the floor.
  char16_t last() const { return end > floor ? text[end - 1] : u'\0'; }

  // Moves before the whole run of `unit`, which is the last unit, and returns the run's length.
  std::size_t takeRun(char16_t unit) {
    const std::size_t before = end;
    do {
      --end;
    } while (end > floor && text[end - 1] == unit);
    return before - end;
  }

  bool takeWord(std::u16string_view word) {
    const bool found =
        end - floor >= word.size() && text.substr(end - word.size(), word.size()) == word;
    end -= found ? word.size() : 0;
    return found;
  }

  CommentStart here(CommentForm form) const { return {end, form}; }

 private:
  std::u16string_view text;
  std::size_t floor;
  std::size_t end;
};

CommentForm whole(bool isWhole, CommentForm form) {
  return isWhole ? form : CommentForm::kTooShort;
}

CommentStart takeSlashes(BackwardReader& reader) {
  const std::size_t length = reader.takeRun(u'/');
  return reader.here(whole(length >= 2, CommentForm::kLine));
}

// A single dash after "{" is an opener; more are a leader.
CommentStart takeDashes(BackwardReader& reader) {
  const std::size_t length = reader.takeRun(u'-');
  if (reader.takeWord(u"<!")) return reader.here(whole(length >= 2, CommentForm::kAngleBracket));
  if (length == 1 && reader.takeWord(u"{")) return reader.here(CommentForm::kBrace);
  return reader.here(whole(length >= 2, CommentForm::kLine));
}

CommentStart takeStars(BackwardReader& reader) {
  reader.takeRun(u'*');
  if (reader.takeWord(u"/")) return reader.here(CommentForm::kSlashStar);
  if (reader.takeWord(u"(")) return reader.here(CommentForm::kParenthesisStar);
  return reader.here(CommentForm::kTooShort);
}

// Returns a start without a leader if the word is the end of a longer name.
CommentStart takeRemark(BackwardReader& reader, bool isSpaced, std::size_t opening) {
  const bool isWord = reader.takeWord(u"REM") || reader.takeWord(u"rem");
  if (!isWord || isNameUnit(reader.last())) return {opening, CommentForm::kNone};
  return reader.here(isSpaced ? CommentForm::kLine : CommentForm::kUnspacedRemark);
}

std::size_t skipRun(std::u16string_view text, std::size_t at, char16_t unit) {
  while (at < text.size() && text[at] == unit) {
    ++at;
  }
  return at;
}

}  // namespace

CommentStart findCommentStart(std::u16string_view text, std::size_t floor,
                              std::size_t opening) noexcept {
  BackwardReader reader(text, floor, opening);
  reader.skipBlanks();
  switch (const char16_t unit = reader.last()) {
    case u'%':
    case u'#':
    case u';':
    case u'!':
      reader.takeRun(unit);
      return reader.here(CommentForm::kLine);
    case u'/':
      return takeSlashes(reader);
    case u'-':
      return takeDashes(reader);
    case u'*':
      return takeStars(reader);
    case u'M':
    case u'm':
      return takeRemark(reader, isBlank(text[opening - 1]), opening);
    default:
      return {opening, CommentForm::kNone};
  }
}

std::optional<std::size_t> findCloserEnd(std::u16string_view text, std::size_t at,
                                         CommentForm form) noexcept {
  if (!isBlock(form)) return at;
  const bool isDashed = form == CommentForm::kAngleBracket || form == CommentForm::kBrace;
  const std::size_t end = skipRun(text, at, isDashed ? u'-' : u'*');
  const char16_t last = end < text.size() ? text[end] : u'\0';
  const std::size_t length = end - at;
  const bool isCloser = form == CommentForm::kSlashStar         ? length >= 1 && last == u'/'
                        : form == CommentForm::kParenthesisStar ? length >= 1 && last == u')'
                        : form == CommentForm::kAngleBracket    ? length >= 2 && last == u'>'
                                                                : length == 1 && last == u'}';
  return isCloser ? std::optional(end + 1) : std::nullopt;
}

}  // namespace quenlith::syntax
