#pragma once

#include <optional>
#include <string>
#include <string_view>

// The text of a URL, for implementations. Any thread.

namespace mac {

// A range of code units, which in a URL are bytes as well, since only ASCII is allowed there.
struct URLRange {
    std::size_t start{0};
    std::size_t end{0};

    constexpr bool operator==(URLRange const&) const = default;
    std::u16string_view of(std::u16string_view text) const { return text.substr(start, end - start); }
};

// Where in the text of a URL its parts lie, by RFC 2396 with the parameters of RFC 1808; the separators belong to none.
// A URL that is not hierarchical (a scheme without a slash behind it) has a scheme alone.
struct URLParts {
    bool isDecomposable{true};
    std::optional<URLRange> scheme{};
    std::optional<URLRange> user{};
    std::optional<URLRange> password{};
    // Every authority has a host, which may be empty.
    std::optional<URLRange> host{};
    std::optional<URLRange> port{};
    // May be empty, and then says where it would be.
    URLRange path{};
    std::optional<URLRange> parameters{};
    std::optional<URLRange> query{};
    std::optional<URLRange> fragment{};

    std::optional<URLRange> userInformation() const;
    std::optional<URLRange> authority() const;
    // Everything behind the path but its separator.
    std::optional<URLRange> behindPath() const;
};

// Whether only characters that a URL may have stand in the text, every % is followed by two hexadecimal digits, and
// there is at most one #.
bool isURLText(std::u16string_view text);
URLParts partsOfURL(std::u16string_view text);

// The text of the URL that the relative one stands for, by RFC 1808. The base is absolute.
std::u16string resolvedURL(std::u16string_view relative, std::u16string_view base);
// The path without its "." segments, and without ".." and the segment before. ".." at the start of an absolute path
// stays or goes.
enum class LeadingDots { Stay, Go };
std::u16string withoutDotSegments(std::u16string_view path, LeadingDots leadingDots);
// The URL with such a path, which stays one where its new beginning would read as a scheme, a host or the root.
std::u16string standardizedURL(std::u16string_view url);

// The path (or host, ...) without its percent escapes: bytes that are not UTF-8 are held as in the names of files.
std::u16string unescapedPath(std::u16string_view text);
// The path with everything escaped that would not be a path's in a URL: nullopt if it names no file.
std::optional<std::u16string> escapedPath(std::u16string_view path);

// Whether a URL may have the character unescaped; false for percent signs, brackets and #.
bool isURLCharacter(char16_t unit);
// The value of a hexadecimal digit; nullopt for another character.
std::optional<unsigned> hexadecimalValue(char16_t unit);
void appendEscapedByte(std::u16string& text, unsigned char byte);

} // namespace mac
