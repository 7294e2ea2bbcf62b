#include "TextTwin.hpp"

#include <array>
#include <cstdint>

namespace fl::i18n::twin {

namespace {

void appendUnits(std::u16string& text, char32_t code) {
  if (code >= 0x10000) {
    text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
    text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
  } else {
    text += static_cast<char16_t>(code);
  }
}

// The "UTF-8 decoder" of the standard with its four variables.
class Decoder {
 public:
  Decoded run(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
      at += take(static_cast<unsigned char>(bytes[at]), at) ? 1 : 0;
    }
    if (needed != 0) {
      error();
    }
    return result;
  }

 private:
  // Returns false when the byte is to be looked at again.
  bool take(unsigned byte, std::size_t at) {
    if (needed == 0) {
      start = at;
      lead(byte);
      return true;
    }
    if (byte < lower || byte > upper) {
      error();
      return false;
    }
    lower = 0x80;
    upper = 0xBF;
    code = (code << 6) | (byte & 0x3F);
    if (++seen == needed) {
      appendUnits(result.text, code);
      reset();
    }
    return true;
  }

  void lead(unsigned byte) {
    if (byte <= 0x7F) {
      result.text += static_cast<char16_t>(byte);
    } else if (byte >= 0xC2 && byte <= 0xDF) {
      expect(1, byte & 0x1F);
    } else if (byte >= 0xE0 && byte <= 0xEF) {
      lower = byte == 0xE0 ? 0xA0 : 0x80;
      upper = byte == 0xED ? 0x9F : 0xBF;
      expect(2, byte & 0xF);
    } else if (byte >= 0xF0 && byte <= 0xF4) {
      lower = byte == 0xF0 ? 0x90 : 0x80;
      upper = byte == 0xF4 ? 0x8F : 0xBF;
      expect(3, byte & 0x7);
    } else {
      error();
    }
  }

  void expect(int count, unsigned bits) {
    needed = count;
    code = bits;
  }

  void error() {
    result.text += u'\uFFFD';
    if (!result.firstInvalid) {
      result.firstInvalid = start;
    }
    reset();
  }

  void reset() {
    code = 0;
    needed = 0;
    seen = 0;
    lower = 0x80;
    upper = 0xBF;
  }

  Decoded result;
  std::size_t start = 0;
  char32_t code = 0;
  int needed = 0;
  int seen = 0;
  unsigned lower = 0x80;
  unsigned upper = 0xBF;
};

void appendBits(std::string& bytes, unsigned mark, char32_t code, int shift) {
  bytes += static_cast<char>(static_cast<unsigned char>(mark | (code >> shift)));
  for (shift -= 6; shift >= 0; shift -= 6) {
    bytes += static_cast<char>(static_cast<unsigned char>(0x80 | ((code >> shift) & 0x3F)));
  }
}

void appendCode(std::string& bytes, char32_t code) {
  if (code < 0x80) {
    bytes += static_cast<char>(code);
  } else if (code < 0x800) {
    appendBits(bytes, 0xC0, code, 6);
  } else if (code < 0x10000) {
    appendBits(bytes, 0xE0, code, 12);
  } else {
    appendBits(bytes, 0xF0, code, 18);
  }
}

std::size_t below(std::mt19937_64& random, std::size_t limit) {
  return random() % limit;
}

// One character of each length in UTF-8, and the borders between them.
constexpr std::array<char32_t, 16> kCodes{0x0,     0x41,    0x7F,    0x80,    0xE9,   0x7FF,
                                          0x800,   0x20AC,  0xD7FF,  0xE000,  0xFFFD, 0xFFFF,
                                          0x10000, 0x1F600, 0xFFFFF, 0x10FFFF};

constexpr std::array<unsigned char, 20> kBytes{0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0,
                                               0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xED,
                                               0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};

}  // namespace

Decoded decodeUtf8(std::string_view bytes) {
  return Decoder().run(bytes);
}

std::string encodeUtf8(std::u16string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char32_t unit = text[at];
    const char32_t next = at + 1 < text.size() ? text[at + 1] : 0;
    const bool high = unit >= 0xD800 && unit <= 0xDBFF;
    const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
    if (high && next >= 0xDC00 && next <= 0xDFFF) {
      appendCode(bytes, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      ++at;
    } else {
      appendCode(bytes, high || low ? 0xFFFD : unit);
    }
  }
  return bytes;
}

std::string randomBytes(std::mt19937_64& random) {
  std::string bytes;
  for (std::size_t part = below(random, 12); part > 0; --part) {
    switch (below(random, 4)) {
      case 0:
        bytes.append(below(random, 40), 'a');
        break;
      case 1:
        bytes += static_cast<char>(kBytes[below(random, kBytes.size())]);
        break;
      case 2:
        appendCode(bytes, kCodes[below(random, kCodes.size())]);
        break;
      default:
        appendCode(bytes, kCodes[below(random, kCodes.size())]);
        bytes.resize(bytes.size() - below(random, bytes.size() + 1) % 4 % (bytes.size() + 1));
    }
  }
  return bytes;
}

std::u16string randomUnits(std::mt19937_64& random) {
  std::u16string text;
  for (std::size_t part = below(random, 12); part > 0; --part) {
    switch (below(random, 3)) {
      case 0:
        text.append(below(random, 40), u'a');
        break;
      case 1:
        text += static_cast<char16_t>(0xD800 + below(random, 0x800));
        break;
      default:
        appendUnits(text, kCodes[below(random, kCodes.size())]);
    }
  }
  return text;
}

}  // namespace fl::i18n::twin
