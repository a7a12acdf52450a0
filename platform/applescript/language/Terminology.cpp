#include "platform/applescript/language/Terminology.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

namespace {

constexpr auto ReservedWords = std::to_array<std::string_view>({
    "about",   "above",   "after",       "against",   "and",      "apart",     "around",      "as",     "aside",
    "at",      "back",    "before",      "beginning", "behind",   "below",     "beneath",     "beside", "between",
    "but",     "by",      "considering", "contain",   "contains", "contents",  "continue",    "copy",   "div",
    "does",    "doesn't", "eighth",      "else",      "end",      "equal",     "equals",      "error",  "every",
    "exit",    "false",   "fifth",       "first",     "for",      "fourth",    "from",        "front",  "get",
    "given",   "global",  "if",          "ignoring",  "in",       "instead",   "into",        "is",     "isn't",
    "it",      "its",     "last",        "local",     "me",       "middle",    "mod",         "my",     "ninth",
    "not",     "of",      "on",          "onto",      "or",       "out",       "over",        "prop",   "property",
    "put",     "ref",     "reference",   "repeat",    "return",   "returning", "script",      "second", "set",
    "seventh", "since",   "sixth",       "some",      "tell",     "tenth",     "that",        "the",    "then",
    "third",   "through", "thru",        "timeout",   "times",    "to",        "transaction", "true",   "try",
    "until",   "where",   "while",       "whose",     "with",     "without",
});

std::vector<std::string> wordsOf(std::u16string_view name) {
    std::vector<std::string> words(1);
    for (char16_t const unit : name) {
        if (unit == u' ')
            words.emplace_back();
        else
            words.back() += static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit);
    }
    return words;
}

bool spell(std::span<Token const> tokens, std::vector<std::string> const& words) {
    if (tokens.size() < words.size()) return false;
    for (std::size_t index = 0; index < words.size(); ++index)
        if (!tokens[index].isWord(words[index])) return false;
    return true;
}

} // namespace

Terminology const& Terminology::base() {
    static Terminology const terms = [] {
        Terminology made;
        addLanguageTerms(made);
        addStandardAdditions(made);
        return made;
    }();
    return terms;
}

Term& Terminology::entry(std::u16string_view name) {
    std::vector<std::string> words = wordsOf(name);
    std::vector<Entry>& entries = m_entries[words.front()];
    auto const found = std::ranges::find(entries, words, &Entry::words);
    if (found != entries.end()) return found->term;
    auto const place =
        std::ranges::find_if(entries, [&](Entry const& other) { return other.words.size() < words.size(); });
    return entries.insert(place, Entry{.words = std::move(words), .term = {.name = name}})->term;
}

void Terminology::addClass(std::u16string_view name, std::u16string_view plural, Code code) {
    entry(name).classCode = code;
    m_names.emplace(code, name);
    if (plural.empty()) return;
    Term& term = entry(plural);
    term.classCode = code;
    term.isPlural = true;
    m_plurals.emplace(code, plural);
}

void Terminology::addProperty(std::u16string_view name, Code code) {
    entry(name).propertyCode = code;
    m_names.emplace(code, name);
}

void Terminology::addConstant(std::u16string_view name, Code code) {
    entry(name).constantCode = code;
    m_names.emplace(code, name);
}

void Terminology::addValue(std::u16string_view name, Code code) {
    Term& term = entry(name);
    term.classCode = code;
    term.isValue = true;
    m_names.emplace(code, name);
}

void Terminology::addCommand(CommandTerm const& command) {
    entry(command.name).command = &command;
    m_commands.push_back(&command);
}

TermMatch Terminology::match(std::span<Token const> tokens) const {
    if (tokens.empty() || tokens.front().kind != TokenKind::Word) return {};
    auto const found = m_entries.find(tokens.front().word);
    if (found == m_entries.end()) return {};
    for (Entry const& candidate : found->second)
        if (spell(tokens, candidate.words)) return {.term = &candidate.term, .tokenCount = candidate.words.size()};
    return {};
}

Term const* Terminology::termNamed(std::u16string_view name) const {
    std::vector<std::string> const words = wordsOf(name);
    auto const found = m_entries.find(words.front());
    if (found == m_entries.end()) return nullptr;
    auto const term = std::ranges::find(found->second, words, &Entry::words);
    return term == found->second.end() ? nullptr : &term->term;
}

std::u16string_view Terminology::nameOf(Code code) const {
    auto const found = m_names.find(code);
    return found == m_names.end() ? std::u16string_view() : found->second;
}

std::u16string_view Terminology::pluralOf(Code classCode) const {
    auto const found = m_plurals.find(classCode);
    return found == m_plurals.end() ? std::u16string_view() : found->second;
}

CommandTerm const* Terminology::commandOf(EventCode code) const {
    auto const found = std::ranges::find(m_commands, code, &CommandTerm::code);
    return found == m_commands.end() ? nullptr : *found;
}

std::size_t tokensSpelling(std::span<Token const> tokens, std::u16string_view name) {
    std::vector<std::string> const words = wordsOf(name);
    return spell(tokens, words) ? words.size() : 0;
}

std::u16string charactersOfCode(Code code) {
    std::u16string characters;
    for (unsigned const shift : {24U, 16U, 8U, 0U})
        characters += static_cast<char16_t>(code >> shift & 0xFFU);
    return characters;
}

std::u16string nameOfCode(Code code) {
    std::u16string_view name = Terminology::base().nameOf(code);
    for (Terminology const* const terms : applicationTerminologies())
        if (name.empty()) name = terms->nameOf(code);
    if (!name.empty()) return std::u16string(name);
    return u"«class " + charactersOfCode(code) + u"»";
}

std::u16string_view pluralOfCode(Code classCode) {
    std::u16string_view plural = Terminology::base().pluralOf(classCode);
    for (Terminology const* const terms : applicationTerminologies())
        if (plural.empty()) plural = terms->pluralOf(classCode);
    return plural;
}

bool isReservedWord(std::string_view lowercase) { return std::ranges::binary_search(ReservedWords, lowercase); }

bool needsBars(std::u16string_view name) {
    if (name.empty() || (name.front() >= u'0' && name.front() <= u'9')) return true;
    for (char16_t const unit : name) {
        bool const belongs = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit == u'_' ||
                             (unit >= u'0' && unit <= u'9');
        if (!belongs) return true;
    }
    std::vector<std::string> const words = wordsOf(name);
    return isReservedWord(words.front()) || Terminology::base().termNamed(name) != nullptr;
}

} // namespace mac::applescript
