#pragma once

#include <optional>
#include <span>
#include <string>

namespace mac {

// The program as it is named to people.
struct ProgramNames {
    // The name of its file: "framekeeper".
    std::string command{};
    // "0.1.0"
    std::string version{};
};

// Answers --help and --version on standard output, and refuses what is no option with a usage text on standard error.
// Words are bytes, the program's own name first. The exit status: 0, 1 if the output could not be written, 2 for words
// that are not known; nullopt if the program is to start. Words "-KEY VALUE" are settings (NSUserDefaults.h), and the
// toolkit has options of its own; both are let through.
std::optional<int> answerOptions(std::span<std::string const> words, ProgramNames const& names);

} // namespace mac
