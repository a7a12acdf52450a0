#pragma once

#include <string>
#include <vector>

namespace mac::test {

// Another program of the desktop's that knows the trash, each time on a session bus of its own. Throws when it does not
// end well.
std::string gio(std::vector<std::string> const& arguments);

bool gioKnowsTrash();

inline constexpr char GioKnowsNoTrash[] = "gio knows no trash here; the package gvfs has what it needs";

} // namespace mac::test
