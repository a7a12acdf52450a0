#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

constexpr std::array<std::u16string_view, 9> kOperatorsWithKeyPath{u"@sum",
                                                                   u"@avg",
                                                                   u"@min",
                                                                   u"@max",
                                                                   u"@unionOfObjects",
                                                                   u"@distinctUnionOfObjects",
                                                                   u"@unionOfArrays",
                                                                   u"@distinctUnionOfArrays",
                                                                   u"@distinctUnionOfSets"};

// What is missing or null is left out. A getter may change the collection.
NSArray valuesForKeyPath(std::span<id const> objects, NSString const& keyPath) {
    std::vector<id> const kept(objects.begin(), objects.end());
    std::vector<id> values;
    for (id const& object : kept) {
        id value = object.valueForKeyPath_(keyPath);
        if (value != nil && !isSame(value, NSNull::null())) values.push_back(std::move(value));
    }
    return NSArray::arrayWithVector(std::move(values));
}

double sum(NSArray const& values) {
    SEL const doubleValue = "doubleValue";
    double total = 0;
    for (id const& value : values)
        total += as<NSNumber>(value.performSelector_(doubleValue)).doubleValue();
    return total;
}

// Missing values count as zero.
double average(NSArray const& values, std::size_t count) {
    return count == 0 ? 0 : sum(values) / static_cast<double>(count);
}

id extreme(NSArray const& values, NSComparisonResult wanted) {
    SEL const compare = "compare:";
    id found;
    for (id const& value : values) {
        if (found == nil || as<NSNumber>(value.performSelector_withObject_(compare, found)).intValue() == wanted)
            found = value;
    }
    return found;
}

NSArray distinct(NSArray const& values) { return NSSet::setWithArray_(values).allObjects(); }

NSArray flattened(NSArray const& collections) {
    NSMutableArray const all = NSMutableArray::array();
    for (id const& collection : collections) {
        NSSet const set = as<NSSet>(collection);
        NSArray const array = set == nil ? as<NSArray>(collection) : set.allObjects();
        if (array == nil) throw NSInvalidArgumentException("A union of collections meets what is none");
        all.addObjectsFromArray_(array);
    }
    return uncheckedCast<NSArray>(all.copy());
}

} // namespace

bool isCollectionOperator(NSString const& keyPath) {
    return keyPath.length() > 0 && keyPath.characterAtIndex_(0) == u'@';
}

id valueOfCollectionOperator(std::span<id const> objects, NSString const& keyPath) {
    std::u16string_view const path = keyPath.codeUnits();
    std::size_t const dot = path.find(u'.');
    std::u16string_view const name = path.substr(0, dot);
    NSString const rest =
        dot == std::u16string_view::npos ? NSString() : NSString::stringWithCodeUnits(path.substr(dot + 1));
    if (name == u"@count") {
        // What stands right of it is ignored.
        return NSNumber::numberWithUnsignedInteger_(static_cast<NSUInteger>(objects.size()));
    }
    if (std::ranges::find(kOperatorsWithKeyPath, name) == kOperatorsWithKeyPath.end())
        throw NSUndefinedKeyException("There is no collection operator in the key path " + keyPath.UTF8String());
    if (rest == nil)
        throw NSInvalidArgumentException("The collection operator " + keyPath.UTF8String() + " needs a key path");
    NSArray const values = valuesForKeyPath(objects, rest);
    if (name == u"@sum") return NSNumber::numberWithDouble_(sum(values));
    if (name == u"@avg") return NSNumber::numberWithDouble_(average(values, objects.size()));
    if (name == u"@min") return extreme(values, NSOrderedAscending);
    if (name == u"@max") return extreme(values, NSOrderedDescending);
    if (name == u"@unionOfObjects") return values;
    if (name == u"@distinctUnionOfObjects") return distinct(values);
    if (name == u"@unionOfArrays") return flattened(values);
    if (name == u"@distinctUnionOfArrays") return distinct(flattened(values));
    return NSSet::setWithArray_(flattened(values));
}

} // namespace mac
