#pragma once

#include "platform/foundation/Object.h"
#include <memory>
#include <mutex>
#include <vector>

namespace mac {

class KeyPathObservation;

// Where weak references look: the object until it goes, then null.
class WeakRecord {
public:
    explicit WeakRecord(ObjectBody* body)
        : m_body(body)
    {
    }
    id load() const;
    void clear();
    bool isCleared() const;
    bool refersTo(ObjectBody const* body) const;

private:
    mutable std::mutex m_lock;
    ObjectBody* m_body;
};

// What few objects have: weak references to them, observers of their keys. Made on first need, owned by the body.
class ObjectAssociations {
public:
    explicit ObjectAssociations(ObjectBody* body)
        : weakRecord(std::make_shared<WeakRecord>(body))
    {
    }

    // One step of an observed key path that this object stands at.
    struct Listener {
        std::string key;
        std::shared_ptr<KeyPathObservation> observation;
        std::size_t depth;
    };
    // A change between will and did, with what the observers are to be told of the time before.
    struct PendingChange {
        std::string key;
        std::vector<std::pair<Listener, id>> listenersAndOldValues;
    };

    std::shared_ptr<WeakRecord> const weakRecord;
    std::vector<Listener> listeners;
    std::vector<PendingChange> pendingChanges;
};

}
