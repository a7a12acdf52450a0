#include "platform/events/FlatDescriptor.h"
#include "platform/events/DescriptorContents.h"
#include <algorithm>
#include <cstring>

namespace mac {

namespace {

constexpr std::uint32_t Mark = FourCharCode("fkae").value();
constexpr std::uint32_t Version = 1;
constexpr std::size_t WordSize = sizeof(std::uint32_t);
constexpr char TooLarge[] = "The descriptor is larger than 16 MiB or holds more than a million others";
constexpr char TooDeep[] = "The descriptor is nested deeper than 512 containers";

class Writer {
public:
    // False if the limits on size and count are exceeded.
    bool writeDesc(AEDesc const& desc) {
        DescriptorContents const& contents = contentsOf(desc);
        if (++m_count > kFlatDescriptorMaximumCount) return false;
        writeWord(desc.descriptorType.value());
        writeWord(static_cast<std::uint32_t>(contents.form));
        std::size_t const place = beginSized();
        if (m_bytes.size() + contents.bytes.size() > kFlatDescriptorMaximumSize) return false;
        m_bytes.insert(m_bytes.end(), contents.bytes.begin(), contents.bytes.end());
        if (contents.form == DescriptorForm::Event) {
            std::size_t const attributes = beginSized();
            if (!writeEntries(contents.attributes, true)) return false;
            endSized(attributes);
        }
        if (!writeEntries(contents.entries, contents.form != DescriptorForm::List)) return false;
        endSized(place);
        return true;
    }

    void writeWord(std::uint32_t word) {
        auto const bytes = std::as_bytes(std::span(&word, 1));
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }

    std::vector<std::byte> takeBytes() { return std::move(m_bytes); }

private:
    bool writeEntries(std::span<DescriptorEntry const> entries, bool areKeyed) {
        return std::ranges::all_of(entries, [&](DescriptorEntry const& entry) {
            if (areKeyed) writeWord(entry.keyword.value());
            return writeDesc(entry.desc);
        });
    }

    std::size_t beginSized() {
        writeWord(0);
        return m_bytes.size();
    }
    void endSized(std::size_t place) {
        auto const size = static_cast<std::uint32_t>(m_bytes.size() - place);
        std::memcpy(m_bytes.data() + place - WordSize, &size, WordSize);
    }

    std::vector<std::byte> m_bytes;
    std::size_t m_count{0};
};

// Reads values one after the other. After a failure it reads no more, and keeps the first reason.
class Reader {
public:
    explicit Reader(std::span<std::byte const> bytes) : m_all(bytes), m_rest(bytes) {}

    std::uint32_t readWord() {
        if (m_rest.size() < WordSize) {
            fail("The data is cut off");
            return 0;
        }
        std::uint32_t word = 0;
        std::memcpy(&word, m_rest.data(), WordSize);
        m_rest = m_rest.subspan(WordSize);
        return word;
    }

    AEDesc readDesc(std::size_t depth) {
        if (++m_count > kFlatDescriptorMaximumCount) fail(TooLarge);
        if (depth > kDescriptorMaximumDepth) fail(TooDeep);
        DescType const type{readWord()};
        std::uint32_t const form = readWord();
        if (form > static_cast<std::uint32_t>(DescriptorForm::Event)) fail("There is no such form of a descriptor");
        std::span<std::byte const> const after = enterSized();
        if (hasFailed()) return {};
        AEDesc desc = readContents(type, static_cast<DescriptorForm>(form), depth);
        m_rest = after;
        return desc;
    }

    void fail(std::string const& reason) {
        if (m_failure.empty()) m_failure = reason + " at offset " + std::to_string(m_all.size() - m_rest.size());
    }
    bool hasFailed() const { return !m_failure.empty(); }
    bool isAtEnd() const { return m_rest.empty(); }
    std::string const& failure() const { return m_failure; }

private:
    AEDesc readContents(DescType type, DescriptorForm form, std::size_t depth) {
        if (form == DescriptorForm::Bytes) return makeDesc(type, m_rest);
        AEDesc desc = makeContainer(type, form);
        DescriptorContents& contents = *desc.dataHandle;
        if (form == DescriptorForm::Event) {
            std::span<std::byte const> const parameters = enterSized();
            if (!hasFailed()) readEntries(contents, true, depth);
            m_rest = parameters;
        }
        readEntries(contents, false, depth);
        return desc;
    }

    void readEntries(DescriptorContents& contents, bool areAttributes, std::size_t depth) {
        while (!hasFailed() && !m_rest.empty()) {
            AEKeyword const keyword{contents.form == DescriptorForm::List ? 0 : readWord()};
            AEDesc desc = readDesc(depth + 1);
            contents.depth = std::max(contents.depth, contentsOf(desc).depth + 1);
            contents.entriesOrAttributes(areAttributes).push_back({keyword, std::move(desc)});
        }
    }

    // Reads a size and limits reading to that many bytes; answers the bytes behind them.
    std::span<std::byte const> enterSized() {
        std::uint32_t const size = readWord();
        if (size > m_rest.size()) fail("A size is more than what is there");
        if (hasFailed()) return {};
        std::span<std::byte const> const after = m_rest.subspan(size);
        m_rest = m_rest.first(size);
        return after;
    }

    std::span<std::byte const> m_all;
    std::span<std::byte const> m_rest;
    std::string m_failure;
    std::size_t m_count{0};
};

} // namespace

Result<std::vector<std::byte>, Failure> flattened(AEDesc const& desc) {
    Writer writer;
    writer.writeWord(Mark);
    writer.writeWord(Version);
    if (!writer.writeDesc(desc)) return Failure{TooLarge};
    std::vector<std::byte> bytes = writer.takeBytes();
    if (bytes.size() > kFlatDescriptorMaximumSize) return Failure{TooLarge};
    return bytes;
}

Result<AEDesc, Failure> unflattened(std::span<std::byte const> bytes) {
    if (bytes.size() > kFlatDescriptorMaximumSize) return Failure{TooLarge};
    Reader reader(bytes);
    if (reader.readWord() != Mark) reader.fail("This is no flat descriptor");
    if (reader.readWord() != Version) reader.fail("The flat descriptor is of an unknown version");
    if (reader.hasFailed()) return Failure{reader.failure()};
    AEDesc desc = reader.readDesc(1);
    if (!reader.isAtEnd()) reader.fail("Something lies behind the descriptor");
    if (reader.hasFailed()) return Failure{reader.failure()};
    return desc;
}

} // namespace mac
