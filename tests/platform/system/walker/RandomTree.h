#pragma once

#include <cstdint>
#include <string>

namespace mac::test {

// Fills the folder with some hundreds of folders, packages (also within each other and within folders that are packages
// by a hair's breadth), files and links of the same names, and names with line feeds and bytes that are no text. It is
// the same for each seed.
void makeRandomTree(std::string const& folder, std::uint64_t seed);

} // namespace mac::test
