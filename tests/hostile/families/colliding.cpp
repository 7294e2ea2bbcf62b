#include "hostile/families.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace hostile {
namespace {

using fl::i18n::ustring;

// The hash of strings in libstdc++ is MurmurHash64A with a fixed seed. Each of its steps can be
// undone: to any first eight bytes there are others after which the hash is a wanted one.
constexpr std::uint64_t kMultiplier = 0xC6A4A7935BD1E995;
constexpr std::uint64_t kSeed = 0xC70F6907;

constexpr std::uint64_t inverseOf(std::uint64_t odd) {
  std::uint64_t inverse = odd;
  for (int round = 0; round < 6; ++round) inverse *= 2 - odd * inverse;
  return inverse;
}

constexpr std::uint64_t kInverse = inverseOf(kMultiplier);

std::uint64_t mix(std::uint64_t block) {
  block *= kMultiplier;
  block ^= block >> 47U;
  return block * kMultiplier;
}

std::uint64_t unmix(std::uint64_t mixed) {
  mixed *= kInverse;
  mixed ^= mixed >> 47U;
  return mixed * kInverse;
}

// A character of an unquoted id that is its own UTF-16 code unit.
bool isPlain(char16_t unit) {
  return unit >= 0x100 && (unit < 0xD800 || unit > 0xDFFF) && unit < 0xFDD0;
}

// Returns eight code units; all that this returns have the same standard hash. Counts `seed` up.
ustring collidingId(std::uint64_t& seed) {
  constexpr std::size_t kBytes = 16;
  const std::uint64_t start = kSeed ^ (kBytes * kMultiplier);
  while (true) {
    // Eight bytes of CJK characters, whatever the number is.
    const std::uint64_t number = seed++;
    const std::uint64_t first = 0x4E004E004E004E00 + (number & 0xFFF) +
                                ((number >> 12U & 0xFFFU) << 16U) +
                                ((number >> 24U & 0xFFFU) << 32U);
    const std::uint64_t state = (start ^ mix(first)) * kMultiplier;
    const std::uint64_t second = unmix(state);
    ustring id(8, u'\0');
    std::memcpy(id.data(), &first, sizeof first);
    std::memcpy(id.data() + 4, &second, sizeof second);
    if (std::ranges::all_of(id, isPlain)) return id;
  }
}

// `part` again and again; each "$" is the id of the repetition.
Family colliding(std::string name, std::u16string_view head, std::u16string_view part) {
  return {std::move(name), [head = ustring(head), part = ustring(part)](std::size_t size) {
            ustring text(head);
            std::uint64_t seed = 0;
            while (text.size() < size) {
              const ustring id = collidingId(seed);
              for (const char16_t unit : part) {
                if (unit == u'$') {
                  text += id;
                } else {
                  text += unit;
                }
              }
            }
            return text;
          }};
}

}  // namespace

// Ids whose hashes are equal in libstdc++, whose hash is not seeded.
std::vector<Family> collidingFamilies() {
  return {
      colliding("colliding ids of unpaired task markers", u"", u"# <@task#$>\n"),
      colliding("colliding ids of tasks", u"", u"# <@task#$>\nx\n# <@task#$>\n"),
      colliding("colliding ids in a task", u"# <@task#a>\n# <@task#a>\n# <@task#b>\n",
                u"# <@task#$>\n# <@task#$>\n"),
      colliding("colliding ids on a line", u"", u"# <@task#$> "),
      colliding("colliding ids of anchors", u"", u"# <@text:anchor#$>\n"),
      colliding("colliding ids of misspelt elements", u"", u"# <@tsak#$>\n"),
      colliding("colliding ids in the appendix", u"# <@appendix>\n",
                u"# <@task#$ {\"text\":\"x\"}>\n"),
      colliding("colliding ids of failures on a line", u"", u"# <@output#$ [3,2]>"),
      colliding("colliding types", u"", u"# <@output:$ [3,2]>"),
  };
}

}  // namespace hostile
