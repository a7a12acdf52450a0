#pragma once

#include <string>
#include <vector>

namespace mac {

// The user's languages as the environment names them (LANGUAGE, LC_ALL, LC_MESSAGES, LANG), the preferred one first,
// each with and without its country: "de_AT", "de". English comes last, if no other variable names it before. Any
// thread.
std::vector<std::string> userLanguages();

} // namespace mac
