#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/objects/ArrayBehindKey.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include <algorithm>

namespace mac {

namespace {

std::vector<id> upToNil(std::initializer_list<id> objects) {
    auto const* const end = std::ranges::find_if(objects, [](id const& object) { return object == nil; });
    return {objects.begin(), end};
}

} // namespace

thread_local unsigned HashingStep::s_depth = 0;
thread_local unsigned ComparingStep::s_depth = 0;

void raiseRange(std::size_t index, std::size_t count) {
    throw NSRangeException("Index " + std::to_string(index) + " is beyond the " + std::to_string(count) +
                           " objects of the array");
}

void requireObject(id const& object, char const* message) {
    if (object == nil) throw NSInvalidArgumentException(std::string(message) + ": the object is nil");
}

NSArray::Body::Body() = default;

NSArray::Body::Body(std::vector<id> objects) : m_objects(std::move(objects)) {}

NSArray::Body::Body(std::unique_ptr<ArrayBehindKey> source) : m_source(std::move(source)) {}

NSArray::Body::~Body() = default;

std::span<id const> NSArray::Body::objectsOfSource() const { return m_source->objects(); }

bool NSArray::Body::isEqual(id const& other) const {
    if (other.body() == this) return true;
    NSArray const array = as<NSArray>(other);
    ComparingStep const step;
    return array != nil && !step.isTooDeep() && std::ranges::equal(objects(), array.objects(), isSameOrEqual);
}

std::uint64_t NSArray::Body::hash() const {
    std::span<id const> const members = objects();
    std::uint64_t hash = members.size();
    HashingStep const step;
    if (step.isTooDeep()) return hash;
    for (id const& object : members)
        hash = combineHashes(hash, object.hash());
    return hash;
}

NSString NSArray::Body::description() const { return descriptionOfCollection(id::retain(const_cast<Body*>(this))); }

id NSArray::Body::copy() const {
    if (isKindOf(classOf<NSMutableArray>())) return adopt<NSArray>(copied(objects()));
    return id::retain(const_cast<Body*>(this));
}

id NSArray::Body::mutableCopy() const { return adopt<NSMutableArray>(copied(objects())); }

id NSArray::Body::valueForKey(NSString const& key) {
    if (isCollectionOperator(key)) return valueOfCollectionOperator(objects(), key);
    // Copied, since a getter may change the array.
    std::vector<id> values = copied(objects());
    for (id& object : values) {
        id value = object.valueForKey_(key);
        object = value == nil ? id(NSNull::null()) : std::move(value);
    }
    return adopt<NSArray>(std::move(values));
}

void NSArray::Body::setValueForKey(id const& value, NSString const& key) {
    // An observer may change the array.
    for (id const& object : copied(objects()))
        object.setValue_forKey_(value, key);
}

id NSArray::Body::valueForKeyPath(NSString const& keyPath) {
    return isCollectionOperator(keyPath) ? valueOfCollectionOperator(objects(), keyPath)
                                         : ObjectBody::valueForKeyPath(keyPath);
}

void NSArray::Body::setValueForKeyPath(id const& value, NSString const& keyPath) {
    for (id const& object : copied(objects()))
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
                method<&NSArray::objectsAtIndexes_>("objectsAtIndexes:"),
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

NSArray NSArray::arrayWithArray_(NSArray const& other) { return adopt<NSArray>(copied(other.objects())); }

NSArray NSArray::arrayWithVector(std::vector<id> objects) {
    for (id const& object : objects)
        requireObject(object, "An array");
    return adopt<NSArray>(std::move(objects));
}

std::span<id const> NSArray::objects() const { return *this == nil ? std::span<id const>() : bodyOf(*this)->objects(); }

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
    NSArray const self = bodyOf(*this)->m_source ? uncheckedCast<NSArray>(copy()) : *this;
    id const sought = object;
    // By index and held, since a comparison may change the array.
    for (std::size_t index = 0; index < self.objects().size(); ++index) {
        id const member = self.objects()[index];
        if (isSameOrEqual(member, sought)) return static_cast<NSUInteger>(index);
    }
    return NSNotFound;
}

NSUInteger NSArray::indexOfObjectIdenticalTo_(id const& object) const {
    if (*this == nil) return 0;
    auto const found = std::ranges::find_if(objects(), [&](id const& member) { return isSame(member, object); });
    return found == objects().end() ? NSNotFound : static_cast<NSUInteger>(found - objects().begin());
}

NSArray NSArray::arrayByAddingObject_(id const& object) const {
    if (*this == nil) return nil;
    requireObject(object, "Adding to an array");
    std::vector<id> all = copied(objects());
    all.push_back(object);
    return adopt<NSArray>(std::move(all));
}

NSArray NSArray::arrayByAddingObjectsFromArray_(NSArray const& other) const {
    if (*this == nil) return nil;
    std::span<id const> const added = other.objects();
    std::vector<id> all;
    all.reserve(objects().size() + added.size());
    all.insert(all.end(), objects().begin(), objects().end());
    all.insert(all.end(), added.begin(), added.end());
    return adopt<NSArray>(std::move(all));
}

NSArray NSArray::subarrayWithRange_(NSRange range) const {
    if (*this == nil) return nil;
    std::size_t const count = objects().size();
    if (range.location > count || range.length > count - range.location) raiseRange(range.location, count);
    std::span<id const> const part = objects().subspan(range.location, range.length);
    return adopt<NSArray>(std::vector<id>(part.begin(), part.end()));
}

NSArray NSArray::objectsAtIndexes_(NSIndexSet const& indexes) const {
    if (*this == nil) return nil;
    std::span<id const> const all = objects();
    std::vector<id> found;
    found.reserve(indexes.count());
    for (NSRange const range : indexes.ranges()) {
        if (range.location + range.length > all.size()) raiseRange(range.location + range.length - 1, all.size());
        std::ranges::copy(all.subspan(range.location, range.length), std::back_inserter(found));
    }
    return adopt<NSArray>(std::move(found));
}

void NSArray::addObserver_toObjectsAtIndexes_forKeyPath_options_context_(id const& observer, NSIndexSet const& indexes,
                                                                         NSString const& keyPath, NSUInteger options,
                                                                         void* context) const {
    for (id const& object : objectsAtIndexes_(indexes))
        object.addObserver_forKeyPath_options_context_(observer, keyPath, options, context);
}

void NSArray::removeObserver_fromObjectsAtIndexes_forKeyPath_(id const& observer, NSIndexSet const& indexes,
                                                              NSString const& keyPath) const {
    for (id const& object : objectsAtIndexes_(indexes))
        object.removeObserver_forKeyPath_(observer, keyPath);
}

NSString NSArray::componentsJoinedByString_(NSString const& separator) const {
    if (*this == nil) return nil;
    std::u16string joined;
    NSString const between = separator;
    // Copied, since a description may change the array.
    for (bool isFirst = true; id const& object : copied(objects())) {
        if (!isFirst) joined += between.codeUnits();
        isFirst = false;
        joined += object.description().codeUnits();
    }
    return NSString::stringWithCodeUnits(joined);
}

bool NSArray::isEqualToArray_(NSArray const& other) const { return isEqual_(other); }

} // namespace mac
