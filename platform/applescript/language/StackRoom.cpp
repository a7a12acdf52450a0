#include "platform/applescript/language/StackRoom.h"
#include <algorithm>
#include <pthread.h>

namespace mac::applescript {

namespace {

// The bytes used of a stack whose end is unknown, and the bytes of any stack left for code that does not check.
constexpr std::uintptr_t MostUsed = 6U << 20U;
constexpr std::uintptr_t LeastLeft = 512U << 10U;

std::uintptr_t lowestAddress() {
    std::uintptr_t const here = currentStackAddress();
    std::uintptr_t lowest = here > MostUsed ? here - MostUsed : 0;
    pthread_attr_t attributes{};
    if (::pthread_getattr_np(::pthread_self(), &attributes) != 0) return lowest;
    void* start = nullptr;
    std::size_t size = 0;
    if (::pthread_attr_getstack(&attributes, &start, &size) == 0)
        lowest =
            std::max(lowest, reinterpret_cast<std::uintptr_t>(start) + std::min<std::uintptr_t>(LeastLeft, size / 2));
    ::pthread_attr_destroy(&attributes);
    return lowest;
}

} // namespace

std::uintptr_t lowestStackAddress() {
    thread_local std::uintptr_t const lowest = lowestAddress();
    return lowest;
}

bool hasStackRoom() { return currentStackAddress() >= lowestStackAddress(); }

} // namespace mac::applescript
