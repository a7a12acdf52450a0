#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

// Replays what the fuzz targets found worth keeping.

namespace mac::test {

// Expects that the corpus of the target has files, and that there is nothing to complain about any of them.
void expectNoComplaints(std::string const& target, std::function<std::string(std::string_view bytes)> const& complaint);
void expectNoComplaints(std::string const& target,
                        std::function<std::string(std::span<std::byte const> bytes)> const& complaint);

} // namespace mac::test
