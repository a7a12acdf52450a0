#pragma once

#include "platform/foundation/objects/Object.h"
#include <typeinfo>

namespace mac {

// A pointer as an object, so that a message can carry it. The object remembers the pointer's type and does not own what
// it points to. Immutable; any thread.
//
// Linux: NSNumber is no subclass of this class.
class NSValue : public Handle<NSValue, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    template <class T>
    static NSValue valueWithPointer_(T* pointer) {
        return valueWithAddress(pointer, typeid(T*));
    }

    // The pointer; null for a nil receiver, and where T is not the type that the value was made with. A pointer to T
    // may be read as one to T const.
    template <class T>
    T* pointerValue() const {
        void const* address = addressOfType(typeid(T*));
        if constexpr (std::is_const_v<T>) {
            if (!address) address = addressOfType(typeid(std::remove_const_t<T>*));
        }
        return static_cast<T*>(const_cast<void*>(address));
    }

private:
    static NSValue valueWithAddress(void const* address, std::type_info const& type);
    void const* addressOfType(std::type_info const& type) const;
};

} // namespace mac
