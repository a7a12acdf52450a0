#include "command/HostReport.h"
#include "fuzz/Trials.h"
#include <algorithm>
#include <cstddef>
#include <vector>

namespace mac::fuzz {

namespace {

using namespace framekeeper;

constexpr std::size_t FieldsOfARow = 13;

std::string complaintAboutField(std::string_view field) {
    bool const isFormula = !field.empty() && std::string_view("=+-@\t\r").find(field.front()) != std::string_view::npos;
    if (isFormula) return "a field is a formula";
    bool const hasControls =
        std::ranges::any_of(field, [](char byte) { return static_cast<unsigned char>(byte) < 0x20; });
    return hasControls ? "a field holds a control character" : "";
}

std::string complaintAboutCopies(HostFacts const& host) {
    if (host.answer == HostAnswer::Rubbish && !host.copies.empty()) return "copies of rubbish are believed";
    bool const areAbsolute = std::ranges::all_of(host.copies, [](CopyFacts const& copy) {
        return copy.path.starts_with('/') && copy.path.find('\0') == std::string::npos;
    });
    return areAbsolute ? "" : "a copy has no absolute path";
}

} // namespace

std::string complaintAboutPage(std::string_view page) {
    std::vector<std::string_view> open;
    for (std::size_t at = page.find('<'); at != std::string_view::npos; at = page.find('<', at + 1)) {
        std::string_view const tag = page.substr(at + 1, page.find('>', at) - at - 1);
        std::string_view const name = tag.substr(0, tag.find(' '));
        if (name == "!DOCTYPE" || name == "meta") continue;
        if (!name.starts_with('/')) {
            open.push_back(name);
            continue;
        }
        if (open.empty() || open.back() != name.substr(1)) return "an element is closed that is not open";
        open.pop_back();
    }
    return open.empty() ? "" : "an element is not closed";
}

std::string complaintAboutRows(std::string_view rows) {
    std::size_t fields = 0;
    while (!rows.empty()) {
        if (!rows.starts_with('"')) return "a field is not quoted";
        std::string field;
        std::size_t at = 1;
        for (; at < rows.size(); ++at) {
            if (rows[at] == '"' && rows.substr(at + 1, 1) != "\"") break;
            if (rows[at] == '"') ++at;
            field += rows[at];
        }
        if (at >= rows.size()) return "a field does not end";
        if (std::string const complaint = complaintAboutField(field); !complaint.empty()) return complaint;
        ++fields;
        rows.remove_prefix(at + 1);
        bool const isRowOver = rows.starts_with("\r\n");
        if (!isRowOver && !rows.starts_with(',')) return "something follows a field";
        if (isRowOver && fields != FieldsOfARow) return "a row has another number of fields";
        if (isRowOver) fields = 0;
        rows.remove_prefix(isRowOver ? 2 : 1);
    }
    return fields == 0 ? "" : "the last row does not end";
}

std::string complaintAboutHostFacts(std::string_view bytes) {
    HostFacts const host = hostFactsFrom("host", bytes);
    if (host.name.empty()) return "a host has no name";
    if (std::string const complaint = complaintAboutCopies(host); !complaint.empty()) return complaint;
    if (std::string const complaint = complaintAboutPage(hostPage({host})); !complaint.empty()) return complaint;
    return complaintAboutRows(hostRows({host}));
}

} // namespace mac::fuzz
