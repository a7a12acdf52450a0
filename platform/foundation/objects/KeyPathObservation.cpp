#include "platform/foundation/objects/KeyPathObservation.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Associations.h"
#include "platform/foundation/objects/NSNull.h"
#include <algorithm>

namespace mac {

using Listener = ObjectAssociations::Listener;

namespace {

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

bool isCollectionWithoutKeys(id const& object) {
    return object.isKindOfClass_(classOf<NSArray>()) || object.isKindOfClass_(classOf<NSSet>());
}

KeyPathObservation::KeyPathObservation(id const& root, id const& observer, NSString const& keyPath, NSUInteger options,
                                       void* context)
    : m_root(root), m_observer(observer), m_keyPath(keyPath), m_options(options), m_context(context),
      m_keys(keysOfPath(keyPath)) {}

bool KeyPathObservation::isOf(id const& root, id const& observer, NSString const& keyPath) const {
    return m_isActive && m_root.refersTo(root) && m_observer.refersTo(observer) && m_keyPath.isEqualToString_(keyPath);
}

bool KeyPathObservation::hasObserver() const { return m_isActive && !m_observer.isCleared(); }

void KeyPathObservation::attach(id object, std::size_t depth) {
    for (std::size_t step = depth; step < m_keys.size() && object != nil && m_isActive; ++step) {
        if (isCollectionWithoutKeys(object)) return;
        m_steps.resize(step + 1);
        m_steps[step] = WeakReference(object);
        object.body()->associations().listeners.push_back({m_keys[step], shared_from_this(), step});
        if (step + 1 < m_keys.size()) object = object.valueForKey_(m_keys[step]);
    }
}

void KeyPathObservation::detach(std::size_t depth) {
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

void KeyPathObservation::end() {
    m_isActive = false;
    detach(0);
}

void KeyPathObservation::follow(id const& object, std::size_t depth) {
    if (!m_isActive || depth + 1 >= m_keys.size()) return;
    detach(depth + 1);
    attach(object.valueForKey_(m_keys[depth]), depth + 1);
}

KindOfChange KeyPathObservation::seen(KindOfChange const& change, std::size_t depth) const {
    return depth + 1 == m_keys.size() ? change : KindOfChange();
}

id KeyPathObservation::oldValue(KindOfChange const& change) const {
    if (!m_isActive || change.kind == NSKeyValueChangeInsertion) return nil;
    return valueIfAsked(NSKeyValueObservingOptionOld, change.indexes);
}

void KeyPathObservation::tellInitialValue() const {
    if ((m_options & NSKeyValueObservingOptionInitial) == 0) return;
    tell({}, nil, valueIfAsked(NSKeyValueObservingOptionNew, nil), false);
}

void KeyPathObservation::tellBefore(KindOfChange const& change, id const& oldValue) const {
    if (m_options & NSKeyValueObservingOptionPrior) tell(change, oldValue, nil, true);
}

void KeyPathObservation::tellAfter(KindOfChange const& change, id const& oldValue) const {
    if (!m_isActive) return;
    bool const hasNewValue = change.kind != NSKeyValueChangeRemoval;
    tell(change, oldValue, hasNewValue ? valueIfAsked(NSKeyValueObservingOptionNew, change.indexes) : id(), false);
}

id KeyPathObservation::valueIfAsked(NSUInteger option, NSIndexSet const& indexes) const {
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

void KeyPathObservation::tell(KindOfChange const& kind, id const& oldValue, id const& newValue, bool isPrior) const {
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

} // namespace mac
