#pragma once

#include "platform/foundation/objects/Object.h"
#include <QTimer>
#include <deque>
#include <memory>
#include <vector>

namespace mac {

// Lets go of many objects little by little, whenever the event loop has nothing else to do: freeing a hundred thousand
// records at once would hold it for longer than showing others in their place. Main thread.
class LateRelease {
public:
    // The last of them goes first. Few go at once, and so do all while no event loop runs.
    void add(std::vector<id> objects);

    bool isEmpty() const { return m_waiting.empty(); }

private:
    void releaseSome();

    std::deque<std::vector<id>> m_waiting;
    std::unique_ptr<QTimer> m_timer;
};

} // namespace mac
