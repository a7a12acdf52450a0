#pragma once

#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Weak.h"
#include <memory>
#include <vector>

namespace mac {

// What the change dictionary says of a change besides the values.
struct KindOfChange {
    NSUInteger kind{NSKeyValueChangeSetting};
    NSIndexSet indexes{};
};

// One observer of one key path of one object. It listens at every object along the path, as far as there are some; when
// one of them is replaced it moves to the new one. The listeners own it; it ends with its object or its observer. For
// implementations, on one thread.
class KeyPathObservation : public std::enable_shared_from_this<KeyPathObservation> {
public:
    KeyPathObservation(id const& root, id const& observer, NSString const& keyPath, NSUInteger options, void* context);

    bool isOf(id const& root, id const& observer, NSString const& keyPath) const;
    bool hasObserver() const;

    // Listens at the objects from the given step on.
    void attach(id object, std::size_t depth);
    void detach(std::size_t depth);
    // The caller holds the observation meanwhile: its listeners go.
    void end();
    // The object at the step has another value for its key now.
    void follow(id const& object, std::size_t depth);

    // The change as it is for this observer: members of an array that the path only comes through are none of its
    // matter, the value behind it is.
    KindOfChange seen(KindOfChange const& change, std::size_t depth) const;
    id oldValue(KindOfChange const& change) const;
    void tellInitialValue() const;
    void tellBefore(KindOfChange const& change, id const& oldValue) const;
    void tellAfter(KindOfChange const& change, id const& oldValue) const;

private:
    // Without indexes the whole value; else the members at those that there are.
    id valueIfAsked(NSUInteger option, NSIndexSet const& indexes) const;
    void tell(KindOfChange const& kind, id const& oldValue, id const& newValue, bool isPrior) const;

    WeakReference m_root;
    WeakReference m_observer;
    NSString m_keyPath;
    NSUInteger m_options;
    void* m_context;
    std::vector<NSString> m_keys;
    std::vector<WeakReference> m_steps;
    bool m_isActive{true};
};

// Arrays and sets have no keys of their own to observe.
bool isCollectionWithoutKeys(id const& object);

} // namespace mac
