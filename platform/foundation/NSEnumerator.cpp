#include "platform/foundation/NSEnumerator.h"
#include "platform/foundation/EnumeratorBody.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include <algorithm>

namespace mac {

NSEnumerator::Body::Body(NSArray const& array, bool isReverse)
    : m_array(array), m_count(array.count()), m_isReverse(isReverse) {}

id NSEnumerator::Body::next() {
    if (m_array.count() != m_count) throw NSGenericException("A collection was changed while it was enumerated");
    if (m_given == m_count) return nil;
    NSUInteger const index = m_isReverse ? m_count - 1 - m_given : m_given;
    ++m_given;
    return m_array.objectAtIndex_(index);
}

ClassDescription NSEnumerator::describeClass() {
    return {
        .name = "NSEnumerator",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&NSEnumerator::nextObject>("nextObject"),
                method<&NSEnumerator::allObjects>("allObjects"),
            },
    };
}

id NSEnumerator::nextObject() const { return *this == nil ? id() : bodyOf(*this)->next(); }

NSArray NSEnumerator::allObjects() const {
    if (*this == nil) return nil;
    std::vector<id> rest;
    for (id object = nextObject(); object != nil; object = nextObject())
        rest.push_back(object);
    return NSArray::arrayWithVector(std::move(rest));
}

NSEnumerator NSArray::objectEnumerator() const {
    return *this == nil ? NSEnumerator() : adopt<NSEnumerator>(*this, false);
}

NSEnumerator NSArray::reverseObjectEnumerator() const {
    return *this == nil ? NSEnumerator() : adopt<NSEnumerator>(*this, true);
}

} // namespace mac
