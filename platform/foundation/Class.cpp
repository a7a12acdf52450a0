#include "platform/foundation/Class.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSString.h"
#include <atomic>
#include <map>
#include <mutex>
#include <shared_mutex>

namespace mac {

class Class::Body : public ObjectBody {
public:
    explicit Body(ClassDescription description)
        : m_description(std::move(description))
    {
        addMethods(m_methods, m_description.methods);
        addMethods(m_classMethods, m_description.classMethods);
        for (Property const& property : m_description.properties)
            m_properties.emplace(property.key, property);
    }

    using MethodTable = std::unordered_map<SEL, Method>;

    static void addMethods(MethodTable& table, std::span<Method const> methods)
    {
        for (Method const& method : methods)
            table.insert_or_assign(SEL(method.selector), method);
    }

    // The class and its superclasses, nearest first, until the function answers something.
    template<class Result, class Function>
    Result nearest(Function&& function) const
    {
        for (Body const* cls = this; cls; cls = bodyOf(cls->m_description.superclass)) {
            if (Result const result = function(*cls))
                return result;
        }
        return nullptr;
    }

    bool isSubclassOf(ObjectBody const* other) const
    {
        return nearest<Body const*>([&](Body const& cls) { return &cls == other ? &cls : nullptr; });
    }

    static Method const* find(MethodTable const& table, SEL selector)
    {
        auto const row = table.find(selector);
        return row == table.end() ? nullptr : &row->second;
    }

    NSString description() const override { return NSString::stringWithUTF8String_(m_description.name); }

    enum class Initialization { NotYet, Begun, Done };

    ClassDescription m_description;
    MethodTable m_methods;
    MethodTable m_classMethods;
    std::unordered_map<std::string_view, Property> m_properties;
    std::atomic<Initialization> m_initialization { Initialization::NotYet };
};

namespace {

// The classes by name. Never destroyed: objects outlive the statics of any one file.
class Registry {
public:
    static Registry& shared()
    {
        static Registry& registry = *std::make_unique<Registry>().release();
        return registry;
    }

    Class const& add(ClassDescription description)
    {
        bool const isClassOfClasses = description.name == "Class";
        auto body = std::make_unique<Class::Body>(std::move(description));
        std::lock_guard const guard(m_lock);
        auto const [row, isNew] = m_classes.try_emplace(std::string(body->m_description.name));
        if (!isNew)
            throw NSInvalidArgumentException("There are two classes named " + row->first);
        Class& cls = row->second;
        cls = uncheckedCast<Class>(id::retain(body.get()));
        body.release()->release();
        // Class objects that came before the class of classes get it as their class now.
        if (isClassOfClasses)
            m_classOfClasses = &cls;
        for (auto const& [name, registered] : m_classes) {
            if (m_classOfClasses)
                registered.body()->setClass(*m_classOfClasses);
        }
        return cls;
    }

    Class find(std::string const& name)
    {
        std::shared_lock const guard(m_lock);
        auto const row = m_classes.find(name);
        return row == m_classes.end() ? Class() : row->second;
    }

private:
    std::shared_mutex m_lock;
    std::map<std::string, Class> m_classes;
    Class const* m_classOfClasses { nullptr };
};

// Guards the method tables against a category that arrives while another thread looks a method up.
std::shared_mutex& methodTablesLock()
{
    static std::shared_mutex& lock = *std::make_unique<std::shared_mutex>().release();
    return lock;
}

std::recursive_mutex& initializationLock()
{
    static std::recursive_mutex& lock = *std::make_unique<std::recursive_mutex>().release();
    return lock;
}

}

Class const& registerClass(ClassDescription description)
{
    return Registry::shared().add(std::move(description));
}

ClassDescription Class::describeClass()
{
    return { .name = "Class", .superclass = classOf<NSObject>() };
}

std::string_view Class::name() const
{
    return *this == nil ? std::string_view() : bodyOf(*this)->m_description.name;
}

Class Class::superclass() const
{
    return *this == nil ? Class() : bodyOf(*this)->m_description.superclass;
}

bool Class::isSubclassOfClass_(Class const& other) const
{
    return *this != nil && bodyOf(*this)->isSubclassOf(other.body());
}

bool ObjectBody::isKindOf(Class const& cls) const
{
    return m_class && static_cast<Class::Body const*>(m_class)->isSubclassOf(cls.body());
}

id Class::alloc() const
{
    if (*this == nil || !bodyOf(*this)->m_description.makeBody)
        return nil;
    initializeOnce();
    ObjectBody* const body = bodyOf(*this)->m_description.makeBody();
    body->setClass(*this);
    id const object = id::retain(body);
    body->release();
    return object;
}

bool Class::instancesRespondToSelector_(SEL selector) const
{
    return methodForSelector(selector) != nullptr;
}

id Class::performClassSelector_(SEL selector) const
{
    if (*this == nil)
        return nil;
    Method const* const method
        = bodyOf(*this)->nearest<Method const*>([&](Body const& cls) { return Body::find(cls.m_classMethods, selector); });
    if (!method)
        throw NSInvalidArgumentException(std::string(name()) + " has no class method " + std::string(selector.name()));
    return method->invoke(*this, {});
}

Method const* Class::methodForSelector(SEL selector) const
{
    if (*this == nil)
        return nullptr;
    std::shared_lock const guard(methodTablesLock());
    return bodyOf(*this)->nearest<Method const*>([&](Body const& cls) { return Body::find(cls.m_methods, selector); });
}

Property const* Class::propertyForKey(std::string_view key) const
{
    if (*this == nil)
        return nullptr;
    return bodyOf(*this)->nearest<Property const*>([&](Body const& cls) -> Property const* {
        auto const row = cls.m_properties.find(key);
        return row == cls.m_properties.end() ? nullptr : &row->second;
    });
}

void Class::addMethods(std::span<Method const> methods) const
{
    std::lock_guard const guard(methodTablesLock());
    Body::addMethods(bodyOf(*this)->m_methods, methods);
}

void Class::initializeOnce() const
{
    Body* const cls = bodyOf(*this);
    if (cls->m_initialization.load(std::memory_order_acquire) == Body::Initialization::Done)
        return;
    // Recursive: an initialize may make objects of its own class.
    std::lock_guard const guard(initializationLock());
    if (cls->m_initialization.load() != Body::Initialization::NotYet)
        return;
    cls->m_initialization.store(Body::Initialization::Begun);
    if (superclass() != nil)
        superclass().initializeOnce();
    if (cls->m_description.initialize)
        cls->m_description.initialize();
    cls->m_initialization.store(Body::Initialization::Done, std::memory_order_release);
}

Class NSClassFromString(NSString name)
{
    return Registry::shared().find(name.UTF8String());
}

NSString NSStringFromClass(Class const& cls)
{
    return cls == nil ? NSString() : NSString::stringWithUTF8String_(cls.name());
}

}
