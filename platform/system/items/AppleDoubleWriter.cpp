#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/AppleDoubleForm.h"
#include <algorithm>
#include <limits>

namespace mac {

namespace {

using namespace appledouble;

void appendNumber(std::vector<std::byte>& bytes, std::size_t value, std::size_t width) {
    for (std::size_t index = width; index > 0; --index)
        bytes.push_back(static_cast<std::byte>(value >> (8 * (index - 1))));
}

void append(std::vector<std::byte>& bytes, std::span<std::byte const> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void appendText(std::vector<std::byte>& bytes, std::string_view text) { append(bytes, std::as_bytes(std::span(text))); }

std::size_t entrySizeOf(AppleDouble::Attribute const& attribute) {
    std::size_t const size = AttributeEntrySize + attribute.name.size() + 1;
    return (size + AttributeAlignment - 1) / AttributeAlignment * AttributeAlignment;
}

bool isWritable(AppleDouble::Attribute const& attribute) {
    std::string const& name = attribute.name;
    return !name.empty() && name.size() <= LongestName && name.find('\0') == std::string::npos;
}

// The entry of the Finder information with the table of attributes, their names and values. `place` is its offset in
// the file: a multiple of the alignment plus 2, so that the table is aligned.
std::vector<std::byte> finderPart(AppleDouble const& file, std::size_t place) {
    std::vector<std::byte> part;
    append(part, file.finderInformation);
    append(part, file.informationTail);
    if (!file.informationTail.empty()) return part;
    part.resize(TableDistance);
    if (file.attributes.empty() && file.tableMarks == AppleDouble::TableMarks()) return part;

    std::size_t start = place + TableDistance + TableHeaderSize;
    std::size_t length = 0;
    for (AppleDouble::Attribute const& attribute : file.attributes) {
        start += entrySizeOf(attribute);
        length += attribute.value.size();
    }
    appendNumber(part, TableMagic, 4);
    appendNumber(part, file.tableMarks.tag, 4);
    appendNumber(part, start + length, 4);
    appendNumber(part, start, 4);
    appendNumber(part, length, 4);
    append(part, file.tableMarks.reserved);
    appendNumber(part, file.tableMarks.flags, 2);
    appendNumber(part, file.attributes.size(), 2);
    std::size_t offset = start;
    for (AppleDouble::Attribute const& attribute : file.attributes) {
        std::size_t const end = part.size() + entrySizeOf(attribute);
        appendNumber(part, offset, 4);
        appendNumber(part, attribute.value.size(), 4);
        appendNumber(part, attribute.flags, 2);
        appendNumber(part, attribute.name.size() + 1, 1);
        appendText(part, attribute.name);
        part.resize(end);
        offset += attribute.value.size();
    }
    for (AppleDouble::Attribute const& attribute : file.attributes)
        append(part, attribute.value);
    return part;
}

} // namespace

std::optional<std::vector<std::byte>> AppleDouble::written() const {
    constexpr std::size_t mostParts = std::numeric_limits<std::uint16_t>::max() - 2;
    if (attributes.size() > MostAttributes || otherParts.size() > mostParts) return std::nullopt;
    if (!informationTail.empty() && !attributes.empty()) return std::nullopt;
    if (!std::ranges::all_of(attributes, isWritable)) return std::nullopt;

    // The Finder information comes first, where Mac OS X looks for it; the fork last, where it can grow.
    std::vector<Part> parts;
    parts.reserve(otherParts.size() + 2);
    std::size_t const firstPlace = HeaderSize + (otherParts.size() + 2) * PartEntrySize;
    parts.push_back({FinderInformationKind, finderPart(*this, firstPlace)});
    parts.insert(parts.end(), otherParts.begin(), otherParts.end());
    parts.push_back({ResourceForkKind, resourceFork});

    std::vector<std::byte> file;
    appendNumber(file, Magic, 4);
    appendNumber(file, Version, 4);
    append(file, homeFileSystem);
    appendNumber(file, parts.size(), 2);
    std::size_t place = firstPlace;
    for (Part const& part : parts) {
        appendNumber(file, part.kind, 4);
        appendNumber(file, place, 4);
        appendNumber(file, part.bytes.size(), 4);
        place += part.bytes.size();
    }
    if (place > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    for (Part const& part : parts)
        append(file, part.bytes);
    return file;
}

} // namespace mac
