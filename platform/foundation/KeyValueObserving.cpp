#include "platform/foundation/KeyValueObserving.h"
#include "platform/foundation/Associations.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSet.h"
#include "platform/foundation/Weak.h"
#include <algorithm>
#include <bit>
#include <exception>

namespace mac {

using Listener = ObjectAssociations::Listener;
using PendingChange = ObjectAssociations::PendingChange;
using Told = ObjectAssociations::Told;

namespace {

// Several steps each of which is taken whatever the others raise; then the first exception goes on.
class AllThenRaise {
public:
    template <class Step>
    void take(Step const& step) {
        try {
            step();
        } catch (...) {
            if (!m_first) m_first = std::current_exception();
        }
    }
    void raise() const {
        if (m_first) std::rethrow_exception(m_first);
    }

private:
    std::exception_ptr m_first;
};

bool isCollectionWithoutKeys(id const& object) {
    return object.isKindOfClass_(classOf<NSArray>()) || object.isKindOfClass_(classOf<NSSet>());
}

// What the change dictionary says of a change besides the values.
struct KindOfChange {
    NSUInteger kind{NSKeyValueChangeSetting};
    NSIndexSet indexes{};
};

// As "<Class 0x…>".
std::string named(id const& object) {
    if (object == nil) return "(null)";
    return NSString::stringWithFormat_("<%s %p>", std::string(object.class_().name()),
                                       static_cast<void const*>(object.body()))
        .UTF8String();
}

[[noreturn]] void raiseNoKeys(id const& collection, char const* message, NSString const& keyPath) {
    throw NSInvalidArgumentException("[" + named(collection) + " " + message +
                                     "] is not supported. Key path: " + keyPath.UTF8String());
}

std::vector<NSString> keysOfPath(NSString const& keyPath) {
    std::vector<NSString> keys;
    std::u16string_view const path = keyPath.codeUnits();
    for (std::size_t start = 0; start <= path.size();) {
        std::size_t const end = std::min(path.find(u'.', start), path.size());
        keys.push_back(NSString::stringWithCodeUnits(path.substr(start, end - start)));
        start = end + 1;
    }
    return keys;
}

} // namespace

// One observer of one key path of one object. It listens at every object along the path, as far as there are some; when
// one of them is replaced it moves to the new one. The listeners own it; it ends with its object or its observer.
class KeyPathObservation : public std::enable_shared_from_this<KeyPathObservation> {
public:
    KeyPathObservation(id const& root, id const& observer, NSString const& keyPath, NSUInteger options, void* context)
        : m_root(root), m_observer(observer), m_keyPath(keyPath), m_options(options), m_context(context),
          m_keys(keysOfPath(keyPath)) {}

    bool isOf(id const& root, id const& observer, NSString const& keyPath) const {
        return m_isActive && m_root.refersTo(root) && m_observer.refersTo(observer) &&
               m_keyPath.isEqualToString_(keyPath);
    }

    bool hasObserver() const { return m_isActive && !m_observer.isCleared(); }

    // Listens at the objects from the given step on.
    void attach(id object, std::size_t depth) {
        for (std::size_t step = depth; step < m_keys.size() && object != nil && m_isActive; ++step) {
            if (isCollectionWithoutKeys(object)) return;
            m_steps.resize(step + 1);
            m_steps[step] = WeakReference(object);
            object.body()->associations().listeners.push_back({m_keys[step], shared_from_this(), step});
            if (step + 1 < m_keys.size()) object = object.valueForKey_(m_keys[step]);
        }
    }

    void detach(std::size_t depth) {
        for (std::size_t step = depth; step < m_steps.size(); ++step) {
            id const object = m_steps[step].load();
            ObjectAssociations* const associations = object == nil ? nullptr : object.body()->associationsIfAny();
            if (!associations) continue;
            std::erase_if(associations->listeners, [&](Listener const& listener) {
                return listener.observation.get() == this && listener.depth == step;
            });
        }
        m_steps.resize(std::min(depth, m_steps.size()));
    }

    // The caller holds the observation meanwhile: its listeners go.
    void end() {
        m_isActive = false;
        detach(0);
    }

    // The object at the step has another value for its key now.
    void follow(id const& object, std::size_t depth) {
        if (!m_isActive || depth + 1 >= m_keys.size()) return;
        detach(depth + 1);
        attach(object.valueForKey_(m_keys[depth]), depth + 1);
    }

    // The change as it is for this observer: members of an array that the path only comes through are none of its
    // matter, the value behind it is.
    KindOfChange seen(KindOfChange const& change, std::size_t depth) const {
        return depth + 1 == m_keys.size() ? change : KindOfChange();
    }

    id oldValue(KindOfChange const& change) const {
        if (!m_isActive || change.kind == NSKeyValueChangeInsertion) return nil;
        return valueIfAsked(NSKeyValueObservingOptionOld, change.indexes);
    }

    void tellInitialValue() const {
        if ((m_options & NSKeyValueObservingOptionInitial) == 0) return;
        tell({}, nil, valueIfAsked(NSKeyValueObservingOptionNew, nil), false);
    }

    void tellBefore(KindOfChange const& change, id const& oldValue) const {
        if (m_options & NSKeyValueObservingOptionPrior) tell(change, oldValue, nil, true);
    }

    void tellAfter(KindOfChange const& change, id const& oldValue) const {
        if (!m_isActive) return;
        bool const hasNewValue = change.kind != NSKeyValueChangeRemoval;
        tell(change, oldValue, hasNewValue ? valueIfAsked(NSKeyValueObservingOptionNew, change.indexes) : id(), false);
    }

private:
    // Without indexes the whole value; else the members at those that there are.
    id valueIfAsked(NSUInteger option, NSIndexSet const& indexes) const {
        id const root = m_root.load();
        if ((m_options & option) == 0 || root == nil) return nil;
        id const value = root.valueForKeyPath_(m_keyPath);
        if (value == nil) return NSNull::null();
        if (indexes == nil) return value;
        NSArray const array = as<NSArray>(value);
        NSMutableIndexSet const there = NSMutableIndexSet::alloc().initWithIndexSet_(indexes);
        there.removeIndexesInRange_({array.count(), NSNotFound - array.count()});
        return array.objectsAtIndexes_(there);
    }

    void tell(KindOfChange const& kind, id const& oldValue, id const& newValue, bool isPrior) const {
        id const observer = m_observer.load();
        id const root = m_root.load();
        if (!m_isActive || observer == nil || root == nil) return;
        NSMutableDictionary const change = NSMutableDictionary::dictionary();
        change.setObject_forKey_(NSNumber::numberWithUnsignedInteger_(kind.kind), NSKeyValueChangeKindKey);
        if (kind.indexes != nil) change.setObject_forKey_(kind.indexes, NSKeyValueChangeIndexesKey);
        if (oldValue != nil) change.setObject_forKey_(oldValue, NSKeyValueChangeOldKey);
        if (newValue != nil) change.setObject_forKey_(newValue, NSKeyValueChangeNewKey);
        if (isPrior) change.setObject_forKey_(NSNumber::numberWithBool_(YES), NSKeyValueChangeNotificationIsPriorKey);
        observer.body()->observeValueForKeyPath(m_keyPath, root, change, m_context);
    }

    WeakReference m_root;
    WeakReference m_observer;
    NSString m_keyPath;
    NSUInteger m_options;
    void* m_context;
    std::vector<NSString> m_keys;
    std::vector<WeakReference> m_steps;
    bool m_isActive{true};
};

namespace {

// Observers that went without a word leave their listeners behind.
void endThoseWithoutObserver(ObjectAssociations const& associations) {
    std::vector<Listener> const listeners = associations.listeners;
    for (Listener const& listener : listeners) {
        if (!listener.observation->hasObserver()) listener.observation->end();
    }
}

// Those who observe the key, each once: a path that comes through the object twice counts where it does first.
std::vector<Told> observersOfKey(ObjectAssociations const& associations, NSString const& key) {
    std::vector<Told> told;
    for (Listener const& listener : associations.listeners) {
        if (!listener.key.isEqualToString_(key) || !listener.observation->hasObserver()) continue;
        auto const same = std::ranges::find(told, listener.observation, &Told::observation);
        if (same == told.end())
            told.push_back({listener.observation, listener.depth, nil});
        else
            same->depth = std::min(same->depth, listener.depth);
    }
    return told;
}

// The latest change of the key that has begun, taken out; without observers when there is none.
PendingChange takePendingChange(ObjectAssociations& associations, NSString const& key) {
    std::vector<PendingChange>& pending = associations.pendingChanges;
    auto const latest = std::find_if(pending.rbegin(), pending.rend(),
                                     [&](PendingChange const& change) { return change.key.isEqualToString_(key); });
    if (latest == pending.rend()) return {};
    PendingChange change = std::move(*latest);
    pending.erase(std::next(latest).base());
    return change;
}

// Begins a change. One of the whole key within one of its members is part of that: nobody is told of it.
void begin(id const& object, NSString const& key, KindOfChange const& kind) {
    ObjectAssociations* const associations = object == nil ? nullptr : object.body()->associationsIfAny();
    if (!associations || key == nil) return;
    PendingChange change{uncheckedCast<NSString>(key.copy()), kind.kind, kind.indexes, {}};
    bool const isPart = std::ranges::any_of(associations->pendingChanges, [&](PendingChange const& pending) {
        return pending.indexes != nil && pending.key.isEqualToString_(key);
    });
    if (!isPart) change.told = observersOfKey(*associations, key);
    for (Told& told : change.told)
        told.oldValue = told.observation->oldValue(told.observation->seen(kind, told.depth));
    for (Told const& told : change.told)
        told.observation->tellBefore(told.observation->seen(kind, told.depth), told.oldValue);
    associations->pendingChanges.push_back(std::move(change));
}

} // namespace

ObjectAssociations::~ObjectAssociations() {
    weakRecord->clear();
    // Objects further along the paths would keep the observations of this one otherwise.
    std::vector<Listener> const mine = std::move(listeners);
    listeners.clear();
    for (Listener const& listener : mine) {
        if (listener.depth == 0) listener.observation->end();
    }
}

KeyChange::KeyChange(id const& object, NSString const& key)
    : m_object(object), m_key(key), m_exceptions(std::uncaught_exceptions()) {
    m_object.willChangeValueForKey_(m_key);
}

KeyChange::KeyChange(id const& object, NSString const& key, NSUInteger kind, NSIndexSet const& indexes)
    : m_object(object), m_key(key), m_exceptions(std::uncaught_exceptions()) {
    m_object.willChange_valuesAtIndexes_forKey_(kind, indexes, m_key);
}

KeyChange::~KeyChange() noexcept(false) {
    if (std::uncaught_exceptions() == m_exceptions) {
        m_object.didChangeValueForKey_(m_key);
        return;
    }
    ObjectAssociations* const associations = m_object == nil ? nullptr : m_object.body()->associationsIfAny();
    if (associations) takePendingChange(*associations, m_key);
}

void id::addObserver_forKeyPath_options_context_(id const& observer, NSString const& keyPath, NSUInteger options,
                                                 void* context) const {
    if (*this == nil || observer == nil) return;
    if (keyPath == nil) throw NSInvalidArgumentException("A key path to observe is missing");
    id const self = *this;
    if (isCollectionWithoutKeys(self)) raiseNoKeys(self, "addObserver:forKeyPath:options:context:", keyPath);
    ObjectAssociations const& associations = self.body()->associations();
    // Now and then only, so that the cost of many observers stays in proportion.
    if (std::has_single_bit(associations.listeners.size())) endThoseWithoutObserver(associations);
    NSString const keptPath = uncheckedCast<NSString>(keyPath.copy());
    auto const observation = std::make_shared<KeyPathObservation>(self, observer, keptPath, options, context);
    try {
        observation->attach(self, 0);
        observation->tellInitialValue();
    } catch (...) {
        observation->end();
        throw;
    }
}

void id::removeObserver_forKeyPath_(id const& observer, NSString const& keyPath) const {
    if (*this == nil) return;
    id const self = *this;
    if (ObjectAssociations const* const associations = self.body()->associationsIfAny()) {
        // The latest of several equal registrations goes first.
        std::vector<Listener> const& listeners = associations->listeners;
        auto const latest = std::find_if(listeners.rbegin(), listeners.rend(), [&](Listener const& listener) {
            return listener.depth == 0 && listener.observation->isOf(self, observer, keyPath);
        });
        if (latest != listeners.rend()) {
            std::shared_ptr<KeyPathObservation> const observation = latest->observation;
            observation->end();
            return;
        }
    }
    if (isCollectionWithoutKeys(self)) raiseNoKeys(self, "removeObserver:forKeyPath:", keyPath);
    throw NSRangeException("Cannot remove an observer " + named(observer) + " for the key path \"" +
                           keyPath.UTF8String() + "\" from " + named(self) +
                           " because it is not registered as an observer.");
}

void id::willChangeValueForKey_(NSString const& key) const {
    id const self = *this;
    begin(self, key, {});
}

void id::willChange_valuesAtIndexes_forKey_(NSUInteger kind, NSIndexSet const& indexes, NSString const& key) const {
    id const self = *this;
    if (kind < NSKeyValueChangeInsertion || kind > NSKeyValueChangeReplacement || indexes == nil)
        throw NSInvalidArgumentException("A change at indexes needs indexes, and a kind that has some");
    begin(self, key, {kind, NSIndexSet::alloc().initWithIndexSet_(indexes)});
}

void id::didChange_valuesAtIndexes_forKey_(NSUInteger, NSIndexSet const&, NSString const& key) const {
    didChangeValueForKey_(key);
}

void id::observeValueForKeyPath_ofObject_change_context_(NSString const& keyPath, id const& object,
                                                         NSDictionary const& change, void* context) const {
    id const self = *this;
    if (self != nil) self.body()->observeValueForKeyPath(keyPath, object, change, context);
}

void id::didChangeValueForKey_(NSString const& key) const {
    id const self = *this;
    ObjectAssociations* const associations = self == nil ? nullptr : self.body()->associationsIfAny();
    if (!associations) return;
    PendingChange const change = takePendingChange(*associations, key);
    KindOfChange const kind{change.kind, change.indexes};
    AllThenRaise all;
    for (Told const& told : change.told)
        all.take([&] { told.observation->follow(self, told.depth); });
    for (Told const& told : change.told)
        all.take([&] { told.observation->tellAfter(told.observation->seen(kind, told.depth), told.oldValue); });
    all.raise();
}

} // namespace mac
