#pragma once

#include <functional>

namespace mac::test {

// While the object lives, the function is called before each of the program's calls to the system that list an item's
// attributes or read one, with the number of the call, from 1; within it calls are not counted. One at a time.
class AttributeCalls {
public:
    explicit AttributeCalls(std::function<void(unsigned)> before);
    ~AttributeCalls();
    AttributeCalls(AttributeCalls const&) = delete;
    AttributeCalls& operator=(AttributeCalls const&) = delete;

    // For the calls.
    static void tell();

private:
    std::function<void(unsigned)> m_before;
    unsigned m_count{0};
    bool m_isTelling{false};
};

} // namespace mac::test
