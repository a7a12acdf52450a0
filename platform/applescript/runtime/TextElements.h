#pragma once

#include "platform/applescript/runtime/TextContext.h"
#include <string_view>

namespace mac::applescript {

// The characters, words, paragraphs and text items of a text, as ranges of code units.

bool isTextElementClass(Code elementClass);
// In order. `elementClass` is one of character, word, paragraph, text item; item and text count as character.
std::vector<SourceRange> textElements(std::u16string_view units, Code elementClass, TextContext const& context);
// Whether every code unit is a character of its own.
bool hasOneUnitCharacters(std::u16string_view units);

} // namespace mac::applescript
