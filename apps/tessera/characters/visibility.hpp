#pragma once

#include <string>

namespace tessera::characters {

/// Returns whether nobody can see `character`, or it changes how the text around it is shown:
/// controls, format characters such as those that change the direction of text, separators of
/// lines and paragraphs, unpaired surrogates, characters that Unicode lets a program ignore, and
/// those that have no shape by themselves (private use, not assigned, the braille pattern without
/// dots). Spaces can be seen.
bool isInvisible(char32_t character) noexcept;

/// Returns whether `character` is a space that looks like a blank, but is not one: any other than
/// the blank itself and the wide space of East Asian text.
bool looksLikeBlank(char32_t character) noexcept;

/// Returns whether `character` is invisible, but chooses the shape of the character `last` before
/// it: a joiner or an emoji selector, and `last` is neither ASCII nor invisible, or with the
/// selector a keycap. Of two that follow each other the second is not, so that they cannot hide a
/// text; a joiner after an emoji selector is, as in a rainbow flag.
bool isPartOfShape(char32_t character, char32_t last) noexcept;

/// Returns the name of a character by its number: "U+200B".
std::string nameOf(char32_t character);

}  // namespace tessera::characters
