#pragma once

#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/foundation/objects/NSValueTransformer.h"
#include <QString>
#include <QStringList>
#include <QTimer>
#include <map>
#include <memory>
#include <vector>

namespace mac {

// What the key paths of an interface file start from: an object that the file names, else a key of its controller.
class KeyPathScope {
public:
    struct Start {
        id object;
        NSString keyPath;
    };

    void setController(id const& controller) { m_controller = controller; }
    void add(QString const& name, id const& object) { m_objects.insert_or_assign(name, object); }
    // Nil when the file names no such object.
    id objectNamed(QString const& name) const;
    Start startOf(QString const& keyPath) const;

private:
    id m_controller;
    std::map<QString, id> m_objects;
};

// What a condition takes a value for: nil, the null object and NO are false.
bool isTruth(id const& value);

// The value of a key path of the scope, and word of its changes. With "|TRANSFORMER" behind the key path it is what the
// value transformer of that name makes of the value. An unknown key, and a transformer that does not exist, are logged
// once; the value is nil.
class BoundValue {
public:
    BoundValue(KeyPathScope const& scope, QString const& keyPath, std::function<void()> changed);

    id value() const;

private:
    WeakReference m_object;
    NSString m_keyPath;
    bool m_isTransformed;
    NSValueTransformer m_transformer;
    mutable bool m_isUnknown{false};
    std::unique_ptr<KeyPathObserver> m_observer;
};

// Whether all of several key paths are true, told at once and after each change. A "!" before a key path turns it
// round; nil, NO and an unknown key are false.
class Condition {
public:
    // A condition that is or comes true is told after the delay, if it is still true then; milliseconds.
    Condition(KeyPathScope const& scope, QStringList const& keyPaths, int delay, std::function<void(bool)> changed);

    bool isTrue() const;

private:
    struct Term {
        std::unique_ptr<BoundValue> value;
        bool isNegated;
    };

    void follow();

    std::function<void(bool)> m_changed;
    std::vector<Term> m_terms;
    QTimer m_delay;
};

} // namespace mac
