#pragma once

#include "command/HostFacts.h"
#include <string>
#include <string_view>
#include <vector>

// The copies of many hosts as one document. Its size and the time it takes grow with the number of hosts and copies
// alone.

namespace framekeeper {

// A page in HTML, UTF-8, which loads nothing else and runs no scripts: which versions lie on which hosts, which copies
// run, which start at login, which hosts gave no complete answer, and the copies of each host. It takes its colours
// from the browser, in light and dark. The path of a copy stands in a <data> element whose value is its URI, with every
// byte.
std::string hostPage(std::vector<HostFacts> const& hosts);

// Rows for a spreadsheet, in CSV (RFC 4180), UTF-8: one for each copy, and one for each host that has told none. The
// first row names the columns. All fields are quoted, and one that a spreadsheet would take for a formula begins with
// an apostrophe. The last column is the URI, with every byte of the path.
std::string hostRows(std::vector<HostFacts> const& hosts);

// The text as a quoted field of hostRows().
std::string rowField(std::string_view text);

// One line for each host without a complete answer, for standard error.
std::string hostComplaints(std::vector<HostFacts> const& hosts);

} // namespace framekeeper
