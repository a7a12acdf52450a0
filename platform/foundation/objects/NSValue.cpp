#include "platform/foundation/objects/NSValue.h"

namespace mac {

class NSValue::Body : public ObjectBody {
public:
    Body(void const* address, std::type_info const& type) : m_address(address), m_type(type) {}

    bool isEqual(id const& other) const override {
        NSValue const value = as<NSValue>(other);
        return value != nil && bodyOf(value)->m_address == m_address && bodyOf(value)->m_type == m_type;
    }
    std::uint64_t hash() const override { return reinterpret_cast<std::uintptr_t>(m_address) >> 3; }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    void const* m_address;
    std::type_info const& m_type;
};

ClassDescription NSValue::describeClass() { return {.name = "NSValue", .superclass = classOf<NSObject>()}; }

NSValue NSValue::valueWithAddress(void const* address, std::type_info const& type) {
    return adopt<NSValue>(address, type);
}

void const* NSValue::addressOfType(std::type_info const& type) const {
    return *this != nil && bodyOf(*this)->m_type == type ? bodyOf(*this)->m_address : nullptr;
}

} // namespace mac
