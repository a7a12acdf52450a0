#pragma once

#include "platform/foundation/Types.h"
#include <array>

namespace mac {

// A file name of at most 255 UTF-16 code units, without an end mark. In it a slash stands for the colon that paths
// show, and a colon for nothing that paths could show.
struct HFSUniStr255 {
    std::uint16_t length;
    std::array<unichar, 255> unicode;
};

static_assert(sizeof(HFSUniStr255) == 512);

// What is a slash in such a name or in an HFS path is a colon in the path of a file, and the other way round.
constexpr unichar slashAndColonExchanged(unichar unit) {
    if (unit == u'/') return u':';
    return unit == u':' ? u'/' : unit;
}

} // namespace mac
