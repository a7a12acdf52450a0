#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/NSManagedObject.h"
#include "platform/foundation/objects/ObjectBody.h"

namespace mac {

// Bodies of subclasses derive from it.
class NSManagedObject::Body : public ObjectBody {
public:
    id valueForUndefinedKey(NSString const& key) override;
    void setValueForUndefinedKey(id const& value, NSString const& key) override;

    id primitiveValue(NSString const& key) const;
    void setPrimitiveValue(id const& value, NSString const& key);

private:
    NSMutableDictionary m_values{NSMutableDictionary::dictionary()};
};

} // namespace mac
