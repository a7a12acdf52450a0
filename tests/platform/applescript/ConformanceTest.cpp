#include "platform/applescript/ScriptEngine.h"
#include "platform/applescript/SourceForm.h"
#include "platform/files/HFSPaths.h"
#include "platform/foundation/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include <fstream>
#include <gtest/gtest.h>

// FRAMEKEEPER_PAIRS is a folder of tables, one a chapter. The last line of a source ends in " ==> " and the result in
// source form; "! " begins the message of an error. ␊ and ␍ stand for line ends in a result. The scripts of some
// chapters run in a home of their own, a new one each: ⌂/ is its path, ⌂: its path as HFS writes it, and ⌂ its folder.

namespace mac::applescript::test {

namespace {

struct Pair {
    std::string source;
    std::string expected;
    int line{0};
};

std::string replaced(std::string text, std::string_view sought, std::string_view replacement) {
    for (std::size_t place = text.find(sought); place != std::string::npos; place = text.find(sought, place + 1))
        text.replace(place, sought.size(), replacement);
    return text;
}

std::vector<Pair> pairsOf(std::string const& chapter) {
    std::vector<Pair> pairs;
    std::ifstream file(std::string(FRAMEKEEPER_PAIRS "/") + chapter + ".txt");
    std::string source;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        std::size_t const mark = line.find(" ==>");
        source += (source.empty() ? "" : "\n") + line.substr(0, mark);
        if (mark == std::string::npos) continue;
        std::string const expected = line.size() > mark + 5 ? line.substr(mark + 5) : std::string();
        pairs.push_back({.source = std::exchange(source, {}), .expected = expected, .line = number});
    }
    return pairs;
}

std::string outcomeText(std::string const& source) {
    engineState().text = TextContext();
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(*unitsFromUTF8(source), error);
    if (!script) return "! " + utf8FromUnits(error.message) + " (" + std::to_string(error.number) + ")";
    ScriptOutcome const outcome = script->run({});
    if (outcome.error)
        return "! " + utf8FromUnits(outcome.error->message) + " (" + std::to_string(outcome.error->number) + ")";
    return replaced(replaced(utf8FromUnits(sourceForm(outcome.value)), "\n", "␊"), "\r", "␍");
}

std::string withHome(std::string const& text, std::string const& home) {
    std::string const hfs = utf8FromUnits(hfsPathFromPOSIXPath(unitsFromFileSystemBytes(home), true));
    std::string folder = "startup disk of application \"Finder\"";
    for (std::size_t begin = 1; begin < home.size();) {
        std::size_t const end = std::min(home.find('/', begin), home.size());
        folder.insert(0, "folder \"" + home.substr(begin, end - begin) + "\" of ");
        begin = end + 1;
    }
    return replaced(replaced(replaced(text, "⌂/", home + "/"), "⌂:", hfs), "⌂", folder);
}

class Conformance : public testing::TestWithParam<char const*> {};

TEST_P(Conformance, EverySourceHasItsResult) {
    std::vector<Pair> const pairs = pairsOf(GetParam());
    ASSERT_FALSE(pairs.empty());
    for (Pair const& pair : pairs)
        EXPECT_EQ(outcomeText(pair.source), pair.expected) << GetParam() << ".txt:" << pair.line << "\n" << pair.source;
}

class ConformanceOfApplications : public testing::TestWithParam<char const*> {};

TEST_P(ConformanceOfApplications, EverySourceHasItsResult) {
    std::vector<Pair> const pairs = pairsOf(GetParam());
    ASSERT_FALSE(pairs.empty());
    for (Pair const& pair : pairs) {
        ScriptHome const home;
        EXPECT_EQ(outcomeText(withHome(pair.source, home.path())), withHome(pair.expected, home.path()))
            << GetParam() << ".txt:" << pair.line << "\n"
            << pair.source;
    }
}

INSTANTIATE_TEST_SUITE_P(Applications, ConformanceOfApplications,
                         testing::Values("finder", "system-events", "system-preferences"),
                         [](auto const& chapter) { return replaced(chapter.param, "-", "_"); });

INSTANTIATE_TEST_SUITE_P(Chapters, Conformance,
                         testing::Values("additions", "coercion", "comparison", "control", "dates", "errors",
                                         "handlers", "lexical", "lists", "numbers", "records", "references",
                                         "script-objects", "text"),
                         [](auto const& chapter) { return replaced(chapter.param, "-", "_"); });

} // namespace

} // namespace mac::applescript::test
