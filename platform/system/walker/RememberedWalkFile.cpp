#include "platform/system/walker/WalkMemory.h"
#include <array>
#include <bit>
#include <cstring>
#include <span>

namespace mac {

namespace {

constexpr std::uint32_t Version = 1;
constexpr std::uint32_t ByteOrder = 0x01020304; // reads otherwise on a machine of the other order

// The file is this head, the list and the folders. The list holds texts, each with its length before it: the roots, the
// suffix, the names and the packages, with a count before each group.
struct FileHead {
    std::array<char, 8> mark{'F', 'o', 'l', 'd', 'e', 'r', 's', '\n'};
    std::uint32_t byteOrder = ByteOrder;
    std::uint32_t version = Version;
    std::int64_t start = 0;
    std::uint64_t listBytes = 0;
    std::uint64_t folderBytes = 0;
    std::uint64_t checksum = 0; // of the head with a zero here, and all behind it
};
static_assert(sizeof(FileHead) == 48);

// Finds accidents, not forgers, and keeps up with reading: eight bytes at a step.
class Checksum {
public:
    void add(std::span<std::byte const> bytes) {
        while (bytes.size() >= sizeof(std::uint64_t)) {
            std::uint64_t word;
            std::memcpy(&word, bytes.data(), sizeof word);
            mix(word);
            bytes = bytes.subspan(sizeof word);
        }
        std::uint64_t rest = bytes.size();
        for (std::byte const byte : bytes)
            rest = rest << 8 | std::to_integer<std::uint64_t>(byte);
        mix(rest);
    }
    std::uint64_t value() const { return m_value; }

private:
    void mix(std::uint64_t word) {
        constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;
        m_value = std::rotl((m_value ^ word) * odd, 29);
    }
    std::uint64_t m_value = 0;
};

std::uint64_t checksumOf(FileHead head, std::span<std::byte const> rest) {
    head.checksum = 0;
    Checksum sum;
    sum.add(std::as_bytes(std::span(&head, 1)));
    sum.add(rest);
    return sum.value();
}

class ListWriter {
public:
    void add(std::uint32_t number) {
        auto const bytes = std::as_bytes(std::span(&number, 1));
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }
    void add(std::string const& text) {
        add(static_cast<std::uint32_t>(text.size()));
        auto const bytes = std::as_bytes(std::span(text));
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }
    void add(std::vector<std::string> const& texts) {
        add(static_cast<std::uint32_t>(texts.size()));
        for (std::string const& text : texts)
            add(text);
    }
    std::vector<std::byte> const& bytes() const { return m_bytes; }

private:
    std::vector<std::byte> m_bytes;
};

class ListReader {
public:
    explicit ListReader(std::span<std::byte const> bytes) : m_bytes(bytes) {}

    std::uint32_t number() {
        std::uint32_t number = 0;
        std::span<std::byte const> const bytes = take(sizeof number);
        if (m_isWhole) std::memcpy(&number, bytes.data(), sizeof number);
        return number;
    }
    std::string text() {
        std::span<std::byte const> const bytes = take(number());
        return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
    }
    std::vector<std::string> texts() {
        std::vector<std::string> texts;
        for (std::uint32_t left = number(); left > 0 && m_isWhole; --left)
            texts.push_back(text());
        return texts;
    }
    bool isWhole() const { return m_isWhole && m_bytes.empty(); }

private:
    std::span<std::byte const> take(std::size_t count) {
        m_isWhole = m_isWhole && count <= m_bytes.size();
        if (!m_isWhole) return {};
        std::span<std::byte const> const taken = m_bytes.first(count);
        m_bytes = m_bytes.subspan(count);
        return taken;
    }

    std::span<std::byte const> m_bytes;
    bool m_isWhole = true;
};

} // namespace

std::vector<std::byte> bytesOfWalk(RememberedWalk const& walk) {
    ListWriter list;
    list.add(walk.question.roots);
    list.add(walk.question.packageSuffix);
    list.add(walk.question.names);
    list.add(walk.packages);
    std::span<std::byte const> const folders = walk.folders->bytes();

    FileHead head{.start = walk.start, .listBytes = list.bytes().size(), .folderBytes = folders.size()};
    std::vector<std::byte> bytes(sizeof head);
    bytes.reserve(sizeof head + list.bytes().size() + folders.size());
    bytes.insert(bytes.end(), list.bytes().begin(), list.bytes().end());
    bytes.insert(bytes.end(), folders.begin(), folders.end());
    head.checksum = checksumOf(head, std::span(bytes).subspan(sizeof head));
    std::memcpy(bytes.data(), &head, sizeof head);
    return bytes;
}

std::optional<RememberedWalk> walkOfBytes(std::vector<std::byte> bytes) {
    FileHead head;
    if (bytes.size() < sizeof head) return std::nullopt;
    std::memcpy(&head, bytes.data(), sizeof head);
    if (head.checksum != checksumOf(head, std::span(bytes).subspan(sizeof head))) return std::nullopt;
    return walkOfCheckedBytes(std::move(bytes));
}

std::optional<RememberedWalk> walkOfCheckedBytes(std::vector<std::byte> bytes) {
    FileHead head;
    if (bytes.size() < sizeof head) return std::nullopt;
    std::memcpy(&head, bytes.data(), sizeof head);
    FileHead const expected;
    if (head.mark != expected.mark || head.byteOrder != ByteOrder || head.version != Version) return std::nullopt;
    std::span<std::byte const> const rest = std::span(bytes).subspan(sizeof head);
    if (head.listBytes > rest.size() || head.folderBytes != rest.size() - head.listBytes) return std::nullopt;

    ListReader list(rest.first(head.listBytes));
    RememberedWalk walk{.start = head.start};
    walk.question.roots = list.texts();
    walk.question.packageSuffix = list.text();
    walk.question.names = list.texts();
    walk.packages = list.texts();
    if (!list.isWhole()) return std::nullopt;
    std::optional<RememberedFolders> folders =
        RememberedFolders::parse(std::move(bytes), sizeof head + static_cast<std::size_t>(head.listBytes));
    if (!folders) return std::nullopt;
    walk.folders = std::make_shared<RememberedFolders const>(std::move(*folders));
    return walk;
}

} // namespace mac
