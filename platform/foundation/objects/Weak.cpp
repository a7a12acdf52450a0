#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/objects/Associations.h"

namespace mac {

id WeakRecord::load() const {
    // The lock keeps the body's memory in place: an object is freed only after its record was cleared under it.
    std::lock_guard const guard(m_lock);
    if (!m_body || !m_body->retainUnlessDying()) return nil;
    id object = id::retain(m_body);
    m_body->release();
    return object;
}

void WeakRecord::clear() {
    std::lock_guard const guard(m_lock);
    m_body = nullptr;
}

bool WeakRecord::isCleared() const {
    std::lock_guard const guard(m_lock);
    return m_body == nullptr;
}

WeakReference::WeakReference(id const& object) {
    if (object != nil) m_record = object.body()->associations().weakRecord;
}

id WeakReference::load() const { return m_record ? m_record->load() : id(); }

bool WeakReference::isCleared() const { return m_record && m_record->isCleared(); }

// By record, so that an object that is going is still told from one that takes its place in memory.
bool WeakReference::refersTo(id const& object) const {
    ObjectAssociations const* const associations = object == nil ? nullptr : object.body()->associationsIfAny();
    return m_record && associations && associations->weakRecord == m_record;
}

} // namespace mac
