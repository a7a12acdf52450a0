#pragma once

#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/TextContext.h"
#include <string_view>

namespace mac::applescript {

// The characters, words, paragraphs and text items of a text, as ranges of code units.

bool isTextElementClass(Code elementClass);
// What was found last in this text is kept with it until the text changes, so that going through the words of a text
// one by one looks at it once. The ranges are there until the text changes or is asked for elements of another class.
std::vector<SourceRange> const& textElements(TextObject const& text, Code elementClass, TextContext const& context);
// In order. `elementClass` is one of character, word, paragraph, text item; item and text count as character.
std::vector<SourceRange> textElements(std::u16string_view units, Code elementClass, TextContext const& context);
// Whether every code unit is a character of its own.
bool hasOneUnitCharacters(std::u16string_view units);

} // namespace mac::applescript
