#pragma once

#include "platform/foundation/text/NSString.h"
#include <memory>
#include <string>
#include <string_view>

struct URegularExpression;

namespace mac {

// A regular expression of MATCHES, compiled once; any thread. One that is wrong raises NSInvalidArgumentException.
class PredicatePattern {
public:
    PredicatePattern(NSString const& pattern, NSUInteger options);

    // Whether all of the text matches. A pattern that takes longer than any honest one raises NSGenericException.
    bool matches(std::u16string_view text) const;

private:
    struct Close {
        void operator()(URegularExpression* expression) const;
    };

    NSUInteger m_options;
    std::unique_ptr<URegularExpression, Close> m_expression;
};

// The text without what the options leave out of account: letters folded fully for case, marks dropped for diacritics,
// and canonically equivalent text made equal. Without options the text itself.
std::u16string comparableText(std::u16string_view text, NSUInteger options);

// Whether the comparable text contains the comparable part; nothing ever contains the empty string.
bool containsComparable(std::u16string_view text, std::u16string_view part, NSUInteger options);

// Whether the text is what the pattern says, in which * stands for any text, ? for one character and \ before these for
// themselves. Takes no longer than the product of the lengths.
bool matchesWildcards(std::u16string_view text, std::u16string_view pattern);

}
