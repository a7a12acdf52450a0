#pragma once

#include "platform/foundation/objects/ObjectBody.h"
#include "platform/foundation/objects/Selector.h"
#include "platform/foundation/objects/Types.h"
#include <initializer_list>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mac {

class NSArray;
class NSIndexSet;
class NSMutableArray;

// Any object, or nil. A handle is one counted pointer: passing it on shares the object, and a message to nil answers
// nil, 0, NO or an empty value. A handle may be used from any thread; the object behind it only where its class says
// so.
class id {
public:
    using Body = ObjectBody;

    constexpr id() = default;
    constexpr id(Nil) {}
    // A string object of the literal's UTF-8 text. Text in a char array that may change is not a literal.
    template <std::size_t N>
    id(char const (&literal)[N]) : id(stringOfLiteral({literal, N - 1})) {}
    template <std::size_t N>
    id(char (&)[N]) = delete;
    id(id const& other) : m_body(other.m_body) {
        if (m_body) m_body->retain();
    }
    id(id&& other) noexcept : m_body(std::exchange(other.m_body, nullptr)) {}
    id& operator=(id other) noexcept {
        std::swap(m_body, other.m_body);
        return *this;
    }
    ~id() {
        if (m_body) m_body->release();
    }

    friend bool operator==(id const& object, Nil) { return object.m_body == nullptr; }
    // isEqual_ is equality and isSame identity: which one is meant must be said.
    friend bool operator==(id const&, id const&) = delete;

    // The class of the object; nil: no class.
    Class class_() const;
    bool isKindOfClass_(Class const& cls) const;
    bool isMemberOfClass_(Class const& cls) const;
    // Nil is equal to nothing, not even to nil.
    bool isEqual_(id const& other) const { return m_body && other.m_body && m_body->isEqual(other); }
    // Equal objects have equal hashes. Linux: 64 bits, since the tables here use them all.
    std::uint64_t hash() const { return m_body ? m_body->hash() : 0; }
    NSString description() const;
    // An immutable object equal to this one: itself where it is immutable. Classes that cannot be copied raise
    // NSInvalidArgumentException.
    id copy() const { return m_body ? m_body->copy() : id(); }
    id mutableCopy() const { return m_body ? m_body->mutableCopy() : id(); }

    bool respondsToSelector_(SEL selector) const;
    // Sends the message through the class's method table. A selector that is not there raises
    // NSInvalidArgumentException.
    id performSelector_(SEL selector) const;
    id performSelector_withObject_(SEL selector, id const& object) const;
    id performSelector_withObject_withObject_(SEL selector, id const& first, id const& second) const;
    id performSelector_withObjects_(SEL selector, std::initializer_list<id> objects) const;

    // Key-value coding. An unknown key raises NSUndefinedKeyException; nil for a scalar NSInvalidArgumentException.
    id valueForKey_(NSString const& key) const;
    void setValue_forKey_(id const& value, NSString const& key) const;
    id valueForKeyPath_(NSString const& keyPath) const;
    void setValue_forKeyPath_(id const& value, NSString const& keyPath) const;
    // What the messages above end in for a key that the class does not know, and for nil set on a scalar.
    id valueForUndefinedKey_(NSString const& key) const;
    void setValue_forUndefinedKey_(id const& value, NSString const& key) const;
    void setNilValueForKey_(NSString const& key) const;
    // The null object stands for nil in the dictionary, both ways.
    NSDictionary dictionaryWithValuesForKeys_(NSArray const& keys) const;
    void setValuesForKeysWithDictionary_(NSDictionary const& values) const;
    // An array that stands for the one under the key, also for one that is set later: each change of it sets a changed
    // copy under the key, and observers of the key are told which indexes were inserted, removed or replaced. Nil
    // counts as empty; a value that is no array raises NSInvalidArgumentException on use. The array keeps the receiver.
    NSMutableArray mutableArrayValueForKey_(NSString const& key) const;
    NSMutableArray mutableArrayValueForKeyPath_(NSString const& keyPath) const;

    // Key-value observing: see KeyValueObserving.h.
    void addObserver_forKeyPath_options_context_(id const& observer, NSString const& keyPath, NSUInteger options,
                                                 void* context) const;
    void removeObserver_forKeyPath_(id const& observer, NSString const& keyPath) const;
    void willChangeValueForKey_(NSString const& key) const;
    void didChangeValueForKey_(NSString const& key) const;
    void willChange_valuesAtIndexes_forKey_(NSUInteger kind, NSIndexSet const& indexes, NSString const& key) const;
    void didChange_valuesAtIndexes_forKey_(NSUInteger kind, NSIndexSet const& indexes, NSString const& key) const;
    void observeValueForKeyPath_ofObject_change_context_(NSString const& keyPath, id const& object,
                                                         NSDictionary const& change, void* context) const;

    // For implementations: the body, not retained, null for nil; and a handle that takes a reference of its own.
    ObjectBody* body() const { return m_body; }
    static id retain(ObjectBody* body) {
        if (body) body->retain();
        return id(body, Adopt{});
    }

protected:
    struct Adopt {};
    id(ObjectBody* body, Adopt) : m_body(body) {}

private:
    static id stringOfLiteral(std::string_view utf8);

    ObjectBody* m_body{nullptr};
};

static_assert(sizeof(id) == sizeof(void*));

// The base of every handle class: `class NSArray : public Handle<NSArray, NSObject>`. Self names the body type `Body`
// and says in `describeClass` what its class object holds.
template <class Self, class Super>
class Handle : public Super {
public:
    using Superclass = Super;

    constexpr Handle() = default;
    constexpr Handle(Nil) {}

    // A new object, to be told one of its init messages. Only for classes with a body that starts empty.
    static Self alloc();

protected:
    using Adopt = id::Adopt;
    Handle(ObjectBody* body, Adopt adopt) : Super(body, adopt) {}
};

// The root of the class tree. Anything that is an object converts to it by `as`.
class NSObject : public Handle<NSObject, id> {
public:
    using Body = ObjectBody;
    using Handle::Handle;

    static struct ClassDescription describeClass();
};

// Casts without checking the class; for implementations that have checked it.
template <class T>
T uncheckedCast(id object) {
    T result;
    static_cast<id&>(result) = std::move(object);
    return result;
}

inline bool isSame(id const& a, id const& b) { return a.body() == b.body(); }

// The body of a handle as its own type; null for nil.
template <class T>
typename T::Body* bodyOf(T const& object) {
    return static_cast<typename T::Body*>(object.body());
}

}

#include "platform/foundation/objects/Class.h" // IWYU pragma: export
