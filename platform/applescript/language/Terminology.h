#pragma once

#include "platform/applescript/language/ScriptSymbol.h"
#include "platform/applescript/language/ScriptToken.h"
#include <span>
#include <string_view>
#include <unordered_map>

namespace mac::applescript {

// The class and the identifier of an event, as one number.
using EventCode = std::uint64_t;

consteval EventCode eventOf(char const (&text)[9]) {
    EventCode code = 0;
    for (std::size_t index = 0; index < 8; ++index)
        code = code << 8U | static_cast<unsigned char>(text[index]);
    return code;
}

// A word with a meaning in one place only, as `up` after `rounding`.
struct Enumerator {
    std::u16string_view name;
    Code code{0};
};

struct CommandParameter {
    std::u16string_view label;
    Code code{0};
    // May be written `with label` and `without label`.
    bool isBoolean{false};
    std::span<Enumerator const> enumerators{};
};

enum class DirectParameter : std::uint8_t { None, Optional, Required };

struct CommandTerm {
    std::u16string_view name;
    EventCode code{0};
    DirectParameter direct{DirectParameter::None};
    std::span<CommandParameter const> parameters{};
    // What the direct parameter may be by name.
    std::span<Enumerator const> enumerators{};
};

// What one name means; a name may mean several things, and the place decides.
struct Term {
    std::u16string_view name;
    Code classCode{0};
    bool isPlural{false};
    Code propertyCode{0};
    Code constantCode{0};
    // A class code that stands as a value by itself: a month, missing value.
    bool isValue{false};
    CommandTerm const* command{nullptr};
};

struct TermMatch {
    Term const* term{nullptr};
    std::size_t tokenCount{0};
    // From the table of an application that is told something.
    bool isOfApplication{false};
};

// A table of terms: names of one or several words, with their codes. The language's own and the standard additions' are
// in `base`; an application brings its own table. Never changed once filled; main thread.
class Terminology {
public:
    static Terminology const& base();

    void addClass(std::u16string_view name, std::u16string_view plural, Code code);
    void addProperty(std::u16string_view name, Code code);
    void addConstant(std::u16string_view name, Code code);
    // A month, a weekday, missing value.
    void addValue(std::u16string_view name, Code code);
    void addCommand(CommandTerm const& command);

    // The term of the most words that starts at the token.
    TermMatch match(std::span<Token const> tokens) const;
    // Null where no term has this name.
    Term const* termNamed(std::u16string_view name) const;
    // Empty where no term has this code.
    std::u16string_view nameOf(Code code) const;
    std::u16string_view pluralOf(Code classCode) const;
    CommandTerm const* commandOf(EventCode code) const;

private:
    struct Entry {
        std::vector<std::string> words;
        Term term;
    };
    Term& entry(std::u16string_view name);

    // By first word, longest first.
    std::unordered_map<std::string, std::vector<Entry>> m_entries;
    std::unordered_map<Code, std::u16string_view> m_names;
    std::unordered_map<Code, std::u16string_view> m_plurals;
    std::vector<CommandTerm const*> m_commands;
};

// How many of the tokens spell the words of the name; 0 when they do not.
std::size_t tokensSpelling(std::span<Token const> tokens, std::u16string_view name);

// A command that no table names, by its event alone: a direct parameter, and others by their codes. Lives as long as
// the process.
CommandTerm const& rawCommand(EventCode event);
// The command that asks for what the name says: `get eof` for "eof". Null if no command asks for it.
CommandTerm const* getterNamed(std::u16string_view name);

// The tables of the applications that are part of this engine.
std::span<Terminology const* const> applicationTerminologies();

// The name of the term, also of an application's, or «class xxxx».
std::u16string nameOfCode(Code code);
// Empty where no term says so.
std::u16string_view pluralOfCode(Code classCode);
// Four characters of a code; what is no letter shows as it is.
std::u16string charactersOfCode(Code code);
// Whether a name must stand between bars: it is reserved, is a term, or is no plain identifier.
bool needsBars(std::u16string_view name);
bool isReservedWord(std::string_view lowercase);

// Fill the base table.
void addLanguageTerms(Terminology& terms);
void addStandardAdditions(Terminology& terms);

} // namespace mac::applescript
