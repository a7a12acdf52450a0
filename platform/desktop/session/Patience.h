#pragma once

#include <chrono>

namespace mac {

// How long an action waits for its neighbours in all: the bus, the display, a file browser that starts or answers. A
// scope on the stack; what is called inside shares its time, also through patiences of its own, so that an action on
// many items waits once. One thread has one; any thread.
class Patience {
public:
    static constexpr std::chrono::milliseconds Longest{5'000};

    explicit Patience(std::chrono::milliseconds longest = Longest);
    ~Patience();
    Patience(Patience const&) = delete;
    Patience& operator=(Patience const&) = delete;

    // The time that is left on this thread: zero once it is over, and nothing new is to be begun then. All of it where
    // there is no patience.
    static std::chrono::milliseconds left();
    // Leaves no more time to this thread: a neighbour has kept silent. Nothing where there is no patience.
    static void end();

private:
    bool m_isOutermost;
};

} // namespace mac
