#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/system/FileWriting.h"
#include "platform/system/LongPath.h"
#include <algorithm>
#include <cstring>

namespace mac {

namespace {

constexpr std::size_t LargestFile = std::size_t{1} << 30;
// Lengths are 32 bits wide, and the framework's "not found" is no length.
constexpr std::size_t LargestLength = NSNotFound;

std::size_t checkedLength(std::size_t length) {
    if (length > LargestLength) throw NSInvalidArgumentException("Data of " + std::to_string(length) + " bytes");
    return length;
}

void requireBytes(void const* bytes, std::size_t length, char const* message) {
    if (!bytes && length > 0) throw NSInvalidArgumentException(std::string(message) + " nil argument");
}

// Eight bytes a step.
std::uint64_t hashOf(std::span<std::byte const> bytes) {
    std::uint64_t hash = bytes.size();
    while (!bytes.empty()) {
        std::size_t const count = std::min(bytes.size(), sizeof(std::uint64_t));
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), count);
        hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32;
        bytes = bytes.subspan(count);
    }
    return hash;
}

} // namespace

// The bytes of immutable or mutable data: which of the two it is, its class says.
class NSData::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(std::vector<std::byte> bytes) : m_bytes(std::move(bytes)) { checkedLength(m_bytes.size()); }

    std::vector<std::byte>& bytes() { return m_bytes; }

    bool isEqual(id const& other) const override {
        NSData const data = as<NSData>(other);
        return data != nil && std::ranges::equal(m_bytes, data.span());
    }
    std::uint64_t hash() const override { return hashOf(m_bytes); }
    // In hexadecimal, four bytes a group.
    NSString description() const override {
        constexpr std::u16string_view digits = u"0123456789abcdef";
        constexpr std::size_t groupSize = 4;
        std::u16string text = u"<";
        text.reserve(m_bytes.size() * 9 / 4 + 2);
        for (std::size_t index = 0; index < m_bytes.size(); ++index) {
            if (index > 0 && index % groupSize == 0) text.push_back(u' ');
            auto const byte = std::to_integer<unsigned>(m_bytes[index]);
            text.push_back(digits[byte >> 4]);
            text.push_back(digits[byte & 0xF]);
        }
        text.push_back(u'>');
        return makeString(std::move(text));
    }
    id copy() const override {
        if (isKindOf(classOf<NSMutableData>())) return adopt<NSData>(m_bytes);
        return id::retain(const_cast<Body*>(this));
    }
    id mutableCopy() const override { return adopt<NSMutableData>(m_bytes); }

private:
    std::vector<std::byte> m_bytes;
};

ClassDescription NSData::describeClass() {
    return {
        .name = "NSData",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSData>,
        .methods =
            {
                method<&NSData::length>("length"),
                method<&NSData::isEqualToData_>("isEqualToData:"),
                method<&NSData::writeToFile_atomically_>("writeToFile:atomically:"),
            },
    };
}

NSData NSData::data() { return adopt<NSData>(); }

NSData NSData::dataWithBytes_length_(void const* bytes, NSUInteger length) {
    requireBytes(bytes, length, "dataWithBytes:length:");
    return dataWithBytes({static_cast<std::byte const*>(bytes), length});
}

NSData NSData::dataWithBytes(std::span<std::byte const> bytes) {
    return adopt<NSData>(std::vector<std::byte>(bytes.begin(), bytes.end()));
}

NSData NSData::dataWithContentsOfFile_(NSString const& path) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes) return nil;
    Result<FileContents> contents = readFileAtPath(*bytes, LargestFile);
    return contents.hasValue() ? adopt<NSData>(contents.takeValue().bytes) : NSData(nil);
}

NSUInteger NSData::length() const { return static_cast<NSUInteger>(span().size()); }

std::byte const* NSData::bytes() const { return span().data(); }

std::span<std::byte const> NSData::span() const {
    Body* const body = bodyOf(*this);
    return body ? std::span<std::byte const>(body->bytes()) : std::span<std::byte const>();
}

bool NSData::isEqualToData_(NSData const& other) const { return isEqual_(other); }

NSData NSData::subdataWithRange_(NSRange range) const {
    if (*this == nil) return nil;
    checkRange(range, span().size(), "subdataWithRange:");
    return dataWithBytes(span().subspan(range.location, range.length));
}

bool NSData::writeToFile_atomically_(NSString const& path, BOOL atomically) const {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (*this == nil || !bytes) return false;
    return (atomically ? replaceFileAtPath(*bytes, span()) : overwriteFileAtPath(*bytes, span())).isDone();
}

ClassDescription NSMutableData::describeClass() {
    return {
        .name = "NSMutableData",
        .superclass = classOf<NSData>(),
        .makeBody = &makeEmptyBody<NSMutableData>,
        .methods =
            {
                method<&NSMutableData::appendData_>("appendData:"),
                method<&NSMutableData::setLength_>("setLength:"),
            },
    };
}

NSMutableData NSMutableData::data() { return adopt<NSMutableData>(); }

NSMutableData NSMutableData::dataWithData_(NSData const& other) {
    return other == nil ? data() : uncheckedCast<NSMutableData>(other.mutableCopy());
}

void NSMutableData::appendBytes_length_(void const* bytes, NSUInteger length) const {
    if (*this == nil || length == 0) return;
    requireBytes(bytes, length, "appendBytes:length:");
    std::vector<std::byte>& own = bodyOf(*this)->bytes();
    checkedLength(own.size() + length);
    // The bytes may be among those that move.
    auto const* const begin = static_cast<std::byte const*>(bytes);
    std::vector<std::byte> const added(begin, begin + length);
    own.insert(own.end(), added.begin(), added.end());
}

void NSMutableData::appendData_(NSData const& other) const { appendBytes_length_(other.bytes(), other.length()); }

void NSMutableData::setLength_(NSUInteger length) const {
    if (*this != nil) bodyOf(*this)->bytes().resize(checkedLength(length));
}

std::byte* NSMutableData::mutableBytes() const { return *this == nil ? nullptr : bodyOf(*this)->bytes().data(); }

} // namespace mac
