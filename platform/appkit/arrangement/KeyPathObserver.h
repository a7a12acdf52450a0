#pragma once

#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/text/NSString.h"
#include <functional>

namespace mac {

// Calls a function after each change of an object's value of a key path, from its birth to its death. It keeps nothing
// alive. Main thread.
class KeyPathObserver {
public:
    KeyPathObserver(id const& object, NSString const& keyPath, std::function<void()> changed);
    ~KeyPathObserver();
    KeyPathObserver(KeyPathObserver const&) = delete;
    KeyPathObserver& operator=(KeyPathObserver const&) = delete;

private:
    WeakReference m_object;
    NSString m_keyPath;
    id m_observer;
};

} // namespace mac
