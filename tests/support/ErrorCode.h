#pragma once

#include "platform/system/Result.h"

namespace mac::test {

// The system's code of a failure; 0 if there is none.
inline int codeOf(Result<void> const& result) { return result.isDone() ? 0 : result.problem().code; }

template <class T>
int codeOf(Result<T> const& result) {
    return result.hasValue() ? 0 : result.problem().code;
}

} // namespace mac::test
