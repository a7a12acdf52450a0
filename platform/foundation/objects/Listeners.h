#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace mac {

// Functions that want to be told of something, by token. Any thread; one of them is told at a time, so that none runs
// any more once it has been removed. A function therefore waits for no other thread.
template <class... Arguments>
class Listeners {
public:
    using Function = std::function<void(Arguments const&...)>;

    int add(Function function) {
        std::lock_guard const guard(m_lock);
        m_functions.emplace(++m_lastToken, std::make_shared<Function>(std::move(function)));
        return m_lastToken;
    }

    void remove(int token) {
        std::lock_guard const guard(m_lock);
        m_functions.erase(token);
    }

    // In the order they were added. What a listener tells itself is not passed on; it may add and remove listeners.
    void tell(Arguments const&... arguments) {
        std::lock_guard const guard(m_lock);
        // Under the lock this is the same thread, in a listener.
        if (m_isTelling) return;
        m_isTelling = true;
        struct End {
            bool& isTelling;
            ~End() { isTelling = false; }
        } const end{m_isTelling};
        for (auto const& [token, function] : std::map(m_functions)) {
            if (m_functions.contains(token)) (*function)(arguments...);
        }
    }

private:
    std::recursive_mutex m_lock;
    std::map<int, std::shared_ptr<Function>> m_functions;
    bool m_isTelling{false};
    int m_lastToken{0};
};

} // namespace mac
