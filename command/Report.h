#pragma once

#include "app/AppController.h"
#include "command/CommandLine.h"
#include "command/Outcome.h"
#include <string>
#include <vector>

// The command's output, as bytes. In text for people a path is one line without control characters; with -0 it is the
// file system's bytes. In JSON "path" is text, in which bytes that are not UTF-8 are U+FFFD, and "uri" has every byte.

namespace framekeeper {

// The version of the JSON documents' form. Keys may be added without a new one; docs/man/framekeeper-cli.1 describes
// them.
inline constexpr int JSONVersion = 1;

// Records as a table, as JSON or as paths.
std::string listing(NSArray const& records, OutputForm form);
// Records one below the other, with all that is known of each.
std::string details(NSArray const& records, OutputForm form);
// The outcome of each path. In text for people only new paths are printed; success needs no words.
std::string results(std::vector<Outcome> const& outcomes, OutputForm form);
// The text in the user's language.
std::string localized(char const* key);
// The text with the value, as bytes, in its one place "%@".
std::string filledIn(std::string text, std::string const& value);
// One line for each path that is not done, for standard error.
std::string complaints(std::vector<Outcome> const& outcomes);

} // namespace framekeeper
