#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/AppleDoubleForm.h"
#include "platform/system/items/AttributesOnItem.h"
#include <algorithm>
#include <unordered_set>

namespace mac {

namespace {

using namespace appledouble;

using Bytes = std::span<std::byte const>;

// Reads numbers in sequence; past the end they are 0, and isSound() is false.
class Reader {
public:
    Reader(Bytes file, std::size_t start) : m_rest(file.subspan(std::min(start, file.size()))) {}

    bool isSound() const { return m_isSound; }
    Bytes take(std::size_t count) {
        if (count > m_rest.size()) {
            m_isSound = false;
            m_rest = {};
            return {};
        }
        Bytes const taken = m_rest.first(count);
        m_rest = m_rest.subspan(count);
        return taken;
    }
    std::uint32_t number(std::size_t width) {
        std::uint32_t value = 0;
        for (std::byte const byte : take(width))
            value = value << 8 | std::to_integer<std::uint32_t>(byte);
        return value;
    }

private:
    Bytes m_rest;
    bool m_isSound{true};
};

std::vector<std::byte> copyOf(Bytes bytes) { return {bytes.begin(), bytes.end()}; }

// Gives out parts of a file, altogether no more bytes than it has, so that a small file cannot fill the memory. Parts
// that lie after the bytes at hand are empty.
class Pieces {
public:
    Pieces(Bytes beginning, std::size_t fileSize) : m_beginning(beginning), m_size(fileSize), m_left(fileSize) {}

    std::optional<Bytes> piece(std::size_t offset, std::size_t length) {
        if (length == 0) return Bytes();
        if (offset > m_size || length > m_size - offset || length > m_left) return std::nullopt;
        m_left -= length;
        return isAtHand(offset, length) ? m_beginning.subspan(offset, length) : Bytes();
    }
    bool isAtHand(std::size_t offset, std::size_t length) const { return offset + length <= m_beginning.size(); }

private:
    Bytes m_beginning;
    std::size_t m_size;
    std::size_t m_left;
};

std::size_t aligned(std::size_t size) {
    return (size + AttributeAlignment - 1) / AttributeAlignment * AttributeAlignment;
}

bool isReserved(std::string_view name) { return name == XATTR_FINDERINFO_NAME || name == XATTR_RESOURCEFORK_NAME; }

std::optional<std::string> readName(Reader& reader) {
    std::size_t const length = reader.number(1);
    Bytes const bytes = reader.take(aligned(AttributeEntrySize + length) - AttributeEntrySize);
    if (!reader.isSound() || length < 2) return std::nullopt;
    std::string const name(reinterpret_cast<char const*>(bytes.data()), length - 1);
    bool const isEnded = bytes[length - 1] == std::byte{0};
    if (!isEnded || name.find('\0') != std::string::npos || isReserved(name)) return std::nullopt;
    return name;
}

// Reads the table after its magic number. Answers what is wrong with it; empty if it is sound.
std::string takeTable(AppleDouble& result, Pieces values, Reader& reader) {
    result.tableMarks.tag = reader.number(4);
    constexpr std::size_t endStartAndLength = 12;
    reader.take(endStartAndLength);
    Bytes const reserved = reader.take(result.tableMarks.reserved.size());
    std::ranges::copy(reserved, result.tableMarks.reserved.begin());
    result.tableMarks.flags = static_cast<std::uint16_t>(reader.number(2));
    std::size_t const count = reader.number(2);
    if (count > MostAttributes) return "There are too many attributes";
    std::unordered_set<std::string> names;
    for (std::size_t index = 0; index < count; ++index) {
        std::size_t const offset = reader.number(4);
        std::size_t const length = reader.number(4);
        auto const flags = static_cast<std::uint16_t>(reader.number(2));
        std::optional<std::string> name = readName(reader);
        std::optional<Bytes> const value = values.piece(offset, length);
        if (!name || !value || !names.insert(*name).second) return "An attribute is damaged";
        result.attributes.push_back({std::move(*name), copyOf(*value), flags});
    }
    return reader.isSound() ? "" : "The table of attributes is cut short";
}

bool isZero(Bytes bytes) {
    return std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{0}; });
}

// Reads the Finder information and what follows it: the table of attributes, padding, or bytes of another program. The
// values in the table may lie after the bytes at hand. Answers what is wrong; empty if it is sound.
std::string takeFinderInformation(AppleDouble& result, Bytes file, std::size_t fileSize, std::size_t offset,
                                  std::size_t length) {
    if (length == 0) return {};
    if (length < AppleDouble::FinderInformationSize) return "The Finder information is cut short";
    Bytes const rest = file.subspan(std::min(offset, file.size()));
    Bytes const part = rest.first(std::min(length, rest.size()));
    bool const mayHaveTable = length >= TableDistance + TableHeaderSize;
    std::size_t const needed = mayHaveTable ? TableDistance + TableHeaderSize : length;
    if (part.size() < needed) return "The Finder information lies behind what is read";
    std::ranges::copy(part.first(AppleDouble::FinderInformationSize), result.finderInformation.begin());
    Reader reader(file, offset + TableDistance);
    if (mayHaveTable && reader.number(4) == TableMagic) return takeTable(result, Pieces(file, fileSize), reader);
    if (part.size() < length) return "The Finder information lies behind what is read";
    Bytes const tail = part.subspan(AppleDouble::FinderInformationSize);
    if (!isZero(tail)) result.informationTail = copyOf(tail);
    return {};
}

} // namespace

Result<AppleDouble, Failure> AppleDouble::read(std::span<std::byte const> file) {
    return readBeginning(file, file.size());
}

Result<AppleDouble, Failure> AppleDouble::readBeginning(std::span<std::byte const> beginning, std::size_t fileSize) {
    Reader reader(beginning, 0);
    if (reader.number(4) != Magic) return Failure{"It is no AppleDouble file"};
    if (reader.number(4) != Version) return Failure{"It is an AppleDouble file of another version"};
    AppleDouble result;
    Bytes const homeFileSystem = reader.take(result.homeFileSystem.size());
    std::ranges::copy(homeFileSystem, result.homeFileSystem.begin());
    std::size_t const count = reader.number(2);

    Pieces pieces(beginning, fileSize);
    std::unordered_set<std::uint32_t> kinds;
    for (std::size_t index = 0; index < count; ++index) {
        std::uint32_t const kind = reader.number(4);
        std::size_t const offset = reader.number(4);
        std::size_t const length = reader.number(4);
        if (!reader.isSound()) return Failure{"The list of parts is cut short"};
        std::optional<Bytes> const part = pieces.piece(offset, length);
        if (!part) return Failure{"A part lies outside of the file, or in another one"};
        if (!kinds.insert(kind).second) return Failure{"A part is there twice"};
        if (kind == FinderInformationKind) {
            std::string complaint = takeFinderInformation(result, beginning, fileSize, offset, length);
            if (!complaint.empty()) return Failure{std::move(complaint)};
        } else if (kind == ResourceForkKind) {
            result.resourceFork = copyOf(*part);
            result.laterForkSize = length - part->size();
        } else {
            result.otherParts.push_back({kind, copyOf(*part)});
        }
    }
    if (!reader.isSound()) return Failure{"It is cut short"};
    return result;
}

} // namespace mac
