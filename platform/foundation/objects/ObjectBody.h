#pragma once

#include "platform/foundation/objects/Types.h"
#include <atomic>
#include <cstdint>
#include <memory>

namespace mac {

class Class;
class id;
class NSDictionary;
class NSString;
class ObjectAssociations;
class SEL;
struct Method;

// What a handle points at: the class, the reference count and the data of one object. Bodies of the framework's and the
// program's classes derive from their superclass's body. Handles own it together; the last one to go deletes it.
class ObjectBody {
public:
    ObjectBody();
    virtual ~ObjectBody();
    ObjectBody(ObjectBody const&) = delete;
    ObjectBody& operator=(ObjectBody const&) = delete;

    // Implement the messages of the same names; subclasses override them. The arguments may be nil.
    virtual bool isEqual(id const& other) const;
    virtual std::uint64_t hash() const;
    virtual NSString description() const;
    virtual id copy() const;
    virtual id mutableCopy() const;
    virtual id valueForKey(NSString const& key);
    virtual void setValueForKey(id const& value, NSString const& key);
    virtual id valueForUndefinedKey(NSString const& key);
    virtual void setValueForUndefinedKey(id const& value, NSString const& key);
    virtual void setNilValueForKey(NSString const& key);
    virtual id valueForKeyPath(NSString const& keyPath);
    virtual void setValueForKeyPath(id const& value, NSString const& keyPath);
    virtual void observeValueForKeyPath(NSString const& keyPath, id const& object, NSDictionary const& change,
                                        void* context);

    // The row that answers a message, or null. A class object answers its class methods first.
    virtual Method const* methodForSelector(SEL selector) const;

    // The class; nil only for a body that no handle has yet. Set once, when the body is made.
    Class const& isa() const;
    void setClass(Class const& cls);
    bool isKindOf(Class const& cls) const;

    void retain() const { m_count.fetch_add(1, std::memory_order_relaxed); }
    void release() const;
    // Takes a reference unless the last one has gone already; for weak references.
    bool retainUnlessDying() const;

    // Weak references and observers, made on first need.
    ObjectAssociations& associations();
    ObjectAssociations* associationsIfAny() const { return m_associations.load(std::memory_order_acquire); }

private:
    // A class object's body; not counted, since class objects stay.
    ObjectBody* m_class{nullptr};
    mutable std::atomic<std::uint32_t> m_count{1};
    std::atomic<ObjectAssociations*> m_associations{nullptr};
};

}
