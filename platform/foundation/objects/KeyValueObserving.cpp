#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Associations.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyPathObservation.h"
#include <algorithm>
#include <bit>
#include <exception>

namespace mac {

using Listener = ObjectAssociations::Listener;
using PendingChange = ObjectAssociations::PendingChange;
using Told = ObjectAssociations::Told;

namespace {

// Several steps each of which is taken whatever the others raise; the first exception is kept.
class AllSteps {
public:
    explicit AllSteps(std::exception_ptr first = nullptr) : m_first(std::move(first)) {}

    template <class Step>
    void take(Step const& step) {
        try {
            step();
        } catch (...) {
            if (!m_first) m_first = std::current_exception();
        }
    }
    std::exception_ptr first() const { return m_first; }

private:
    std::exception_ptr m_first;
};

// The object as "<Class 0x…>".
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

// Observers that went without a word leave their listeners behind.
void endThoseWithoutObserver(ObjectAssociations const& associations) {
    std::vector<Listener> const listeners = associations.listeners;
    for (Listener const& listener : listeners) {
        if (!listener.observation->hasObserver()) listener.observation->end();
    }
}

// The observations of the key, each once: one whose path passes through the object twice counts at its first step.
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

// Begins a change. A change of the whole key during one of its members is part of that one and not announced.
void begin(id const& object, NSString const& key, KindOfChange const& kind) {
    ObjectAssociations* const associations = object == nil ? nullptr : object.body()->associationsIfAny();
    if (!associations || key == nil) return;
    PendingChange change{uncheckedCast<NSString>(key.copy()), kind.kind, kind.indexes, {}, {}};
    bool const isPart = std::ranges::any_of(associations->pendingChanges, [&](PendingChange const& pending) {
        return pending.indexes != nil && pending.key.isEqualToString_(key);
    });
    if (!isPart) change.told = observersOfKey(*associations, key);
    for (Told& told : change.told)
        told.oldValue = told.observation->oldValue(told.observation->seen(kind, told.depth));
    // Whoever is told of the beginning is told of the end: what one of them raises waits until then.
    AllSteps all;
    for (Told const& told : change.told)
        all.take([&] { told.observation->tellBefore(told.observation->seen(kind, told.depth), told.oldValue); });
    change.exception = all.first();
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
    AllSteps all(change.exception);
    for (Told const& told : change.told)
        all.take([&] { told.observation->follow(self, told.depth); });
    for (Told const& told : change.told)
        all.take([&] { told.observation->tellAfter(told.observation->seen(kind, told.depth), told.oldValue); });
    if (all.first()) std::rethrow_exception(all.first());
}

} // namespace mac
