#pragma once

#include "tests/faults/FaultPlan.h"
#include <cerrno>
#include <type_traits>

namespace mac::faults {

// What a failed call answers.
template <class Answer>
Answer failure() {
    if constexpr (std::is_pointer_v<Answer>)
        return nullptr;
    else
        return Answer{-1};
}

template <class Argument>
long asNumber(Argument argument) {
    if constexpr (std::is_pointer_v<Argument>)
        return reinterpret_cast<long>(argument);
    else
        return static_cast<long>(argument);
}

// Makes the call in the next library. A function that is declared with "..." takes its arguments in the same way.
template <class Answer, class... Arguments>
Answer made(Call& call, Arguments... arguments) {
    Answer const answer = reinterpret_cast<Answer (*)(Arguments...)>(nextOf(call))(arguments...);
    if constexpr (sizeof...(Arguments) <= 6)
        if (answer != failure<Answer>()) tellPassed(call, {asNumber(arguments)...});
    return answer;
}

// Makes the call unless the plan lets it fail.
template <class Answer, class... Arguments>
Answer passed(Call& call, Arguments... arguments) {
    if (verdictOn(call) == Verdict::Fails) return failure<Answer>();
    return made<Answer>(call, arguments...);
}

} // namespace mac::faults
