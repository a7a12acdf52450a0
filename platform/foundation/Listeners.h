#pragma once

#include <algorithm>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace mac {

// Functions that want to be told of something, by token. Any thread.
template <class... Arguments>
class Listeners {
public:
    using Function = std::function<void(Arguments const&...)>;

    int add(Function function) {
        std::lock_guard const guard(m_lock);
        m_functions.emplace_back(++m_lastToken, std::move(function));
        return m_lastToken;
    }

    void remove(int token) {
        std::lock_guard const guard(m_lock);
        std::erase_if(m_functions, [token](auto const& entry) { return entry.first == token; });
    }

    // Without the lock, so that a listener may add and remove listeners. What a listener tells itself is not passed on.
    void tell(Arguments const&... arguments) {
        thread_local bool isTelling = false;
        if (isTelling) return;
        std::vector<std::pair<int, Function>> functions;
        {
            std::lock_guard const guard(m_lock);
            functions = m_functions;
        }
        isTelling = true;
        struct End {
            ~End() { isTelling = false; }
        } const end;
        for (auto const& [token, function] : functions)
            function(arguments...);
    }

private:
    std::mutex m_lock;
    std::vector<std::pair<int, Function>> m_functions;
    int m_lastToken{0};
};

} // namespace mac
