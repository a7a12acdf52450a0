#pragma once

#include "platform/foundation/numbers/NSNumber.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// One word of the predicate language.
struct PredicateToken {
    enum class Kind {
        End,
        // A single name, which may be a reserved word.
        Word,
        // A key path that is more than a name: with dots, or marked with # or @.
        KeyPath,
        String,
        Number,
        // %@ and the like: `conversion` is its letter, `index` the argument of %2$@, `text` key path that follows it.
        Argument,
        // An operator or bracket, in its first spelling: "==" for "=".
        Symbol,
        // The letters of [cd].
        Options,
    };

    Kind kind{Kind::End};
    // In code units from the start of the text.
    std::size_t position{0};
    std::u16string text{};
    NSNumber number{};
    char16_t conversion{0};
    std::optional<std::size_t> index{};
};

// Cuts a predicate's text into words. What is no word raises NSInvalidArgumentException.
class PredicateLexer {
public:
    explicit PredicateLexer(std::u16string_view text) : m_text(text) {}

    PredicateToken next();
    // Raises NSInvalidArgumentException with the text and the place.
    [[noreturn]] void fail(std::size_t position, std::string const& what) const;

private:
    char16_t unitAt(std::size_t offset) const;
    void skipWhiteSpace();
    bool startsIdentifier(std::size_t offset) const;
    std::u16string identifier();
    std::u16string keyPathComponent();
    void appendComponents(std::u16string& path);
    PredicateToken name();
    PredicateToken string();
    char16_t escape();
    char16_t characterCode(int base, std::size_t most, std::size_t least);
    int numberBase() const;
    PredicateToken number();
    PredicateToken argument();
    PredicateToken options();
    PredicateToken symbol();

    std::u16string_view m_text;
    std::size_t m_place{0};
};

// Whether the word has a meaning of its own where a key may stand, in any case of letters.
bool isReservedInPredicates(std::u16string_view word);
// Whether a key of this name is written with a mark. More words than need it here: others read these predicates too.
bool isWrittenWithMark(std::u16string_view word);
bool isIdentifierInPredicates(std::u16string_view text);
bool equalsIgnoringCase(std::u16string_view text, std::string_view lowercaseAscii);

}
