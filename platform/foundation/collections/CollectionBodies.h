#pragma once

#include "platform/foundation/collections/HashedEntries.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include <memory>
#include <vector>

namespace mac {

class ArrayBehindKey;

// The bodies of the mutable classes are those of the immutable ones: what differs is the class.

class NSArray::Body : public ObjectBody {
public:
    Body();
    explicit Body(std::vector<id> objects);
    // Makes an array that reads and changes the one behind a key of an object (mutableArrayValueForKey_).
    explicit Body(std::unique_ptr<ArrayBehindKey> source);
    ~Body() override;

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override;
    NSString description() const override;
    id copy() const override;
    id mutableCopy() const override;
    id valueForKey(NSString const& key) override;
    void setValueForKey(id const& value, NSString const& key) override;
    id valueForKeyPath(NSString const& keyPath) override;
    void setValueForKeyPath(id const& value, NSString const& keyPath) override;

    // The members; those of the array behind the key if this one stands for it.
    std::span<id const> objects() const { return m_source ? objectsOfSource() : std::span<id const>(m_objects); }

    std::vector<id> m_objects;
    std::unique_ptr<ArrayBehindKey> m_source;
    // Counts insertions and removals, but no replacements: an enumeration notices them by it.
    std::uint32_t m_changes{0};

private:
    std::span<id const> objectsOfSource() const;
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
    void setValueForKeyPath(id const& value, NSString const& keyPath) override;

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

// One step into a collection by a walk that may meet nested, or cyclic, collections; the walk stops where it is too
// deep.
class NestedStep {
public:
    NestedStep(unsigned& depth, unsigned deepest) : m_depth(depth), m_isTooDeep(depth++ >= deepest) {}
    ~NestedStep() { --m_depth; }
    NestedStep(NestedStep const&) = delete;
    NestedStep& operator=(NestedStep const&) = delete;

    bool isTooDeep() const { return m_isTooDeep; }

private:
    unsigned& m_depth;
    bool m_isTooDeep;
};

// A collection nested deeper than this adds only its count to the hash of what holds it.
class HashingStep : public NestedStep {
public:
    HashingStep() : NestedStep(s_depth, 8) {}

private:
    static thread_local unsigned s_depth;
};

// Collections nested deeper than this are equal only if they are the same.
class ComparingStep : public NestedStep {
public:
    ComparingStep() : NestedStep(s_depth, 1024) {}

private:
    static thread_local unsigned s_depth;
};

inline std::vector<id> copied(std::span<id const> objects) { return {objects.begin(), objects.end()}; }

// Whether both are one object, or equal; nil is the same as nil.
inline bool isSameOrEqual(id const& a, id const& b) { return isSame(a, b) || a.isEqual_(b); }

// The collection as nested old-style text, for people to read: dictionaries with string keys in the order of their
// keys. What holds itself, or would become too long, is cut with dots.
NSString descriptionOfCollection(id const& collection);

// Raises NSRangeException for an index of an array of so many objects.
[[noreturn]] void raiseRange(std::size_t index, std::size_t count);

// Raises NSInvalidArgumentException for nil.
void requireObject(id const& object, char const* message);

}
