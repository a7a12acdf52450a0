#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mac::applescript {

// A place in a source or another text, in UTF-16 code units; the end is the first one after.
struct SourceRange {
    std::uint32_t start{0};
    std::uint32_t end{0};
};

// The first mistake in a source, thrown by the parser.
struct SyntaxError {
    std::int32_t number{0};
    std::u16string message{};
    SourceRange range{};
};

enum class TokenKind : std::uint8_t {
    // An identifier or a reserved word; `word` is its lower case.
    Word,
    // |any characters|
    Barred,
    Integer,
    Real,
    // 1st, 2nd
    Ordinal,
    Text,
    // An operator or bracket in its one spelling: "≤" for "<=", "'s" for the possessive.
    Mark,
    // «class docu»; `text` is what stands between the marks.
    Raw,
    EndOfLine,
    EndOfScript,
    // A character without meaning.
    Unknown,
    // A text, comment or code that does not end: `text` is what was expected and `word` what was found.
    Unfinished,
};

struct Token {
    TokenKind kind{TokenKind::EndOfScript};
    SourceRange range{};
    // ASCII lower case of a Word, the spelling of a Mark.
    std::string word{};
    // As written, for names; the content of a Text.
    std::u16string text{};
    double number{0};

    bool isWord(std::string_view lowercase) const { return kind == TokenKind::Word && word == lowercase; }
    bool isSymbol(std::string_view spelling) const { return kind == TokenKind::Mark && word == spelling; }
    bool endsStatement() const { return kind == TokenKind::EndOfLine || kind == TokenKind::EndOfScript; }
};

// Cuts a source into tokens; the last is EndOfScript. Comments and continued line ends are left out. What is wrong
// becomes a token, so that the parser complains about the first mistake it meets.
std::vector<Token> tokensOf(std::u16string_view source);

} // namespace mac::applescript
