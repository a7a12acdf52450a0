#include "platform/foundation/CollectionBodies.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSet.h"

namespace mac {

namespace {

NSArray valuesForKeyPath(std::span<id const> objects, NSString const& keyPath)
{
    std::vector<id> values;
    for (id const& object : objects) {
        id value = keyPath == nil ? object : object.valueForKeyPath_(keyPath);
        if (value != nil && !isSame(value, NSNull::null()))
            values.push_back(std::move(value));
    }
    return NSArray::arrayWithVector(std::move(values));
}

double sum(NSArray const& values)
{
    double total = 0;
    for (id const& value : values)
        total += as<NSNumber>(value.performSelector_("doubleValue")).doubleValue();
    return total;
}

id extreme(NSArray const& values, NSComparisonResult wanted)
{
    id found;
    for (id const& value : values) {
        if (found == nil || as<NSNumber>(value.performSelector_withObject_("compare:", found)).intValue() == wanted)
            found = value;
    }
    return found;
}

NSArray distinct(NSArray const& values)
{
    return NSSet::setWithArray_(values).allObjects();
}

NSArray flattened(NSArray const& collections)
{
    NSMutableArray const all = NSMutableArray::array();
    for (id const& collection : collections) {
        NSSet const set = as<NSSet>(collection);
        all.addObjectsFromArray_(set == nil ? as<NSArray>(collection) : set.allObjects());
    }
    return uncheckedCast<NSArray>(all.copy());
}

}

bool isCollectionOperator(NSString const& keyPath)
{
    return keyPath.length() > 0 && keyPath.characterAtIndex_(0) == u'@';
}

id valueOfCollectionOperator(std::span<id const> objects, NSString const& keyPath)
{
    std::string const path = keyPath.UTF8String();
    std::size_t const dot = path.find('.');
    std::string const name = path.substr(0, dot);
    NSString const rest = dot == std::string::npos ? NSString() : NSString::stringWithUTF8String_(path.substr(dot + 1));
    if (name == "@count") {
        NSNumber const count = NSNumber::numberWithUnsignedInteger_(static_cast<NSUInteger>(objects.size()));
        return rest == nil ? id(count) : count.valueForKeyPath_(rest);
    }
    if (rest == nil)
        throw NSInvalidArgumentException("The collection operator " + name + " needs a key path");
    NSArray const values = valuesForKeyPath(objects, rest);
    if (name == "@sum")
        return NSNumber::numberWithDouble_(sum(values));
    if (name == "@avg")
        return NSNumber::numberWithDouble_(values.count() == 0 ? 0 : sum(values) / static_cast<double>(objects.size()));
    if (name == "@min")
        return extreme(values, NSOrderedAscending);
    if (name == "@max")
        return extreme(values, NSOrderedDescending);
    if (name == "@unionOfObjects")
        return values;
    if (name == "@distinctUnionOfObjects")
        return distinct(values);
    if (name == "@unionOfArrays")
        return flattened(values);
    if (name == "@distinctUnionOfArrays")
        return distinct(flattened(values));
    if (name == "@distinctUnionOfSets")
        return NSSet::setWithArray_(flattened(values));
    throw NSInvalidArgumentException("There is no collection operator " + name);
}

}
