#include "platform/foundation/objects/Object.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/objects/Associations.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

namespace {

// A count that no release during destruction brings down to zero again.
constexpr std::uint32_t DyingCount = 0x40000000;

std::string notUnderstood(id const& receiver, SEL selector) {
    Class const cls = as<Class>(receiver);
    std::string const name(cls == nil ? receiver.class_().name() : cls.name());
    return (cls == nil ? name : "The class " + name) + " does not understand \"" + std::string(selector.name()) + "\"";
}

id send(id const& receiver, SEL selector, std::span<id const> arguments) {
    if (receiver == nil) return nil;
    Method const* const method = receiver.body()->methodForSelector(selector);
    if (!method) throw NSInvalidArgumentException(notUnderstood(receiver, selector));
    // The message may change the very variable that it was sent to.
    id const kept = receiver;
    return method->invoke(kept, arguments);
}

} // namespace

ObjectBody::ObjectBody() = default;

ObjectBody::~ObjectBody() { std::unique_ptr<ObjectAssociations> const owned(m_associations.load()); }

void ObjectBody::setClass(Class const& cls) { m_class = cls.body(); }

Method const* ObjectBody::methodForSelector(SEL selector) const { return isa().methodForSelector(selector); }

void ObjectBody::release() const {
    if (m_count.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    if (ObjectAssociations* const associations = associationsIfAny()) associations->weakRecord->clear();
    m_count.store(DyingCount, std::memory_order_relaxed);
    std::unique_ptr<ObjectBody const> const owned(this);
}

bool ObjectBody::retainUnlessDying() const {
    std::uint32_t count = m_count.load(std::memory_order_relaxed);
    while (count != 0 && count < DyingCount) {
        if (m_count.compare_exchange_weak(count, count + 1, std::memory_order_acquire)) return true;
    }
    return false;
}

ObjectAssociations& ObjectBody::associations() {
    if (ObjectAssociations* const existing = associationsIfAny()) return *existing;
    auto made = std::make_unique<ObjectAssociations>(this);
    ObjectAssociations* expected = nullptr;
    if (!m_associations.compare_exchange_strong(expected, made.get(), std::memory_order_acq_rel)) return *expected;
    return *made.release();
}

bool ObjectBody::isEqual(id const& other) const { return other.body() == this; }

std::uint64_t ObjectBody::hash() const { return reinterpret_cast<std::uintptr_t>(this) >> 4; }

NSString ObjectBody::description() const {
    return NSString::stringWithFormat_("<%s: %p>", std::string(isa().name()), static_cast<void const*>(this));
}

id ObjectBody::copy() const { throw NSInvalidArgumentException(std::string(isa().name()) + " cannot be copied"); }

id ObjectBody::mutableCopy() const {
    throw NSInvalidArgumentException(std::string(isa().name()) + " has no mutable form");
}

void ObjectBody::observeValueForKeyPath(NSString const& keyPath, id const&, NSDictionary const&, void*) {
    throw NSGenericException(std::string(isa().name()) + " was told of a change of \"" + keyPath.UTF8String() +
                             "\" but does not handle it");
}

Class id::class_() const { return m_body ? m_body->isa() : Class(); }

bool id::isKindOfClass_(Class const& cls) const { return m_body && m_body->isKindOf(cls); }

bool id::isMemberOfClass_(Class const& cls) const { return m_body && cls != nil && isSame(m_body->isa(), cls); }

NSString id::description() const { return m_body ? m_body->description() : NSString(); }

bool id::respondsToSelector_(SEL selector) const { return m_body && m_body->methodForSelector(selector) != nullptr; }

id id::performSelector_(SEL selector) const { return send(*this, selector, {}); }

id id::performSelector_withObject_(SEL selector, id const& object) const { return send(*this, selector, {&object, 1}); }

id id::performSelector_withObject_withObject_(SEL selector, id const& first, id const& second) const {
    return performSelector_withObjects_(selector, {first, second});
}

id id::performSelector_withObjects_(SEL selector, std::initializer_list<id> objects) const {
    return send(*this, selector, {objects.begin(), objects.size()});
}

ClassDescription NSObject::describeClass() {
    return {
        .name = "NSObject",
        .makeBody = &makeEmptyBody<NSObject>,
        .methods =
            {
                {"init", [](id const& receiver, std::span<id const>) { return receiver; }},
                {"self", [](id const& receiver, std::span<id const>) { return receiver; }},
                {"class", [](id const& receiver, std::span<id const>) -> id { return receiver.class_(); }},
                {"superclass",
                 [](id const& receiver, std::span<id const>) -> id { return receiver.class_().superclass(); }},
                {"hash", [](id const& receiver, std::span<id const>) { return detail::toObject(receiver.hash()); }},
                {"isEqual:",
                 [](id const& receiver, std::span<id const> arguments) {
                     return detail::toObject(receiver.isEqual_(detail::argumentAt(arguments, 0)));
                 }},
                {"description", [](id const& receiver, std::span<id const>) -> id { return receiver.description(); }},
                {"copy", [](id const& receiver, std::span<id const>) { return receiver.copy(); }},
                {"mutableCopy", [](id const& receiver, std::span<id const>) { return receiver.mutableCopy(); }},
                method<&id::valueForKey_>("valueForKey:"),
                method<&id::setValue_forKey_>("setValue:forKey:"),
                method<&id::valueForKeyPath_>("valueForKeyPath:"),
                method<&id::setValue_forKeyPath_>("setValue:forKeyPath:"),
                method<&id::valueForUndefinedKey_>("valueForUndefinedKey:"),
                method<&id::setValue_forUndefinedKey_>("setValue:forUndefinedKey:"),
                method<&id::setNilValueForKey_>("setNilValueForKey:"),
                method<&id::dictionaryWithValuesForKeys_>("dictionaryWithValuesForKeys:"),
                method<&id::setValuesForKeysWithDictionary_>("setValuesForKeysWithDictionary:"),
                method<&id::mutableArrayValueForKey_>("mutableArrayValueForKey:"),
                method<&id::mutableArrayValueForKeyPath_>("mutableArrayValueForKeyPath:"),
                method<&id::addObserver_forKeyPath_options_context_>("addObserver:forKeyPath:options:context:"),
                method<&id::removeObserver_forKeyPath_>("removeObserver:forKeyPath:"),
                method<&id::willChangeValueForKey_>("willChangeValueForKey:"),
                method<&id::didChangeValueForKey_>("didChangeValueForKey:"),
                method<&id::willChange_valuesAtIndexes_forKey_>("willChange:valuesAtIndexes:forKey:"),
                method<&id::didChange_valuesAtIndexes_forKey_>("didChange:valuesAtIndexes:forKey:"),
                method<&id::observeValueForKeyPath_ofObject_change_context_>(
                    "observeValueForKeyPath:ofObject:change:context:"),
            },
    };
}

} // namespace mac
