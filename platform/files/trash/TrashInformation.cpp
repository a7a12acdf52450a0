#include "platform/files/trash/TrashInformation.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/PercentEscapes.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>

namespace mac {

namespace {

constexpr std::string_view Heading = "[Trash Info]";
constexpr std::string_view DateForm = "0000-00-00T00:00:00";

// nullopt for a text that is not percent-encoded, and if it encodes a NUL.
std::optional<std::string> percentDecoded(std::string_view text) {
    std::optional<std::string> bytes = percentUnescaped(text);
    if (bytes && bytes->find('\0') != std::string::npos) return std::nullopt;
    return bytes;
}

std::string_view takeLine(std::string_view& text) {
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
        line.remove_suffix(1);
    return line;
}

bool isDate(std::string_view text) {
    return std::ranges::equal(text, DateForm, [](char character, char form) {
        return form == '0' ? isASCIIDigit(character) : character == form;
    });
}

// Whether the path has no ".." and ends in a name.
bool leadsToAName(std::string_view path) {
    std::string_view rest = path;
    std::string_view last;
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find('/'), rest.size());
        last = rest.substr(0, end);
        if (last == "..") return false;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return !last.empty() && last != "." && !path.ends_with('/');
}

template <class Number>
std::optional<Number> takeNumber(std::string_view& line) {
    Number number = 0;
    auto const [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    std::size_t const length = static_cast<std::size_t>(end - line.data());
    if (error != std::errc() || length == line.size() || line[length] != ' ') return std::nullopt;
    line.remove_prefix(length + 1);
    return number;
}

constexpr std::size_t LongestExtension = 16;

// The extension with its dot. A suffix that holds a blank or no letter belongs to the name: "Notes v1.2", "Dr. No".
std::string_view extensionOf(std::string_view name) {
    std::size_t const dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    std::string_view const extension = name.substr(dot);
    bool const hasLetter = std::ranges::any_of(
        extension, [](char letter) { return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z'); });
    bool const isOne = extension.size() <= LongestExtension && hasLetter && extension.find(' ') == extension.npos;
    return isOne ? extension : std::string_view();
}

bool isInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

std::string_view shortened(std::string_view text, std::size_t size) {
    if (text.size() <= size) return text;
    constexpr std::size_t longestCharacter = 4;
    for (std::size_t end = size; end > 0 && size - end < longestCharacter; --end) {
        if (!isInsideCharacter(text[end])) return text.substr(0, end);
    }
    // The text is not UTF-8.
    return text.substr(0, size);
}

} // namespace

TrashNames::TrashNames(std::string_view name, std::string_view timeOfDay, std::size_t longest)
    : m_extension(extensionOf(name)), m_timeOfDay(timeOfDay), m_longest(longest) {
    m_base = name.substr(0, name.size() - m_extension.size());
}

std::string TrashNames::name(unsigned number) const {
    std::string end;
    if (number > 0) end = " " + m_timeOfDay;
    if (number > 1) end += " " + std::to_string(number);
    end += m_extension;
    std::string_view const base = shortened(m_base, m_longest - std::min(m_longest, end.size()));
    return std::string(base) + end;
}

std::optional<TrashInformation> TrashInformation::read(std::string_view text) {
    while (!text.empty() && takeLine(text) != Heading)
        ;
    TrashInformation information;
    constexpr std::string_view pathKey = "Path=";
    constexpr std::string_view dateKey = "DeletionDate=";
    while (!text.empty()) {
        std::string_view const line = takeLine(text);
        if (line.starts_with('[')) break;
        // The first of several counts.
        if (line.starts_with(pathKey) && information.path.empty()) {
            std::optional<std::string> path = percentDecoded(line.substr(pathKey.size()));
            if (!path) return std::nullopt;
            information.path = BytePath(*path).bytes();
        }
        std::string_view const date = line.starts_with(dateKey) ? line.substr(dateKey.size()) : std::string_view();
        if (information.date.empty() && isDate(date)) information.date = date;
    }
    if (!leadsToAName(information.path)) return std::nullopt;
    return information;
}

std::string TrashInformation::text() const {
    std::string text(Heading);
    text.append("\nPath=").append(percentEscaped(path)).append("\n");
    if (!date.empty()) text.append("DeletionDate=").append(date).append("\n");
    return text;
}

std::vector<DirectorySize> DirectorySize::read(std::string_view text) {
    std::vector<DirectorySize> sizes;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        std::optional<std::uint64_t> const bytes = takeNumber<std::uint64_t>(line);
        std::optional<std::int64_t> const time = bytes ? takeNumber<std::int64_t>(line) : std::nullopt;
        std::optional<std::string> name = time ? percentDecoded(line) : std::nullopt;
        if (name && !name->empty() && name->find('/') == std::string::npos)
            sizes.push_back({*bytes, *time, std::move(*name)});
    }
    return sizes;
}

std::string DirectorySize::text(std::vector<DirectorySize> const& sizes) {
    std::string text;
    for (DirectorySize const& size : sizes) {
        text.append(std::to_string(size.bytes)).append(" ").append(std::to_string(size.informationTime));
        text.append(" ").append(percentEscaped(size.name)).append("\n");
    }
    return text;
}

std::string localTimeText(std::int64_t seconds) {
    std::time_t const time = seconds;
    std::tm parts{};
    std::array<char, 64> text{};
    if (!::localtime_r(&time, &parts)) return {};
    std::string written(text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts));
    return isDate(written) ? written : std::string();
}

std::optional<std::int64_t> secondsOfLocalTimeText(std::string const& text) {
    if (!isDate(text)) return std::nullopt;
    auto const number = [&text](std::size_t start, std::size_t length) {
        int value = 0;
        std::from_chars(text.data() + start, text.data() + start + length, value);
        return value;
    };
    std::tm parts{};
    parts.tm_year = number(0, 4) - 1900;
    parts.tm_mon = number(5, 2) - 1;
    parts.tm_mday = number(8, 2);
    parts.tm_hour = number(11, 2);
    parts.tm_min = number(14, 2);
    parts.tm_sec = number(17, 2);
    parts.tm_isdst = -1;
    std::tm const given = parts;
    std::time_t const time = ::mktime(&parts);
    // The calendar has no thirtieth of February.
    if (parts.tm_mday != given.tm_mday || parts.tm_mon != given.tm_mon) return std::nullopt;
    return time;
}

} // namespace mac
