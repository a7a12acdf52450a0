#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/objects/Object.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

namespace {

// "path" is answered by a row of the key table, else by a message getPath, path or isPath that has no arguments and
// answers something.
Method const* accessorForKey(Class const& cls, std::string const& key) {
    if (key.empty() || key.find(':') != std::string::npos) return nullptr;
    std::string capitalised = key;
    if (capitalised[0] >= 'a' && capitalised[0] <= 'z') capitalised[0] = static_cast<char>(capitalised[0] - 'a' + 'A');
    for (std::string const& selector : {"get" + capitalised, key, "is" + capitalised}) {
        Method const* const method = cls.methodForSelector(SEL::ofKnownName(selector));
        if (method && method->answersValue) return method;
    }
    return nullptr;
}

std::string unknownKey(ObjectBody const& object, NSString const& key) {
    return std::string(object.isa().name()) + " has no key \"" + key.UTF8String() + "\"";
}

struct SplitKeyPath {
    NSString first;
    // Nil where the path is one key.
    NSString rest;
};

SplitKeyPath split(NSString const& keyPath) {
    std::u16string_view const units = keyPath.codeUnits();
    std::size_t const dot = units.find(u'.');
    if (dot == std::u16string_view::npos) return {keyPath, nil};
    return {NSString::stringWithCodeUnits(units.substr(0, dot)), NSString::stringWithCodeUnits(units.substr(dot + 1))};
}

} // namespace

id ObjectBody::valueForKey(NSString const& key) {
    std::string const name = key.UTF8String();
    id const self = id::retain(this);
    if (Property const* const property = isa().propertyForKey(name)) return property->get(self);
    if (Method const* const accessor = accessorForKey(isa(), name)) return accessor->invoke(self, {});
    return valueForUndefinedKey(key);
}

void ObjectBody::setValueForKey(id const& value, NSString const& key) {
    Property const* const property = isa().propertyForKey(key.UTF8String());
    if (!property || !property->set) {
        setValueForUndefinedKey(value, key);
        return;
    }
    if (property->isScalar && value == nil) {
        setNilValueForKey(key);
        return;
    }
    property->set(id::retain(this), value);
}

id ObjectBody::valueForUndefinedKey(NSString const& key) { throw NSUndefinedKeyException(unknownKey(*this, key)); }

void ObjectBody::setValueForUndefinedKey(id const&, NSString const& key) {
    throw NSUndefinedKeyException(unknownKey(*this, key) + " that can be set");
}

void ObjectBody::setNilValueForKey(NSString const& key) {
    throw NSInvalidArgumentException(std::string(isa().name()) + " cannot hold nil under the key \"" +
                                     key.UTF8String() + "\"");
}

id ObjectBody::valueForKeyPath(NSString const& keyPath) {
    auto const [first, rest] = split(keyPath);
    id const value = valueForKey(first);
    return rest == nil ? value : value.valueForKeyPath_(rest);
}

void ObjectBody::setValueForKeyPath(id const& value, NSString const& keyPath) {
    auto const [first, rest] = split(keyPath);
    if (rest == nil)
        setValueForKey(value, first);
    else
        valueForKey(first).setValue_forKeyPath_(value, rest);
}

id id::valueForKey_(NSString const& key) const { return m_body ? m_body->valueForKey(key) : id(); }

void id::setValue_forKey_(id const& value, NSString const& key) const {
    if (m_body) m_body->setValueForKey(value, key);
}

id id::valueForKeyPath_(NSString const& keyPath) const { return m_body ? m_body->valueForKeyPath(keyPath) : id(); }

void id::setValue_forKeyPath_(id const& value, NSString const& keyPath) const {
    if (m_body) m_body->setValueForKeyPath(value, keyPath);
}

id id::valueForUndefinedKey_(NSString const& key) const { return m_body ? m_body->valueForUndefinedKey(key) : id(); }

void id::setValue_forUndefinedKey_(id const& value, NSString const& key) const {
    if (m_body) m_body->setValueForUndefinedKey(value, key);
}

void id::setNilValueForKey_(NSString const& key) const {
    if (m_body) m_body->setNilValueForKey(key);
}

NSDictionary id::dictionaryWithValuesForKeys_(NSArray const& keys) const {
    if (*this == nil) return nil;
    id const self = *this;
    NSMutableDictionary const values = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
    // A getter may change the keys.
    for (id const& key : NSArray::arrayWithArray_(keys)) {
        id const value = self.valueForKey_(as<NSString>(key));
        values.setObject_forKey_(value == nil ? id(NSNull::null()) : value, key);
    }
    return uncheckedCast<NSDictionary>(values.copy());
}

void id::setValuesForKeysWithDictionary_(NSDictionary const& values) const {
    id const self = *this;
    // A setter may change the dictionary.
    NSDictionary const kept = uncheckedCast<NSDictionary>(values.copy());
    for (id const& key : kept.allKeys()) {
        id const value = kept.objectForKey_(key);
        self.setValue_forKey_(isSame(value, NSNull::null()) ? id() : value, as<NSString>(key));
    }
}

} // namespace mac
