#pragma once

#include <string>
#include <string_view>

namespace framekeeper::test {

// What is wrong with a page or rows of hosts, or "". In the page every element that is opened must be closed in its
// turn; rows must be those of RFC 4180, with 13 fields each, none of which a spreadsheet takes for a formula.
std::string complaintAboutPage(std::string_view page);
std::string complaintAboutRows(std::string_view rows);

// Takes the bytes for what a host has told, and reports it in both forms. What does not hold, or "".
std::string complaintAboutHostFacts(std::string_view bytes);

} // namespace framekeeper::test
