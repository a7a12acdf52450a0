#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include "platform/foundation/text/Format.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

class CFKeyedArchiverUIDRef::Body : public ObjectBody {
public:
    explicit Body(std::uint32_t value) : m_value(value) {}

    bool isEqual(id const& other) const override {
        CFKeyedArchiverUIDRef const identifier = as<CFKeyedArchiverUIDRef>(other);
        return identifier != nil && bodyOf(identifier)->m_value == m_value;
    }
    std::uint64_t hash() const override { return m_value; }
    NSString description() const override {
        return NSString::stringWithFormat_("<CFKeyedArchiverUID>{value = %u}", m_value);
    }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    std::uint32_t m_value;
};

ClassDescription CFKeyedArchiverUIDRef::describeClass() {
    return {.name = "CFKeyedArchiverUID", .superclass = classOf<NSObject>()};
}

CFKeyedArchiverUIDRef CFKeyedArchiverUIDCreate(CFAllocatorRef, std::uint32_t value) {
    return adopt<CFKeyedArchiverUIDRef>(value);
}

std::uint32_t CFKeyedArchiverUIDGetValue(CFKeyedArchiverUIDRef const& identifier) {
    return identifier == nil ? 0 : bodyOf(identifier)->m_value;
}

} // namespace mac
