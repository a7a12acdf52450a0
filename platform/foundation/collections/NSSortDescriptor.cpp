#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

class NSSortDescriptor::Body : public ObjectBody {
public:
    Body(NSString const& key, bool isAscending, SEL selector)
        : m_key(as<NSString>(key.copy())), m_isAscending(isAscending), m_selector(selector) {}

    bool isEqual(id const& other) const override {
        NSSortDescriptor const descriptor = as<NSSortDescriptor>(other);
        if (descriptor == nil) return false;
        bool const hasSameKey = isSame(m_key, descriptor.key()) || m_key.isEqual_(descriptor.key());
        return hasSameKey && m_isAscending == descriptor.ascending() && m_selector == descriptor.selector();
    }
    std::uint64_t hash() const override { return m_key.hash() * 2 + (m_isAscending ? 1 : 0); }
    NSString description() const override {
        NSString const direction = m_isAscending ? NSString("ascending") : NSString("descending");
        return NSString::stringWithFormat_("(%@, %@, %@)", m_key, direction, NSStringFromSelector(m_selector));
    }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    NSString const m_key;
    bool const m_isAscending;
    SEL const m_selector;
};

ClassDescription NSSortDescriptor::describeClass() {
    return {
        .name = "NSSortDescriptor",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&NSSortDescriptor::key>("key"),
                method<&NSSortDescriptor::ascending>("ascending"),
                method<&NSSortDescriptor::reversedSortDescriptor>("reversedSortDescriptor"),
                method<&NSSortDescriptor::compareObject_toObject_>("compareObject:toObject:"),
            },
    };
}

NSSortDescriptor NSSortDescriptor::sortDescriptorWithKey_ascending_selector_(NSString const& key, BOOL ascending,
                                                                             SEL selector) {
    return adopt<NSSortDescriptor>(key, static_cast<bool>(ascending), selector ? selector : SEL("compare:"));
}

NSSortDescriptor NSSortDescriptor::sortDescriptorWithKey_ascending_(NSString const& key, BOOL ascending) {
    return sortDescriptorWithKey_ascending_selector_(key, ascending, "compare:");
}

NSString NSSortDescriptor::key() const { return *this == nil ? NSString() : bodyOf(*this)->m_key; }

bool NSSortDescriptor::ascending() const { return *this != nil && bodyOf(*this)->m_isAscending; }

SEL NSSortDescriptor::selector() const { return *this == nil ? SEL() : bodyOf(*this)->m_selector; }

NSSortDescriptor NSSortDescriptor::reversedSortDescriptor() const {
    if (*this == nil) return nil;
    return sortDescriptorWithKey_ascending_selector_(key(), BOOL(!ascending()), selector());
}

NSComparisonResult NSSortDescriptor::compareObject_toObject_(id const& first, id const& second) const {
    if (*this == nil) return NSOrderedSame;
    return compareValues(valueOfObject(first), valueOfObject(second));
}

NSComparisonResult NSSortDescriptor::compareValues(id const& first, id const& second) const {
    if (*this == nil) return NSOrderedSame;
    NSComparisonResult const result = compareBySelector(first, second, selector());
    return ascending() ? result : static_cast<NSComparisonResult>(-result);
}

id NSSortDescriptor::valueOfObject(id const& object) const {
    return key().length() == 0 ? object : object.valueForKeyPath_(key());
}

NSComparisonResult compareBySelector(id const& first, id const& second, SEL selector) {
    if (first == nil || second == nil) {
        if (first == nil && second == nil) return NSOrderedSame;
        return first == nil ? NSOrderedAscending : NSOrderedDescending;
    }
    NSNumber const answer = as<NSNumber>(first.performSelector_withObject_(selector, second));
    int const result = answer.intValue();
    if (result == 0) return NSOrderedSame;
    return result < 0 ? NSOrderedAscending : NSOrderedDescending;
}

} // namespace mac
