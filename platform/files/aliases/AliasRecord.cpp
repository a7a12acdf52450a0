#include "platform/files/aliases/AliasRecord.h"
#include "platform/files/volumes/VolumeIdentity.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/system/BigEndian.h"
#include "platform/system/BytePath.h"
#include "platform/system/Users.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/ItemIdentity.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/stat.h>

namespace mac {

namespace {

// The record: mark, version, kind, length of all, checksum, inode, birth time, then four texts, each behind its length.
// Numbers have the most significant byte first.
constexpr std::string_view Mark = "FKAlias\n";
constexpr std::uint16_t Version = 1;
constexpr std::size_t LengthPlace = 12;
constexpr std::size_t ChecksumPlace = 16;
constexpr std::size_t InodePlace = 24;
constexpr std::size_t HeaderSize = 40;
// The length that stands for a missing text.
constexpr std::uint32_t NoText = 0xFFFFFFFF;

// FNV-1a: each step is reversible, so that no single changed byte stays unseen.
std::uint64_t checksumOf(std::span<std::byte const> bytes) {
    std::uint64_t sum = 0xCBF29CE484222325U;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bool const isChecksum = index >= ChecksumPlace && index < ChecksumPlace + sizeof sum;
        std::uint64_t const value = isChecksum ? 0 : std::to_integer<std::uint64_t>(bytes[index]);
        sum = (sum ^ value) * 0x100000001B3U;
    }
    return sum;
}

template <class Number>
void putNumber(std::vector<std::byte>& bytes, Number number) {
    for (std::size_t shift = sizeof number * 8; shift > 0; shift -= 8)
        bytes.push_back(static_cast<std::byte>(static_cast<std::uint64_t>(number) >> (shift - 8)));
}

void putBytes(std::vector<std::byte>& bytes, std::string_view text) {
    std::ranges::transform(text, std::back_inserter(bytes), [](char c) { return static_cast<std::byte>(c); });
}

void putText(std::vector<std::byte>& bytes, std::string_view text) {
    putNumber(bytes, static_cast<std::uint32_t>(text.size()));
    putBytes(bytes, text);
}

template <class Number>
void setNumber(std::vector<std::byte>& bytes, std::size_t place, Number number) {
    std::vector<std::byte> written;
    putNumber(written, number);
    std::ranges::copy(written, bytes.begin() + static_cast<std::ptrdiff_t>(place));
}

// Takes the texts of a record one after the other, as far as they lie in it.
class TextReader {
public:
    explicit TextReader(std::span<std::byte const> bytes) : m_rest(bytes) {}

    std::optional<std::string> takeOptional() {
        std::uint32_t const length = takeLength();
        if (length == NoText || m_isBroken) return std::nullopt;
        m_isBroken = length > m_rest.size();
        if (m_isBroken) return std::nullopt;
        std::string text(reinterpret_cast<char const*>(m_rest.data()), length);
        m_rest = m_rest.subspan(length);
        m_isBroken = text.find('\0') != std::string::npos;
        return text;
    }
    std::string take() {
        std::optional<std::string> text = takeOptional();
        m_isBroken = m_isBroken || !text;
        return text ? std::move(*text) : std::string();
    }
    bool isAtEnd() const { return !m_isBroken && m_rest.empty(); }

private:
    std::uint32_t takeLength() {
        m_isBroken = m_isBroken || m_rest.size() < sizeof(std::uint32_t);
        if (m_isBroken) return NoText;
        std::uint32_t const length = bigEndian32(m_rest, 0);
        m_rest = m_rest.subspan(sizeof length);
        return length;
    }

    std::span<std::byte const> m_rest;
    bool m_isBroken{false};
};

bool isKind(std::uint16_t number) {
    return number >= 1 && number <= static_cast<std::uint16_t>(AliasRecord::Kind::Other);
}

bool isAbsoluteOrEmpty(std::string const& path) { return path.empty() || path.starts_with('/'); }

} // namespace

std::vector<std::byte> AliasRecord::bytes() const {
    std::vector<std::byte> bytes;
    putBytes(bytes, Mark);
    putNumber(bytes, Version);
    putNumber(bytes, static_cast<std::uint16_t>(kind));
    putNumber(bytes, std::uint32_t{0});
    putNumber(bytes, std::uint64_t{0});
    putNumber(bytes, inode);
    putNumber(bytes, birth);
    putText(bytes, path);
    putText(bytes, pathOnVolume);
    if (pathBelowHome) putText(bytes, *pathBelowHome);
    if (!pathBelowHome) putNumber(bytes, NoText);
    putText(bytes, volume);
    seal(bytes);
    return bytes;
}

void AliasRecord::seal(std::vector<std::byte>& bytes) {
    if (bytes.size() < HeaderSize) return;
    setNumber(bytes, LengthPlace, static_cast<std::uint32_t>(bytes.size()));
    setNumber(bytes, ChecksumPlace, checksumOf(bytes));
}

std::optional<AliasRecord> AliasRecord::read(std::span<std::byte const> bytes) {
    if (bytes.size() < HeaderSize || bytes.size() > MostBytes) return std::nullopt;
    std::string_view const mark(reinterpret_cast<char const*>(bytes.data()), Mark.size());
    std::uint16_t const kindNumber = bigEndian16(bytes, Mark.size() + sizeof Version);
    bool const isReadable = mark == Mark && bigEndian16(bytes, Mark.size()) == Version && isKind(kindNumber) &&
                            bigEndian32(bytes, LengthPlace) == bytes.size() &&
                            bigEndian<std::uint64_t>(bytes, ChecksumPlace) == checksumOf(bytes);
    if (!isReadable) return std::nullopt;
    AliasRecord record;
    record.kind = static_cast<Kind>(kindNumber);
    record.inode = bigEndian<std::uint64_t>(bytes, InodePlace);
    record.birth = bigEndian<std::int64_t>(bytes, InodePlace + sizeof record.inode);
    TextReader texts(bytes.subspan(HeaderSize));
    record.path = texts.take();
    record.pathOnVolume = texts.take();
    record.pathBelowHome = texts.takeOptional();
    record.volume = texts.take();
    bool const isRelative = !record.pathBelowHome || !record.pathBelowHome->starts_with('/');
    bool const isSound =
        texts.isAtEnd() && BytePath(record.path).isAbsolute() && isAbsoluteOrEmpty(record.pathOnVolume) && isRelative;
    return isSound ? std::optional(std::move(record)) : std::nullopt;
}

Result<AliasRecord::Kind> aliasKindOf(FileDescriptor const& item) {
    struct stat status {};
    if (::fstat(item.number(), &status) != 0) return lastSystemError("stat");
    if (S_ISREG(status.st_mode)) return AliasRecord::Kind::File;
    if (S_ISDIR(status.st_mode)) return AliasRecord::Kind::Folder;
    return S_ISLNK(status.st_mode) ? AliasRecord::Kind::Link : AliasRecord::Kind::Other;
}

Result<AliasRecord> aliasRecordOf(OpenItem const& item) {
    AliasRecord record{.path = "/"};
    if (!item.name.empty()) {
        Result<std::string> const folder = pathOfFolder(item.folder);
        if (!folder.hasValue()) return folder.problem();
        record.path = BytePath(folder.value()).joined(item.name);
    }
    Result<AliasRecord::Kind> const kind = aliasKindOf(item.item);
    if (!kind.hasValue()) return kind.problem();
    Result<IdentifiedItem> const identified = identify(item.item);
    if (!identified.hasValue()) return identified.problem();
    record.kind = kind.value();
    record.inode = identified.value().identity.inode;
    record.birth = identified.value().identity.birth;
    if (Result<MountedVolume> const volume = volumeOfItem(item.item); volume.hasValue()) {
        record.volume = identityOfVolume(volume.value());
        record.pathOnVolume = pathOnVolume(volume.value(), record.path);
    }
    std::string const home = ownHomeFolder();
    if (BytePath(record.path).isBelow(home)) record.pathBelowHome = BytePath(record.path).belowFolder(home);
    // Half of what may be read, so that no text is too long for the record.
    constexpr std::size_t longestPath = AliasRecord::MostBytes / 4 - HeaderSize;
    if (record.path.size() > longestPath || record.pathOnVolume.size() > longestPath)
        return SystemError{.code = EFBIG, .operation = "make alias", .item = record.path};
    return record;
}

} // namespace mac
