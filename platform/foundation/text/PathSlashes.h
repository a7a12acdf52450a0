#pragma once

#include <string_view>

namespace mac {

// The path without the slashes at its end, but for one that is all there is. Any thread.
constexpr std::u16string_view withoutTrailingSlashes(std::u16string_view path) {
    while (path.size() > 1 && path.ends_with(u'/'))
        path.remove_suffix(1);
    return path;
}

} // namespace mac
