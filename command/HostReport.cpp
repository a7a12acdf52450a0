#include "command/HostReport.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/VisibleLine.h"
#include "platform/system/PercentEscapes.h"
#include <algorithm>
#include <array>
#include <initializer_list>
#include <map>

namespace framekeeper {

using namespace mac;

namespace {

// A text of a host in one line without control characters.
std::string visibleText(std::string_view bytes) { return visibleLine(unitsFromFileSystemBytes(bytes)); }

std::string uriOf(CopyFacts const& copy) { return "file://" + percentEscaped(copy.path); }

// The version as people know it; a dash if the copy tells none.
std::string versionOf(CopyFacts const& copy) {
    std::string const& version = copy.versionString.empty() ? copy.version : copy.versionString;
    return version.empty() ? "–" : visibleText(version);
}

std::string escaped(std::string_view text) {
    std::string html;
    html.reserve(text.size());
    for (char const byte : text) {
        switch (byte) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += byte;
        }
    }
    return html;
}

// No colours of its own: text and ground are the browser's pair, which the reader has chosen or can read.
constexpr std::string_view PageStart = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Copies of Mirror Frame</title>
<style>
:root { color-scheme: light dark; background: Canvas; color: CanvasText; font: 1rem/1.4 sans-serif; }
body { margin: 1rem auto; max-width: 80rem; padding: 0 1rem; }
table { border-collapse: collapse; margin-bottom: 1.5rem; }
caption { font-weight: bold; padding: .3rem 0; text-align: start; }
th, td { border: 1px solid; padding: .2rem .6rem; text-align: start; vertical-align: top; }
td.count { text-align: end; }
data { font-family: monospace; overflow-wrap: anywhere; white-space: pre-wrap; }
section { content-visibility: auto; }
</style>
</head>
<body>
<h1>Copies of Mirror Frame</h1>
)";

// In the order of the cells that are put in a row.
std::string tableStart(std::string_view caption, std::initializer_list<std::string_view> columns) {
    std::string html = "<table>\n<caption>" + escaped(caption) + "</caption>\n<thead><tr>";
    for (std::string_view const column : columns)
        ((html += "<th scope=\"col\">") += column) += "</th>";
    return html + "</tr></thead>\n<tbody>\n";
}

constexpr std::string_view TableEnd = "</tbody>\n</table>\n";

std::string cell(std::string_view text) { return "<td>" + escaped(text) + "</td>"; }
std::string countCell(std::size_t count) { return "<td class=\"count\">" + std::to_string(count) + "</td>"; }
std::string rowHead(std::string_view html) { return "<th scope=\"row\">" + std::string(html) + "</th>"; }
std::string pathCell(CopyFacts const& copy) {
    return "<td><data value=\"" + uriOf(copy) + "\">" + escaped(visibleText(copy.path)) + "</data></td>";
}
std::string yesOrNo(bool isSo) { return isSo ? "yes" : "no"; }

struct Counts {
    std::size_t copies{0};
    std::size_t running{0};
    std::size_t atLogin{0};

    void add(CopyFacts const& copy) {
        copies += copy.exists ? 1 : 0;
        running += copy.isRunning ? 1 : 0;
        atLogin += copy.isAutolaunched ? 1 : 0;
    }
    std::string cells() const { return countCell(copies) + countCell(running) + countCell(atLogin); }
};

Counts countsOf(HostFacts const& host) {
    Counts counts;
    for (CopyFacts const& copy : host.copies)
        counts.add(copy);
    return counts;
}

struct VersionCounts {
    Counts counts{};
    // Indexes of the hosts with this version, ascending.
    std::vector<std::size_t> hosts{};
};

std::map<std::string, VersionCounts> versionsOf(std::vector<HostFacts> const& hosts) {
    std::map<std::string, VersionCounts> versions;
    for (std::size_t index = 0; index < hosts.size(); ++index) {
        for (CopyFacts const& copy : hosts[index].copies) {
            VersionCounts& version = versions[versionOf(copy)];
            version.counts.add(copy);
            if (version.hosts.empty() || version.hosts.back() != index) version.hosts.push_back(index);
        }
    }
    return versions;
}

std::string linkTo(std::vector<HostFacts> const& hosts, std::size_t index) {
    return "<a href=\"#host" + std::to_string(index) + "\">" + escaped(hosts[index].name) + "</a>";
}

std::string overview(std::vector<HostFacts> const& hosts) {
    Counts total;
    for (HostFacts const& host : hosts) {
        Counts const counts = countsOf(host);
        total = {total.copies + counts.copies, total.running + counts.running, total.atLogin + counts.atLogin};
    }
    auto const complete = std::ranges::count(hosts, HostAnswer::Complete, &HostFacts::answer);
    return "<p>" + std::to_string(complete) + " of " + std::to_string(hosts.size()) +
           " hosts gave a complete answer. Copies: " + std::to_string(total.copies) +
           ", running: " + std::to_string(total.running) + ", starting at login: " + std::to_string(total.atLogin) +
           ".</p>\n";
}

std::string versionTable(std::vector<HostFacts> const& hosts) {
    std::string html = tableStart("Versions", {"Version", "Copies", "Running", "At login", "Hosts", "On"});
    for (auto const& [version, found] : versionsOf(hosts)) {
        html += "<tr>" + rowHead(escaped(version)) + found.counts.cells() + countCell(found.hosts.size()) +
                "<td><details><summary>Hosts</summary>";
        for (std::size_t const index : found.hosts)
            html += (index == found.hosts.front() ? "" : ", ") + linkTo(hosts, index);
        html += "</details></td></tr>\n";
    }
    return (html += TableEnd);
}

std::string hostTable(std::vector<HostFacts> const& hosts) {
    std::string html = tableStart("Hosts", {"Host", "Answer", "Copies", "Running", "At login", "Gathered", "Reason"});
    for (std::size_t index = 0; index < hosts.size(); ++index) {
        HostFacts const& host = hosts[index];
        html += "<tr>" + rowHead(linkTo(hosts, index)) + cell(nameOf(host.answer)) + countsOf(host).cells() +
                cell(host.gathered) + cell(host.reason) + "</tr>\n";
    }
    return (html += TableEnd);
}

// The copies of all hosts that have this flag.
std::string flaggedTable(std::string_view caption, std::vector<HostFacts> const& hosts, bool CopyFacts::*flag) {
    std::string html = tableStart(caption, {"Host", "Version", "Process", "Path"});
    for (std::size_t index = 0; index < hosts.size(); ++index) {
        for (CopyFacts const& copy : hosts[index].copies) {
            if (!(copy.*flag)) continue;
            html += "<tr>" + rowHead(linkTo(hosts, index)) + cell(versionOf(copy)) +
                    cell(copy.process ? std::to_string(*copy.process) : "–") + pathCell(copy) + "</tr>\n";
        }
    }
    return (html += TableEnd);
}

std::string hostSection(HostFacts const& host, std::size_t index) {
    std::string html = "<section id=\"host" + std::to_string(index) + "\">\n<h3>" + escaped(host.name) + "</h3>\n";
    if (host.answer != HostAnswer::Complete)
        html += "<p>Answer: " + std::string(nameOf(host.answer)) + ". " + escaped(host.reason) + "</p>\n";
    if (host.copies.empty()) return html + "<p>No copies.</p>\n</section>\n";
    html += tableStart("Copies on " + host.name, {"Path", "Version", "Exists", "Runs", "At login", "In the places"});
    for (CopyFacts const& copy : host.copies)
        html += "<tr>" + pathCell(copy) + cell(versionOf(copy)) + cell(yesOrNo(copy.exists)) +
                cell(yesOrNo(copy.isRunning)) + cell(yesOrNo(copy.isAutolaunched)) + cell(yesOrNo(copy.isInToolbar)) +
                "</tr>\n";
    return (html += TableEnd) + "</section>\n";
}

// A spreadsheet evaluates what begins so; the last four are the full-width forms of the first.
bool isFormula(std::string_view text) {
    constexpr std::array<std::string_view, 10> starts{"=", "+", "-", "@", "\t", "\r", "＝", "＋", "－", "＠"};
    return std::ranges::any_of(starts, [&](std::string_view start) { return text.starts_with(start); });
}

std::string rowOf(std::initializer_list<std::string_view> fields) {
    std::string row;
    for (std::string_view const field : fields)
        (row += row.empty() ? "" : ",") += rowField(field);
    return row + "\r\n";
}

std::string rowOfCopy(HostFacts const& host, CopyFacts const& copy) {
    return rowOf({host.name, nameOf(host.answer), host.reason, host.gathered, visibleText(copy.version),
                  visibleText(copy.versionString), yesOrNo(copy.exists), yesOrNo(copy.isRunning),
                  copy.process ? std::to_string(*copy.process) : "", yesOrNo(copy.isAutolaunched),
                  yesOrNo(copy.isInToolbar), visibleText(copy.path), uriOf(copy)});
}

} // namespace

std::string hostPage(std::vector<HostFacts> const& hosts) {
    std::string html(PageStart);
    html += overview(hosts);
    html += "<h2>Versions</h2>\n" + versionTable(hosts);
    html += "<h2>Hosts</h2>\n" + hostTable(hosts);
    html += "<h2>Running</h2>\n" + flaggedTable("Running copies", hosts, &CopyFacts::isRunning);
    html += "<h2>Login</h2>\n" + flaggedTable("Copies that start at login", hosts, &CopyFacts::isAutolaunched);
    html += "<h2>Copies</h2>\n";
    for (std::size_t index = 0; index < hosts.size(); ++index)
        html += hostSection(hosts[index], index);
    return html + "</body>\n</html>\n";
}

std::string hostRows(std::vector<HostFacts> const& hosts) {
    std::string rows = rowOf({"host", "answer", "reason", "gathered", "version", "versionString", "exists", "isRunning",
                              "processID", "isAutolaunched", "isInToolbar", "path", "uri"});
    for (HostFacts const& host : hosts) {
        for (CopyFacts const& copy : host.copies)
            rows += rowOfCopy(host, copy);
        if (host.copies.empty())
            rows +=
                rowOf({host.name, nameOf(host.answer), host.reason, host.gathered, "", "", "", "", "", "", "", "", ""});
    }
    return rows;
}

std::string rowField(std::string_view text) {
    std::string field = isFormula(text) ? "\"'" : "\"";
    for (char const byte : text)
        field += byte == '"' ? std::string_view("\"\"") : std::string_view(&byte, 1);
    return field + "\"";
}

std::string hostComplaints(std::vector<HostFacts> const& hosts) {
    std::string text;
    for (HostFacts const& host : hosts) {
        if (host.answer == HostAnswer::Complete) continue;
        text += "framekeeper-cli: " + host.name + ": " + nameOf(host.answer);
        text += (host.reason.empty() ? "" : ": " + host.reason) + "\n";
    }
    return text;
}

} // namespace framekeeper
