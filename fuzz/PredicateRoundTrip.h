#pragma once

#include <string>
#include <string_view>

namespace mac::fuzz {

// Reads the bytes as a predicate, with two arguments to take. What is read must be written as text that makes the same
// predicate, and answers or raises what the framework raises. Answers what did not hold; an empty text when all did, or
// when the bytes are no predicate and the reader says where.
std::string complaintAboutPredicate(std::string_view bytes);

} // namespace mac::fuzz
