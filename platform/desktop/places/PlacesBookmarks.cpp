#include "platform/desktop/places/PlacesFormat.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <optional>
#include <utility>

namespace mac {

namespace {

bool isSchemeByte(char byte) {
    char16_t const lower = lowercaseASCII(static_cast<unsigned char>(byte));
    return (lower >= u'a' && lower <= u'z') || isASCIIDigit(lower) || byte == '+' || byte == '-' || byte == '.';
}

// Whether the text begins with the scheme of a URI and a colon.
bool isURI(std::string_view text) {
    std::size_t const colon = text.find(':');
    return colon != 0 && colon != std::string_view::npos && !isASCIIDigit(static_cast<unsigned char>(text.front())) &&
           std::ranges::all_of(text.substr(0, colon), isSchemeByte);
}

// The entry in the line, which has no line feed; nullopt if the line is not an entry.
std::optional<std::pair<std::string, std::string>> uriAndLabel(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    std::size_t const blank = line.find(' ');
    std::string_view const uri = line.substr(0, blank);
    if (!isURI(uri) || line.find('\0') != std::string_view::npos || !unitsFromUTF8(line)) return std::nullopt;
    std::string_view const label = blank == std::string_view::npos ? std::string_view() : line.substr(blank + 1);
    return std::pair(std::string(uri), std::string(label));
}

Result<PlaceEntries, Failure> readBookmarks(std::string_view text) {
    PlaceEntries read{.entries = {}, .endOfList = text.size()};
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t const lineFeed = std::min(text.find('\n', begin), text.size());
        std::size_t const end = std::min(lineFeed + 1, text.size());
        if (auto found = uriAndLabel(text.substr(begin, lineFeed - begin))) {
            if (read.entries.size() == MostPlaces) return Failure{localizable("there are too many places")};
            read.entries.push_back({std::move(found->first), std::move(found->second), begin, end});
        }
        begin = end;
    }
    return read;
}

std::string bookmarkLine(std::string_view uri, std::string_view label) {
    std::string line(uri);
    if (!label.empty()) line.append(" ").append(label);
    std::ranges::replace_if(
        line, [](char byte) { return byte == '\n' || byte == '\r' || byte == '\0'; }, ' ');
    return line + "\n";
}

// A line without end gets one where another follows.
std::string joinedLines(std::string_view before, std::string_view entry, std::string_view after) {
    std::string text(before);
    if (!text.empty() && !text.ends_with('\n') && !entry.empty()) text.push_back('\n');
    text.append(entry);
    if (!text.empty() && !text.ends_with('\n') && !after.empty()) text.push_back('\n');
    return text.append(after);
}

} // namespace

PlacesFormat const BookmarksFormat{
    .read = readBookmarks, .textOfEntry = bookmarkLine, .joined = joinedLines, .emptyFile = ""};

} // namespace mac
