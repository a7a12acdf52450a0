#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// What an array of mutableArrayValueForKey_ reads from and writes through: the array that an object has under a key at
// the time. Owned by that array's body, keeps the object. One thread.
class ArrayBehindKey {
public:
    ArrayBehindKey(id object, NSString const& key) : m_object(std::move(object)), m_key(key.copy()) {}

    // The members, valid until the value changes. They stay at one address while the value has the same members, so
    // that a loop may ask for begin and end separately; a getter that answers others each time raises
    // NSInvalidArgumentException.
    std::span<id const> objects();
    // Sets a copy that the function has changed. Observers learn of the indexes, where there are some.
    void change(NSUInteger kind, NSIndexSet const& indexes, std::function<void(std::vector<id>&)> const& edit);

private:
    NSArray valueNow() const;

    id m_object;
    id m_key;
    NSArray m_current;
};

} // namespace mac
