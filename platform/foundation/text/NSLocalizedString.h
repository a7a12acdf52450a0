#pragma once

#include "platform/foundation/text/NSString.h"

namespace mac {

// The text for a key in the language of the loaded catalogue. The key is the English text itself: it is the answer if
// no catalogue is loaded or the catalogue lacks it. The comment is for translators and not looked at; it may be nil. An
// empty text for a nil key. Texts with format directives keep them: the answer is the format. Any thread.
//
// Linux: one catalogue of Qt's form instead of tables in the bundle; keys are looked up in the context "Framekeeper".
NSString NSLocalizedString(NSString const& key, NSString const& comment);

// The text for a number of things, in the form that the language has for that number ("1 copy", "2 copies"). Every %n
// in it becomes the number in decimal digits. Keys are the English texts for one and for any other number; the
// catalogue knows both forms by the second. An empty text for a nil key. Any thread.
NSString localizedCount(NSUInteger count, NSString const& one, NSString const& many, NSString const& comment);

// Marks the literal as a key that is looked up later, when it comes out of a table; answers it as it is.
constexpr char const* localizable(char const* key) { return key; }

} // namespace mac
