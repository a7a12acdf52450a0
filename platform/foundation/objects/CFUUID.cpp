#include "platform/foundation/objects/CFUUID.h"
#include "platform/foundation/text/StringBody.h"
#include <cerrno>
#include <cstring>
#include <sys/random.h>

namespace mac {

class CFUUIDRef::Body : public ObjectBody {
public:
    explicit Body(CFUUIDBytes const& bytes) : m_bytes(bytes) {}

    bool isEqual(id const& other) const override {
        CFUUIDRef const uuid = as<CFUUIDRef>(other);
        return uuid != nil && bodyOf(uuid)->m_bytes == m_bytes;
    }
    std::uint64_t hash() const override {
        std::uint64_t half = 0;
        std::memcpy(&half, m_bytes.data(), sizeof half);
        return half;
    }
    NSString description() const override;
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    CFUUIDBytes m_bytes;
};

namespace {

NSString stringOf(CFUUIDBytes const& bytes) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    std::u16string text;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bool const beginsGroup = index == 4 || index == 6 || index == 8 || index == 10;
        if (beginsGroup) text.push_back(u'-');
        text.push_back(digits[bytes[index] >> 4]);
        text.push_back(digits[bytes[index] & 0xF]);
    }
    return makeString(std::move(text));
}

// So few bytes come whole or not at all.
bool fillWithRandomBits(CFUUIDBytes& bytes) {
    ssize_t count = 0;
    do {
        count = ::getrandom(bytes.data(), bytes.size(), 0);
    } while (count < 0 && errno == EINTR);
    return count == static_cast<ssize_t>(bytes.size());
}

} // namespace

NSString CFUUIDRef::Body::description() const { return stringOf(m_bytes); }

ClassDescription CFUUIDRef::describeClass() { return {.name = "CFUUID", .superclass = classOf<NSObject>()}; }

CFUUIDRef CFUUIDCreate(CFAllocatorRef) {
    CFUUIDBytes bytes{};
    if (!fillWithRandomBits(bytes)) return nil;
    constexpr std::uint8_t version = 0x40;
    constexpr std::uint8_t variant = 0x80;
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | version);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | variant);
    return adopt<CFUUIDRef>(bytes);
}

CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef const& uuid) { return uuid == nil ? CFUUIDBytes{} : bodyOf(uuid)->m_bytes; }

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef const& uuid) {
    return uuid == nil ? NSString(nil) : stringOf(bodyOf(uuid)->m_bytes);
}

} // namespace mac
