#include "platform/foundation/objects/Class.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/NSString.h"
#include <atomic>
#include <map>
#include <mutex>
#include <shared_mutex>

namespace mac {

// Rows by selector. Any thread reads them without a lock while a category adds some: each addition publishes a new
// table, and the old ones stay for those who are still reading.
class MethodTable {
public:
    void add(std::span<Method const> methods) {
        if (methods.empty()) return;
        std::lock_guard const guard(m_lock);
        auto rows = m_tables.empty() ? std::make_unique<Rows>() : std::make_unique<Rows>(*m_tables.back());
        for (Method const& method : methods)
            rows->insert_or_assign(SEL(method.selector), method);
        m_tables.push_back(std::move(rows));
        m_rows.store(m_tables.back().get(), std::memory_order_release);
    }

    Method const* find(SEL selector) const {
        Rows const* const rows = m_rows.load(std::memory_order_acquire);
        if (!rows) return nullptr;
        auto const row = rows->find(selector);
        return row == rows->end() ? nullptr : &row->second;
    }

private:
    using Rows = std::unordered_map<SEL, Method>;

    std::mutex m_lock;
    std::vector<std::unique_ptr<Rows const>> m_tables;
    std::atomic<Rows const*> m_rows{nullptr};
};

class Class::Body : public ObjectBody {
public:
    explicit Body(ClassDescription description) : m_description(std::move(description)) {
        m_methods.add(m_description.methods);
        m_classMethods.add(m_description.classMethods);
        for (Property const& property : m_description.properties)
            m_properties.emplace(property.key, property);
    }

    // The class and its superclasses, nearest first, until the function answers something.
    template <class Function>
    auto nearest(Function const& function) const -> decltype(function(*this)) {
        for (Body const* cls = this; cls; cls = bodyOf(cls->m_description.superclass)) {
            if (auto const result = function(*cls)) return result;
        }
        return nullptr;
    }

    bool isSubclassOf(ObjectBody const* other) const {
        for (Body const* cls = this; cls; cls = bodyOf(cls->m_description.superclass)) {
            if (cls == other) return true;
        }
        return false;
    }

    Method const* instanceMethod(SEL selector) const {
        return nearest([&](Body const& cls) { return cls.m_methods.find(selector); });
    }

    Method const* classMethod(SEL selector) const {
        return nearest([&](Body const& cls) { return cls.m_classMethods.find(selector); });
    }

    Property const* property(std::string_view key) const {
        return nearest([&](Body const& cls) -> Property const* {
            auto const row = cls.m_properties.find(key);
            return row == cls.m_properties.end() ? nullptr : &row->second;
        });
    }

    NSString description() const override { return NSString::stringWithUTF8String_(m_description.name); }
    id copy() const override { return m_self; }
    Method const* methodForSelector(SEL selector) const override {
        Method const* const method = classMethod(selector);
        return method ? method : ObjectBody::methodForSelector(selector);
    }

    enum class Initialization { NotYet, Begun, Done };

    ClassDescription m_description;
    // The handle that stands for the class everywhere, so that asking an object for its class touches no count.
    Class m_self;
    MethodTable m_methods;
    MethodTable m_classMethods;
    std::unordered_map<std::string_view, Property> m_properties;
    std::atomic<Initialization> m_initialization{Initialization::NotYet};
};

namespace {

// The classes by name. Never destroyed: objects outlive the statics of any one file.
class Registry {
public:
    static Registry& shared() {
        static Registry& registry = *std::make_unique<Registry>().release();
        return registry;
    }

    Class const& add(ClassDescription description) {
        bool const isClassOfClasses = description.name == "Class";
        auto made = std::make_unique<Class::Body>(std::move(description));
        std::lock_guard const guard(m_lock);
        auto const [row, isNew] = m_classes.try_emplace(std::string(made->m_description.name));
        if (!isNew) throw NSInvalidArgumentException("There are two classes named " + row->first);
        // The registry keeps the body's first reference for good.
        Class::Body* const body = made.release();
        body->m_self = uncheckedCast<Class>(id::retain(body));
        row->second = body;
        if (m_classOfClasses) body->setClass(m_classOfClasses->m_self);
        if (isClassOfClasses) becomeClassOfClasses(*body);
        return body->m_self;
    }

    Class find(std::string const& name) {
        std::shared_lock const guard(m_lock);
        auto const row = m_classes.find(name);
        return row == m_classes.end() ? Class() : row->second->m_self;
    }

private:
    // For those that came before it.
    void becomeClassOfClasses(Class::Body& body) {
        m_classOfClasses = &body;
        for (auto const& [name, registered] : m_classes)
            registered->setClass(body.m_self);
    }

    std::shared_mutex m_lock;
    std::map<std::string, Class::Body*> m_classes;
    Class::Body* m_classOfClasses{nullptr};
};

std::recursive_mutex& initializationLock() {
    static std::recursive_mutex& lock = *std::make_unique<std::recursive_mutex>().release();
    return lock;
}

Class const& noClass() {
    static Class const& none = *std::make_unique<Class>().release();
    return none;
}

} // namespace

Class const& registerClass(ClassDescription description) { return Registry::shared().add(std::move(description)); }

ClassDescription Class::describeClass() {
    return {
        .name = "Class",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                {"alloc", [](id const& receiver, std::span<id const>) { return as<Class>(receiver).alloc(); }},
                {"class", [](id const& receiver, std::span<id const>) { return receiver; }},
                {"superclass",
                 [](id const& receiver, std::span<id const>) -> id { return as<Class>(receiver).superclass(); }},
                method<&Class::isSubclassOfClass_>("isSubclassOfClass:"),
            },
    };
}

std::string_view Class::name() const { return *this == nil ? std::string_view() : bodyOf(*this)->m_description.name; }

Class Class::superclass() const { return *this == nil ? Class() : bodyOf(*this)->m_description.superclass; }

bool Class::isSubclassOfClass_(Class const& other) const {
    return *this != nil && bodyOf(*this)->isSubclassOf(other.body());
}

Class const& ObjectBody::isa() const { return m_class ? static_cast<Class::Body const*>(m_class)->m_self : noClass(); }

bool ObjectBody::isKindOf(Class const& cls) const {
    return m_class && static_cast<Class::Body const*>(m_class)->isSubclassOf(cls.body());
}

id Class::alloc() const {
    if (*this == nil || !bodyOf(*this)->m_description.makeBody) return nil;
    initializeOnce();
    ObjectBody* const body = bodyOf(*this)->m_description.makeBody();
    body->setClass(*this);
    id const object = id::retain(body);
    body->release();
    return object;
}

bool Class::instancesRespondToSelector_(SEL selector) const { return methodForSelector(selector) != nullptr; }

id Class::performClassSelector_(SEL selector) const {
    if (*this == nil) return nil;
    Method const* const method = bodyOf(*this)->classMethod(selector);
    if (!method)
        throw NSInvalidArgumentException(std::string(name()) + " has no class method " + std::string(selector.name()));
    return method->invoke(*this, {});
}

Method const* Class::methodForSelector(SEL selector) const {
    return *this == nil ? nullptr : bodyOf(*this)->instanceMethod(selector);
}

Property const* Class::propertyForKey(std::string_view key) const {
    return *this == nil ? nullptr : bodyOf(*this)->property(key);
}

void Class::addMethods(std::span<Method const> methods) const {
    if (*this != nil) bodyOf(*this)->m_methods.add(methods);
}

void Class::addClassMethods(std::span<Method const> methods) const {
    if (*this != nil) bodyOf(*this)->m_classMethods.add(methods);
}

void Class::initializeOnce() const {
    if (*this == nil) return;
    Body* const cls = bodyOf(*this);
    if (cls->m_initialization.load(std::memory_order_acquire) == Body::Initialization::Done) return;
    // Recursive: an initialize may make objects of its own class. Other threads wait until it is over.
    std::lock_guard const guard(initializationLock());
    if (cls->m_initialization.load() != Body::Initialization::NotYet) return;
    cls->m_initialization.store(Body::Initialization::Begun);
    // Once, also when it raises.
    auto const setDone = [](Body* done) {
        done->m_initialization.store(Body::Initialization::Done, std::memory_order_release);
    };
    std::unique_ptr<Body, decltype(setDone)> const ending(cls, setDone);
    superclass().initializeOnce();
    if (cls->m_description.initialize) cls->m_description.initialize();
}

Class NSClassFromString(NSString name) { return Registry::shared().find(name.UTF8String()); }

NSString NSStringFromClass(Class const& cls) {
    return cls == nil ? NSString() : NSString::stringWithUTF8String_(cls.name());
}

} // namespace mac
