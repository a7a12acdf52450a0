#include "platform/foundation/NSArray.h"
#include "platform/foundation/CollectionBodies.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSPredicate.h"
#include <algorithm>

namespace mac {

namespace {

[[noreturn]] void raiseRange(NSUInteger index, std::size_t count) {
    throw NSRangeException("Index " + std::to_string(index) + " is beyond the " + std::to_string(count) +
                           " objects of the array");
}

std::vector<id> upToNil(std::initializer_list<id> objects) {
    auto const* const end = std::ranges::find_if(objects, [](id const& object) { return object == nil; });
    return {objects.begin(), end};
}

// The elements' values, null where one has none. They are copied, since a getter may change the array.
template <class Value>
NSArray valuesOf(std::vector<id> const& objects, Value const& valueOf) {
    std::vector<id> values = objects;
    for (id& object : values) {
        id value = valueOf(object);
        object = value == nil ? id(NSNull::null()) : std::move(value);
    }
    return adopt<NSArray>(std::move(values));
}

} // namespace

thread_local unsigned HashingStep::s_depth = 0;
thread_local unsigned ComparingStep::s_depth = 0;

void requireObject(id const& object, char const* message) {
    if (object == nil) throw NSInvalidArgumentException(std::string(message) + ": the object is nil");
}

bool NSArray::Body::isEqual(id const& other) const {
    if (other.body() == this) return true;
    NSArray const array = as<NSArray>(other);
    ComparingStep const step;
    return array != nil && !step.isTooDeep() && std::ranges::equal(m_objects, array.objects(), isSameOrEqual);
}

std::uint64_t NSArray::Body::hash() const {
    std::uint64_t hash = m_objects.size();
    HashingStep const step;
    if (step.isTooDeep()) return hash;
    for (id const& object : m_objects)
        hash = combineHashes(hash, object.hash());
    return hash;
}

NSString NSArray::Body::description() const { return descriptionOfCollection(id::retain(const_cast<Body*>(this))); }

id NSArray::Body::copy() const {
    if (isKindOf(classOf<NSMutableArray>())) return adopt<NSArray>(m_objects);
    return id::retain(const_cast<Body*>(this));
}

id NSArray::Body::mutableCopy() const { return adopt<NSMutableArray>(m_objects); }

id NSArray::Body::valueForKey(NSString const& key) {
    if (isCollectionOperator(key)) return valueOfCollectionOperator(m_objects, key);
    return valuesOf(m_objects, [&](id const& object) { return object.valueForKey_(key); });
}

void NSArray::Body::setValueForKey(id const& value, NSString const& key) {
    // An observer may change the array.
    std::vector<id> const objects = m_objects;
    for (id const& object : objects)
        object.setValue_forKey_(value, key);
}

id NSArray::Body::valueForKeyPath(NSString const& keyPath) {
    if (isCollectionOperator(keyPath)) return valueOfCollectionOperator(m_objects, keyPath);
    return valuesOf(m_objects, [&](id const& object) { return object.valueForKeyPath_(keyPath); });
}

void NSArray::Body::setValueForKeyPath(id const& value, NSString const& keyPath) {
    std::vector<id> const objects = m_objects;
    for (id const& object : objects)
        object.setValue_forKeyPath_(value, keyPath);
}

ClassDescription NSArray::describeClass() {
    return {
        .name = "NSArray",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSArray>,
        .methods =
            {
                method<&NSArray::count>("count"),
                method<&NSArray::objectAtIndex_>("objectAtIndex:"),
                method<&NSArray::lastObject>("lastObject"),
                method<&NSArray::containsObject_>("containsObject:"),
                method<&NSArray::indexOfObject_>("indexOfObject:"),
                method<&NSArray::isEqualToArray_>("isEqualToArray:"),
                method<&NSArray::componentsJoinedByString_>("componentsJoinedByString:"),
                method<&NSArray::objectEnumerator>("objectEnumerator"),
                method<&NSArray::reverseObjectEnumerator>("reverseObjectEnumerator"),
                method<&NSArray::filteredArrayUsingPredicate_>("filteredArrayUsingPredicate:"),
                method<&NSArray::sortedArrayUsingDescriptors_>("sortedArrayUsingDescriptors:"),
            },
    };
}

NSArray NSArray::array() {
    // Never destroyed: other objects may ask for it until the program's last instruction.
    static NSArray const& empty = *std::make_unique<NSArray>(adopt<NSArray>()).release();
    return empty;
}

NSArray NSArray::arrayWithObject_(id const& object) {
    requireObject(object, "An array of one object");
    return adopt<NSArray>(std::vector<id>{object});
}

NSArray NSArray::arrayWithObjects_(std::initializer_list<id> objects) { return adopt<NSArray>(upToNil(objects)); }

NSArray NSArray::arrayWithArray_(NSArray const& other) {
    return adopt<NSArray>(std::vector<id>(other.begin(), other.end()));
}

NSArray NSArray::arrayWithVector(std::vector<id> objects) {
    for (id const& object : objects)
        requireObject(object, "An array");
    return adopt<NSArray>(std::move(objects));
}

std::span<id const> NSArray::objects() const {
    return *this == nil ? std::span<id const>() : std::span<id const>(bodyOf(*this)->m_objects);
}

NSUInteger NSArray::count() const { return static_cast<NSUInteger>(objects().size()); }

id NSArray::objectAtIndex_(NSUInteger index) const {
    if (*this == nil) return nil;
    if (index >= objects().size()) raiseRange(index, objects().size());
    return objects()[index];
}

id NSArray::lastObject() const { return objects().empty() ? id() : objects().back(); }

bool NSArray::containsObject_(id const& object) const { return *this != nil && indexOfObject_(object) != NSNotFound; }

NSUInteger NSArray::indexOfObject_(id const& object) const {
    if (*this == nil) return 0;
    auto const found = std::ranges::find_if(objects(), [&](id const& member) { return isSameOrEqual(member, object); });
    return found == objects().end() ? NSNotFound : static_cast<NSUInteger>(found - objects().begin());
}

NSUInteger NSArray::indexOfObjectIdenticalTo_(id const& object) const {
    if (*this == nil) return 0;
    auto const found = std::ranges::find_if(objects(), [&](id const& member) { return isSame(member, object); });
    return found == objects().end() ? NSNotFound : static_cast<NSUInteger>(found - objects().begin());
}

NSArray NSArray::arrayByAddingObject_(id const& object) const {
    if (*this == nil) return nil;
    requireObject(object, "Adding to an array");
    std::vector<id> all(begin(), end());
    all.push_back(object);
    return adopt<NSArray>(std::move(all));
}

NSArray NSArray::arrayByAddingObjectsFromArray_(NSArray const& other) const {
    if (*this == nil) return nil;
    std::vector<id> all(begin(), end());
    all.insert(all.end(), other.begin(), other.end());
    return adopt<NSArray>(std::move(all));
}

NSArray NSArray::subarrayWithRange_(NSRange range) const {
    if (*this == nil) return nil;
    std::size_t const count = objects().size();
    if (range.location > count || range.length > count - range.location) raiseRange(range.location, count);
    std::span<id const> const part = objects().subspan(range.location, range.length);
    return adopt<NSArray>(std::vector<id>(part.begin(), part.end()));
}

NSString NSArray::componentsJoinedByString_(NSString const& separator) const {
    if (*this == nil) return nil;
    std::u16string joined;
    for (bool isFirst = true; id const& object : objects()) {
        if (!isFirst) joined += separator.codeUnits();
        isFirst = false;
        joined += object.description().codeUnits();
    }
    return NSString::stringWithCodeUnits(joined);
}

bool NSArray::isEqualToArray_(NSArray const& other) const { return isEqual_(other); }

} // namespace mac
