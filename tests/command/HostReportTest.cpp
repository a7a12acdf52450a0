#include "command/HostReport.h"
#include "fuzz/Trials.h"
#include "tests/command/CommandRun.h"
#include <algorithm>

namespace framekeeper::test {
namespace {

std::size_t countOf(std::string const& text, std::string const& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

CopyFacts factsOf(std::string const& path, std::string const& version) {
    return {.path = path, .versionString = version, .exists = true};
}

std::vector<HostFacts> someHosts() {
    CopyFacts running = factsOf("/<a>\xff&/Mirror Frame.app", "2.1");
    running.isRunning = true;
    running.process = 17;
    CopyFacts atLogin = factsOf("/b/Mirror Frame.app", "=1+1");
    atLogin.isAutolaunched = true;
    return {{.name = "anna", .copies = {running, atLogin}},
            {.name = "<script>", .answer = HostAnswer::Late, .reason = "\"60 s\" are over"},
            {.name = "carl", .copies = {factsOf("/c/Mirror Frame.app", "2.1")}}};
}

TEST(HostReport, ShowsWhichVersionsLieWhere) {
    std::string const page = hostPage(someHosts());
    EXPECT_NE(page.find("<th scope=\"row\">2.1</th><td class=\"count\">2</td><td class=\"count\">1</td>"
                        "<td class=\"count\">0</td><td class=\"count\">2</td><td><details><summary>Hosts</summary>"
                        "<a href=\"#host0\">anna</a>, <a href=\"#host2\">carl</a></details>"),
              std::string::npos)
        << page;
    EXPECT_NE(page.find("2 of 3 hosts gave a complete answer. Copies: 3, running: 1, starting at login: 1."),
              std::string::npos);
}

TEST(HostReport, ShowsWhatRunsAndWhatStartsAtLogin) {
    std::string const page = hostPage(someHosts());
    std::size_t const running = page.find("<caption>Running copies</caption>");
    std::size_t const atLogin = page.find("<caption>Copies that start at login</caption>");
    std::size_t const end = page.find("<h2>Copies</h2>");
    ASSERT_TRUE(running < atLogin && atLogin < end && end != std::string::npos);
    EXPECT_NE(page.substr(running, atLogin - running).find("<td>17</td>"), std::string::npos);
    EXPECT_NE(page.substr(atLogin, end - atLogin).find("/b/Mirror Frame.app"), std::string::npos);
}

TEST(HostReport, EscapesWhatHostsTellAndKeepsEveryByte) {
    std::string const page = hostPage(someHosts());
    EXPECT_NE(
        page.find("<data value=\"file:///%3Ca%3E%FF%26/Mirror%20Frame.app\">/&lt;a&gt;\\xff&amp;/Mirror Frame.app"),
        std::string::npos)
        << page;
    EXPECT_NE(page.find("&quot;60 s&quot; are over"), std::string::npos);
    EXPECT_EQ(page.find("<script"), std::string::npos);
}

TEST(HostReport, TakesNothingFromTheNetworkAndItsColoursFromTheReader) {
    std::string const page = hostPage(someHosts());
    EXPECT_NE(page.find("<html lang=\"en\">"), std::string::npos);
    EXPECT_NE(page.find("default-src 'none'"), std::string::npos);
    EXPECT_EQ(page.find("http://"), std::string::npos);
    EXPECT_EQ(page.find("https://"), std::string::npos);
    EXPECT_EQ(page.find("src="), std::string::npos);
    std::string const style = page.substr(page.find("<style>"), page.find("</style>") - page.find("<style>"));
    EXPECT_NE(style.find("color-scheme: light dark; background: Canvas; color: CanvasText"), std::string::npos);
    EXPECT_EQ(countOf(style, "color:"), 1U);
    EXPECT_EQ(countOf(style, "background"), 1U);
    EXPECT_EQ(style.find('#'), std::string::npos);
}

TEST(HostReport, HasHeadersAndACaptionForEachTable) {
    std::string const page = hostPage(someHosts());
    EXPECT_EQ(countOf(page, "<table>"), 6U);
    EXPECT_EQ(countOf(page, "<caption>"), countOf(page, "<table>"));
    EXPECT_EQ(countOf(page, "<thead><tr><th scope=\"col\">"), countOf(page, "<table>"));
    EXPECT_EQ(mac::fuzz::complaintAboutPage(page), "");
}

TEST(HostReport, GivesSpreadsheetsOneRowForEachCopyAndEachHostWithoutOne) {
    std::string const rows = hostRows(someHosts());
    EXPECT_EQ(countOf(rows, "\r\n"), 5U);
    EXPECT_NE(rows.find("\"anna\",\"complete\",\"\",\"\",\"\",\"2.1\",\"yes\",\"yes\",\"17\",\"no\",\"no\","
                        "\"/<a>\\xff&/Mirror Frame.app\",\"file:///%3Ca%3E%FF%26/Mirror%20Frame.app\"\r\n"),
              std::string::npos)
        << rows;
    EXPECT_NE(rows.find("\"<script>\",\"late\",\"\"\"60 s\"\" are over\",\"\""), std::string::npos) << rows;
    EXPECT_EQ(mac::fuzz::complaintAboutRows(rows), "");
}

TEST(HostReport, DefusesFormulas) {
    EXPECT_NE(hostRows(someHosts()).find("\"'=1+1\""), std::string::npos);
    for (char const* const text : {"=1", "+1", "-1", "@a", "\ta", "\ra", "＝1", "＋1", "－1", "＠a"})
        EXPECT_EQ(rowField(text), "\"'" + std::string(text) + "\"");
    EXPECT_EQ(rowField("1=1"), "\"1=1\"");
    EXPECT_EQ(rowField("=\"a\""), "\"'=\"\"a\"\"\"");
}

TEST(HostReport, ComplainsOfHostsWithoutACompleteAnswer) {
    EXPECT_EQ(hostComplaints(someHosts()), "framekeeper-cli: <script>: late: \"60 s\" are over\n");
}

// On real files, with the command as a process of its own.
class HostReportCommand : public CommandTest {};

TEST_F(HostReportCommand, JoinsWhatTheCommandToldOnManyHosts) {
    std::string const copy = copyAt("\xff=", "1.4");
    CommandRun const list = run({"list", "--json"});
    ASSERT_EQ(list.status, 0) << list.errors;
    m_desktop.folder.makeFile("facts/anna.json", list.output);
    m_desktop.folder.makeFile("facts/berta.json", list.output);
    CommandRun const page = run({"report", m_desktop.folder.path("facts")});
    EXPECT_EQ(page.status, 0) << page.errors;
    EXPECT_EQ(page.errors, "");
    EXPECT_EQ(mac::fuzz::complaintAboutPage(page.output), "");
    EXPECT_EQ(countOf(page.output, "/%FF%3D/Mirror%20Frame.app\">"), 2U) << page.output;
    CommandRun const rows = run({"report", "--csv", m_desktop.folder.path("facts")});
    EXPECT_EQ(rows.status, 0) << rows.errors;
    EXPECT_EQ(mac::fuzz::complaintAboutRows(rows.output), "");
    EXPECT_EQ(countOf(rows.output, "\"1.4 (1.4)\""), 2U) << rows.output;
}

TEST_F(HostReportCommand, ListsHostsWithoutAnAnswerAndFails) {
    m_desktop.folder.makeFile("facts/anna.json", "Connection closed");
    CommandRun const done = run({"report", m_desktop.folder.path("facts"), home("never.json")});
    EXPECT_EQ(done.status, 1);
    EXPECT_NE(done.errors.find("framekeeper-cli: anna: rubbish: "), std::string::npos) << done.errors;
    EXPECT_NE(done.errors.find("framekeeper-cli: never: never: "), std::string::npos) << done.errors;
    EXPECT_NE(done.output.find("0 of 2 hosts gave a complete answer"), std::string::npos);
}

TEST_F(HostReportCommand, FailsWithoutAnyHost) {
    m_desktop.folder.makeFolder("facts");
    CommandRun const done = run({"report", m_desktop.folder.path("facts")});
    EXPECT_EQ(done.status, 1);
    EXPECT_EQ(done.output, "");
    EXPECT_NE(done.errors.find("no files of facts are there"), std::string::npos) << done.errors;
}

TEST_F(HostReportCommand, TellsThatThePageCouldNotBeWritten) {
    std::string const facts = m_desktop.folder.makeFile("anna.json", R"({"framekeeper": 1, "copies": []})");
    EXPECT_EQ(run({"report", facts}).status, 0);
    EXPECT_EQ(runInto(">/dev/full", {"report", facts}).status, 6);
    EXPECT_EQ(run({"report"}).status, 2);
    EXPECT_EQ(run({"report", "--json", facts}).status, 2);
}

} // namespace
} // namespace framekeeper::test
