#pragma once

#include "platform/foundation/objects/Object.h"
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace mac {

using Invocation = id (*)(id const& receiver, std::span<id const> arguments);

// A row of a class's method table. Method.h makes one from a member or free function. The selector's text stays for
// good.
struct Method {
    std::string_view selector;
    Invocation invoke{nullptr};
    // Whether it answers something at all: key-value coding reads no key through a message that only does something.
    bool answersValue{true};
};

// A row of a class's key table: what key-value coding calls. Without a setter the key can only be read.
struct Property {
    std::string_view key;
    id (*get)(id const& object){nullptr};
    void (*set)(id const& object, id const& value){nullptr};
    bool isScalar{false};
};

// An object that stands for a class: its name, superclass, methods and keys. Class objects live as long as the program
// and are known by name from the moment of their registration. A message sent to one is a class method.
class Class : public Handle<Class, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    std::string_view name() const;
    Class superclass() const;
    bool isSubclassOfClass_(Class const& other) const;
    // A new object of the class, not initialised yet; nil when the class has no body of its own that starts empty.
    id alloc() const;
    bool instancesRespondToSelector_(SEL selector) const;
    // A class method, by selector; raises NSInvalidArgumentException when there is none.
    id performClassSelector_(SEL selector) const;

    // For implementations: the row of the nearest class that has one, or null.
    Method const* methodForSelector(SEL selector) const;
    Property const* propertyForKey(std::string_view key) const;
    // A category: further methods of an existing class, and further class methods. A later one of the same selector
    // wins.
    void addMethods(std::span<Method const> methods) const;
    void addClassMethods(std::span<Method const> methods) const;
    // Sends +initialize to the superclass and to this class, once each, before the first instance. Other threads that
    // make an instance meanwhile wait, so an initialize waits for no thread.
    void initializeOnce() const;
};

// What a class tells of itself, once.
struct ClassDescription {
    std::string_view name;
    Class superclass{};
    // Makes an empty body for alloc; null if the class has none that starts empty.
    ObjectBody* (*makeBody)(){nullptr};
    // The class's +initialize; null if it has none.
    void (*initialize)(){nullptr};
    std::vector<Method> methods{};
    std::vector<Method> classMethods{};
    std::vector<Property> properties{};
};

Class const& registerClass(ClassDescription description);
// The registered class of that name, or nil. A program's classes are registered before main, see Registration.h.
Class NSClassFromString(NSString name);
NSString NSStringFromClass(Class const& cls);

// The class object of a handle type, registered on first use.
template <class T>
Class const& classOf() {
    static Class const& cls = registerClass(T::describeClass());
    return cls;
}

// The object as a T; nil when it is nil or of another class. The only downcast.
template <class T>
T as(id const& object) {
    if (!object.isKindOfClass_(classOf<T>())) return nil;
    return uncheckedCast<T>(object);
}

// A new object with a body made from the arguments, owned by the handle. The only `new` of a body.
template <class T, class... Arguments>
T adopt(Arguments&&... arguments) {
    Class const& cls = classOf<T>();
    cls.initializeOnce();
    auto* body = new typename T::Body(std::forward<Arguments>(arguments)...);
    body->setClass(cls);
    T result = uncheckedCast<T>(id::retain(body));
    body->release();
    return result;
}

template <class T>
ObjectBody* makeEmptyBody() {
    return new typename T::Body();
}

template <class Self, class Super>
Self Handle<Self, Super>::alloc() {
    return uncheckedCast<Self>(classOf<Self>().alloc());
}

}
