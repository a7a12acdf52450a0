#pragma once

#include "platform/foundation/objects/Object.h"
#include <memory>

namespace mac {

class WeakRecord;

// A reference that does not keep its object alive and reads as nil once it has gone. Any thread.
class WeakReference {
public:
    WeakReference() = default;
    WeakReference(id const& object);

    id load() const;
    // True for a reference that once held an object that has gone.
    bool isCleared() const;
    // By identity and without taking a reference; true also for an object that is just being destroyed.
    bool refersTo(id const& object) const;

private:
    std::shared_ptr<WeakRecord> m_record;
};

template <class T>
class Weak {
public:
    Weak() = default;
    Weak(T const& object) : m_reference(object) {}
    T load() const { return uncheckedCast<T>(m_reference.load()); }

private:
    WeakReference m_reference;
};

} // namespace mac
