#pragma once

#include "platform/foundation/HashedEntries.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSSet.h"
#include <vector>

namespace mac {

// The bodies of the mutable classes are those of the immutable ones: what differs is the class.

class NSArray::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(std::vector<id> objects)
        : m_objects(std::move(objects))
    {
    }

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override;
    NSString description() const override;
    id copy() const override;
    id mutableCopy() const override;
    id valueForKey(NSString const& key) override;
    void setValueForKey(id const& value, NSString const& key) override;
    id valueForKeyPath(NSString const& keyPath) override;

    std::vector<id> m_objects;
};

class NSSet::Body : public ObjectBody {
public:
    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override;
    NSString description() const override;
    id copy() const override;
    id mutableCopy() const override;
    id valueForKey(NSString const& key) override;
    void setValueForKey(id const& value, NSString const& key) override;
    id valueForKeyPath(NSString const& keyPath) override;

    HashedEntries m_entries;
};

class NSDictionary::Body : public ObjectBody {
public:
    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override;
    NSString description() const override;
    id copy() const override;
    id mutableCopy() const override;
    id valueForKey(NSString const& key) override;
    void setValueForKey(id const& value, NSString const& key) override;

    HashedEntries m_entries;
};

// The keys of the entries in their order, removed ones left out.
std::vector<id> keysOf(HashedEntries const& entries);

// A key path that begins with a collection operator ("@count", "@max.size", …) applied to the objects.
id valueOfCollectionOperator(std::span<id const> objects, NSString const& keyPath);
bool isCollectionOperator(NSString const& keyPath);

// The collection as nested old-style text, for people to read.
NSString descriptionOfCollection(id const& collection);

// Raises NSInvalidArgumentException for nil.
void requireObject(id const& object, char const* message);

}
