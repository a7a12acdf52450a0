#include "platform/foundation/KeyValueObserving.h"
#include "platform/foundation/Associations.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/Weak.h"
#include <algorithm>
#include <ranges>

namespace mac {

using Listener = ObjectAssociations::Listener;
using PendingChange = ObjectAssociations::PendingChange;

// One observer of one key path of one object. It listens at every object along the path; when one of them is replaced it
// moves to the new one.
class KeyPathObservation : public std::enable_shared_from_this<KeyPathObservation> {
public:
    KeyPathObservation(id const& root, id const& observer, NSString const& keyPath, NSUInteger options, void* context)
        : m_root(root)
        , m_observer(observer)
        , m_keyPath(keyPath)
        , m_options(options)
        , m_context(context)
    {
        std::string const path = keyPath.UTF8String();
        for (std::size_t start = 0; start <= path.size();) {
            std::size_t const end = std::min(path.find('.', start), path.size());
            m_keys.push_back(path.substr(start, end - start));
            start = end + 1;
        }
    }

    bool isOf(id const& root, id const& observer, NSString const& keyPath) const
    {
        return m_isActive && m_root.refersTo(root) && m_observer.refersTo(observer) && m_keyPath.isEqualToString_(keyPath);
    }

    // Listens at the objects from the given step on.
    void attach(id object, std::size_t depth)
    {
        for (std::size_t step = depth; step < m_keys.size() && object != nil; ++step) {
            m_steps.resize(step + 1);
            m_steps[step] = WeakReference(object);
            object.body()->associations().listeners.push_back({ m_keys[step], shared_from_this(), step });
            if (step + 1 < m_keys.size())
                object = object.valueForKey_(NSString::stringWithUTF8String_(m_keys[step]));
        }
    }

    void detach(std::size_t depth)
    {
        for (std::size_t step = depth; step < m_steps.size(); ++step) {
            id const object = m_steps[step].load();
            if (object == nil)
                continue;
            std::erase_if(object.body()->associations().listeners,
                [&](Listener const& listener) { return listener.observation.get() == this && listener.depth == step; });
        }
        m_steps.resize(std::min(depth, m_steps.size()));
    }

    void end()
    {
        detach(0);
        m_isActive = false;
    }

    id valueIfAsked(NSUInteger option) const
    {
        id const root = m_root.load();
        if ((m_options & option) == 0 || root == nil)
            return nil;
        id const value = root.valueForKeyPath_(m_keyPath);
        return value == nil ? id(NSNull::null()) : value;
    }

    id oldValue() const { return m_isActive ? valueIfAsked(NSKeyValueObservingOptionOld) : id(); }

    void willChange(id const& oldValue) const
    {
        if (m_options & NSKeyValueObservingOptionPrior)
            tell(oldValue, nil, true);
    }

    // The object at the step has another value for its key now.
    void didChange(id const& object, std::size_t depth, id const& oldValue)
    {
        if (!m_isActive)
            return;
        if (depth + 1 < m_keys.size()) {
            detach(depth + 1);
            attach(object.valueForKey_(NSString::stringWithUTF8String_(m_keys[depth])), depth + 1);
        }
        tell(oldValue, valueIfAsked(NSKeyValueObservingOptionNew), false);
    }

    void tellInitialValue() const
    {
        if (m_options & NSKeyValueObservingOptionInitial)
            tell(nil, valueIfAsked(NSKeyValueObservingOptionNew), false);
    }

private:
    void tell(id const& oldValue, id const& newValue, bool isPrior) const
    {
        id const observer = m_observer.load();
        id const root = m_root.load();
        if (!m_isActive || observer == nil || root == nil)
            return;
        NSMutableDictionary const change = NSMutableDictionary::dictionary();
        change.setObject_forKey_(NSNumber::numberWithUnsignedInteger_(NSKeyValueChangeSetting), NSKeyValueChangeKindKey);
        if (oldValue != nil)
            change.setObject_forKey_(oldValue, NSKeyValueChangeOldKey);
        if (newValue != nil)
            change.setObject_forKey_(newValue, NSKeyValueChangeNewKey);
        if (isPrior)
            change.setObject_forKey_(NSNumber::numberWithBool_(YES), NSKeyValueChangeNotificationIsPriorKey);
        observer.body()->observeValueForKeyPath(m_keyPath, root, change, m_context);
    }

    WeakReference m_root;
    WeakReference m_observer;
    NSString m_keyPath;
    NSUInteger m_options;
    void* m_context;
    std::vector<std::string> m_keys;
    std::vector<WeakReference> m_steps;
    bool m_isActive { true };
};

void id::addObserver_forKeyPath_options_context_(id const& observer, NSString const& keyPath, NSUInteger options,
    void* context) const
{
    if (*this == nil || observer == nil)
        return;
    if (keyPath == nil)
        throw NSInvalidArgumentException("A key path to observe is missing");
    if (isKindOfClass_(classOf<NSArray>()))
        throw NSInvalidArgumentException("An array's keys cannot be observed, only its elements'");
    auto const observation = std::make_shared<KeyPathObservation>(*this, observer, keyPath, options, context);
    observation->attach(*this, 0);
    observation->tellInitialValue();
}

void id::removeObserver_forKeyPath_(id const& observer, NSString const& keyPath) const
{
    if (*this == nil)
        return;
    if (ObjectAssociations* const associations = m_body->associationsIfAny()) {
        // The latest of several equal registrations goes first.
        for (Listener const& listener : std::views::reverse(associations->listeners)) {
            if (listener.depth != 0 || !listener.observation->isOf(*this, observer, keyPath))
                continue;
            std::shared_ptr<KeyPathObservation> const observation = listener.observation;
            observation->end();
            return;
        }
    }
    throw NSRangeException("There is no such observer of the key path \"" + keyPath.UTF8String() + "\" of "
        + std::string(class_().name()));
}

void id::willChangeValueForKey_(NSString const& key) const
{
    ObjectAssociations* const associations = m_body ? m_body->associationsIfAny() : nullptr;
    if (!associations)
        return;
    PendingChange change { key.UTF8String(), {} };
    std::vector<Listener> const listeners = associations->listeners;
    for (Listener const& listener : listeners) {
        if (listener.key != change.key)
            continue;
        change.listenersAndOldValues.emplace_back(listener, listener.observation->oldValue());
        listener.observation->willChange(change.listenersAndOldValues.back().second);
    }
    associations->pendingChanges.push_back(std::move(change));
}

void id::didChangeValueForKey_(NSString const& key) const
{
    ObjectAssociations* const associations = m_body ? m_body->associationsIfAny() : nullptr;
    if (!associations)
        return;
    std::string const name = key.UTF8String();
    std::vector<PendingChange>& pending = associations->pendingChanges;
    auto const latest = std::find_if(pending.rbegin(), pending.rend(),
        [&](PendingChange const& change) { return change.key == name; });
    if (latest == pending.rend())
        return;
    PendingChange const change = std::move(*latest);
    pending.erase(std::next(latest).base());
    for (auto const& [listener, oldValue] : change.listenersAndOldValues)
        listener.observation->didChange(*this, listener.depth, oldValue);
}

}
