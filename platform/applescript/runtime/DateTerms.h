#pragma once

#include "platform/applescript/runtime/ScriptValue.h"
#include <array>

// The constants that name parts of dates, in their order.

namespace mac::applescript {

inline constexpr auto Months = std::to_array<Code>({codeOf("jan "), codeOf("feb "), codeOf("mar "), codeOf("apr "),
                                                    codeOf("may "), codeOf("jun "), codeOf("jul "), codeOf("aug "),
                                                    codeOf("sep "), codeOf("oct "), codeOf("nov "), codeOf("dec ")});
// 0 is Sunday.
inline constexpr auto Weekdays = std::to_array<Code>(
    {codeOf("sun "), codeOf("mon "), codeOf("tue "), codeOf("wed "), codeOf("thu "), codeOf("fri "), codeOf("sat ")});

} // namespace mac::applescript
