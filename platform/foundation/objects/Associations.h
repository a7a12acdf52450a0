#pragma once

#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/text/NSString.h"
#include <exception>
#include <memory>
#include <mutex>
#include <vector>

namespace mac {

class KeyPathObservation;

// Where weak references look: the object until it goes, then null.
class WeakRecord {
public:
    explicit WeakRecord(ObjectBody* body) : m_body(body) {}
    id load() const;
    void clear();
    bool isCleared() const;

private:
    mutable std::mutex m_lock;
    ObjectBody* m_body;
};

// What few objects have: weak references to them, observers of their keys. Made on first need, owned by the body. Weak
// references are for any thread, observing is for one.
class ObjectAssociations {
public:
    explicit ObjectAssociations(ObjectBody* body) : weakRecord(std::make_shared<WeakRecord>(body)) {}
    ~ObjectAssociations();
    ObjectAssociations(ObjectAssociations const&) = delete;
    ObjectAssociations& operator=(ObjectAssociations const&) = delete;

    // One step of an observed key path that this object stands at.
    struct Listener {
        NSString key;
        std::shared_ptr<KeyPathObservation> observation;
        std::size_t depth;
    };
    // Whom to tell when a change ends, and the value before it where the observer asked for it.
    struct Told {
        std::shared_ptr<KeyPathObservation> observation;
        std::size_t depth;
        id oldValue;
    };
    // A change between will and did; of single indexes where there are some.
    struct PendingChange {
        NSString key;
        NSUInteger kind{};
        NSIndexSet indexes;
        std::vector<Told> told;
        // What an observer raised that was told beforehand.
        std::exception_ptr exception{};
    };

    std::shared_ptr<WeakRecord> const weakRecord;
    std::vector<Listener> listeners;
    std::vector<PendingChange> pendingChanges;
};

}
