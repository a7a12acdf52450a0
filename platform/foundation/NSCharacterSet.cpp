#include "platform/foundation/NSCharacterSet.h"
#include "platform/foundation/CharacterClasses.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include <bitset>
#include <memory>

namespace mac {

class NSCharacterSet::Body : public ObjectBody {
public:
    using Members = std::bitset<0x10000>;

    explicit Body(Members const& members) : m_members(members) {}

    Members const& members() const { return m_members; }
    bool isEqual(id const& other) const override {
        NSCharacterSet const set = as<NSCharacterSet>(other);
        return set != nil && bodyOf(set)->m_members == m_members;
    }
    std::uint64_t hash() const override { return std::hash<Members>()(m_members); }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

private:
    Members m_members;
};

namespace {

// A set that objects may ask for until the program's last instruction.
template <class Test>
NSCharacterSet const* neverDestroyed(Test const& isMember) {
    NSCharacterSet::Body::Members members;
    for (std::uint32_t unit = 0; unit < members.size(); ++unit)
        members[unit] = isMember(static_cast<char16_t>(unit));
    return std::make_unique<NSCharacterSet>(adopt<NSCharacterSet>(members)).release();
}

} // namespace

ClassDescription NSCharacterSet::describeClass() {
    ClassDescription description{.name = "NSCharacterSet", .superclass = classOf<NSObject>()};
    return description;
}

NSCharacterSet NSCharacterSet::characterSetWithCharactersInString_(NSString const& characters) {
    if (characters == nil) throw NSInvalidArgumentException("characterSetWithCharactersInString: nil argument");
    Body::Members members;
    for (char16_t const unit : characters.codeUnits())
        members[unit] = true;
    return adopt<NSCharacterSet>(members);
}

NSCharacterSet NSCharacterSet::whitespaceCharacterSet() {
    static NSCharacterSet const& set = *neverDestroyed([](char16_t unit) { return isWhitespace(unit); });
    return set;
}

NSCharacterSet NSCharacterSet::whitespaceAndNewlineCharacterSet() {
    static NSCharacterSet const& set =
        *neverDestroyed([](char16_t unit) { return isWhitespace(unit) || isNewline(unit); });
    return set;
}

bool NSCharacterSet::characterIsMember_(unichar character) const {
    Body const* const body = bodyOf(*this);
    return body && body->members()[character];
}

} // namespace mac
