#pragma once

#include "platform/system/Result.h"
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// Reads an old-style property list's text symbol by symbol. Reasons of failures name the line.
class OldStyleScanner {
public:
    explicit OldStyleScanner(std::u16string_view text) : m_text(text) {}

    // Skips white space and comments; answers why that is not possible, or an empty text.
    std::string skipBlanks();
    bool isAtEnd() const { return m_position == m_text.size(); }
    // The unit at the position, and 0 at the end. White space is not skipped.
    char16_t peek() const { return isAtEnd() ? u'\0' : m_text[m_position]; }
    // Steps over the unit if it is the next one.
    bool accept(char16_t unit);
    std::size_t position() const { return m_position; }
    void setPosition(std::size_t position) { m_position = position; }

    bool isAtString() const;
    Result<std::u16string, Failure> readString();
    // Behind the opening "<", up to and with the closing ">".
    Result<std::vector<std::byte>, Failure> readData();

    std::string failure(std::string_view reason) const { return failureAt(reason, m_position); }
    // Says what stands at the position where something else was expected.
    std::string unexpected(std::string_view expected) const;

private:
    std::string failureAt(std::string_view reason, std::size_t position) const;
    Result<std::u16string, Failure> readQuoted();
    std::string readEscape(std::u16string& string);
    std::u16string_view readDigits(std::size_t most, bool (*isDigit)(char16_t));

    std::u16string_view m_text;
    std::size_t m_position{0};
};

} // namespace mac
