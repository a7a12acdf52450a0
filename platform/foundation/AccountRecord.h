#pragma once

#include <cerrno>
#include <cstddef>
#include <vector>

namespace mac {

// What the function makes of a record in the databases of users and groups; an empty answer where there is none. The
// look-up is one of the reentrant calls, which wants a larger buffer until it has enough: it gets the record, the
// buffer, its size and where to point at what was found. For implementations; any thread.
template <class Record, class LookUp, class Answer>
auto answerOf(LookUp const& lookUp, Answer const& answer) -> decltype(answer(Record())) {
    constexpr std::size_t largestBuffer = 1U << 22;
    for (std::size_t size = 1024; size <= largestBuffer; size *= 2) {
        std::vector<char> buffer(size);
        Record record{};
        Record* found = nullptr;
        int const status = lookUp(&record, buffer.data(), buffer.size(), &found);
        if (status == ERANGE || status == EINTR) continue;
        if (!found) break;
        return answer(*found);
    }
    return {};
}

} // namespace mac
