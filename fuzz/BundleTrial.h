#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace mac::fuzz {

// What is wrong when the bytes are the information file of an application, and its strings in a language; empty when
// nothing is. Anything is right that can be told of it, as long as it is one thing.
std::string complaintAboutBundle(std::span<std::byte const> bytes);

} // namespace mac::fuzz
