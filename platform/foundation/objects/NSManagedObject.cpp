#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/ManagedObjectBody.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

void requireAttributeName(NSString const& key) {
    if (key == nil) throw NSInvalidArgumentException("An attribute of a managed object has a name");
}

} // namespace

// Reached by key-value coding for each key that the class has no row or message for.
id NSManagedObject::Body::valueForUndefinedKey(NSString const& key) { return primitiveValue(key); }

void NSManagedObject::Body::setValueForUndefinedKey(id const& value, NSString const& key) {
    requireAttributeName(key);
    KeyChange const change(id::retain(this), key);
    setPrimitiveValue(value, key);
}

id NSManagedObject::Body::primitiveValue(NSString const& key) const {
    requireAttributeName(key);
    return m_values.objectForKey_(key);
}

void NSManagedObject::Body::setPrimitiveValue(id const& value, NSString const& key) {
    requireAttributeName(key);
    if (value == nil)
        m_values.removeObjectForKey_(key);
    else
        m_values.setObject_forKey_(value, key);
}

ClassDescription NSManagedObject::describeClass() {
    using Self = NSManagedObject;
    return {
        .name = "NSManagedObject",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSManagedObject>,
        .methods =
            {
                method<&Self::init>("init"),
                method<&Self::primitiveValueForKey_>("primitiveValueForKey:"),
                method<&Self::setPrimitiveValue_forKey_>("setPrimitiveValue:forKey:"),
            },
    };
}

NSManagedObject NSManagedObject::init() const { return *this; }

id NSManagedObject::primitiveValueForKey_(NSString const& key) const {
    return *this == nil ? id() : bodyOf(*this)->primitiveValue(key);
}

void NSManagedObject::setPrimitiveValue_forKey_(id const& value, NSString const& key) const {
    if (*this != nil) bodyOf(*this)->setPrimitiveValue(value, key);
}

} // namespace mac
