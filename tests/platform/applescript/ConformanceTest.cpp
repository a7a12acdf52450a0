#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <ostream>

// FRAMEKEEPER_PAIRS is a folder of tables, one a chapter. The last line of a source ends in " ==> " and the result in
// source form; "! " begins the message of an error. ␊ and ␍ stand for line ends in a result. A pair that names a home,
// and every pair of the chapters about applications, runs in a new home folder: ⌂/ is its path, ⌂: its HFS path, and ⌂
// the object specifier of its folder.

namespace mac::applescript::test {

namespace {

struct Pair {
    std::string chapter;
    int line{0};
    std::string source;
    std::string expected;
};

void PrintTo(Pair const& pair, std::ostream* stream) {
    *stream << pair.chapter << ".txt:" << pair.line << "\n" << pair.source;
}

std::vector<std::string> const& chapters() {
    static std::vector<std::string> const names{"additions",  "coercion",       "comparison",    "control",
                                                "dates",      "errors",         "finder",        "handlers",
                                                "lexical",    "lists",          "numbers",       "records",
                                                "references", "script-objects", "system-events", "system-preferences",
                                                "text",       "units"};
    return names;
}

// What a chapter's table holds. The rest is a source whose result is missing at the end of the file.
struct Chapter {
    std::vector<Pair> pairs;
    std::string rest;
};

Chapter readChapter(std::string const& name) {
    Chapter chapter;
    std::ifstream file(std::string(FRAMEKEEPER_PAIRS "/") + name + ".txt");
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        std::string& source = chapter.rest;
        std::size_t const mark = line.find(" ==>");
        source += (source.empty() ? "" : "\n") + line.substr(0, mark);
        if (mark == std::string::npos) continue;
        std::string const expected = line.size() > mark + 5 ? line.substr(mark + 5) : std::string();
        chapter.pairs.push_back(
            {.chapter = name, .line = number, .source = std::exchange(source, {}), .expected = expected});
    }
    return chapter;
}

std::vector<Pair> allPairs() {
    std::vector<Pair> all;
    for (std::string const& name : chapters())
        std::ranges::move(readChapter(name).pairs, std::back_inserter(all));
    return all;
}

std::string replaced(std::string text, std::string_view sought, std::string_view replacement) {
    for (std::size_t place = text.find(sought); place != std::string::npos; place = text.find(sought, place + 1))
        text.replace(place, sought.size(), replacement);
    return text;
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
    // The home's path is of plain letters.
    std::string const hfs = utf8FromUnits(nameOfStartupVolume()) + replaced(home, "/", ":") + ":";
    std::string folder = "startup disk of application \"Finder\"";
    for (std::size_t begin = 1; begin < home.size();) {
        std::size_t const end = std::min(home.find('/', begin), home.size());
        folder.insert(0, "folder \"" + home.substr(begin, end - begin) + "\" of ");
        begin = end + 1;
    }
    return replaced(replaced(replaced(text, "⌂/", home + "/"), "⌂:", hfs), "⌂", folder);
}

bool needsHome(Pair const& pair) {
    bool const isOfApplications =
        pair.chapter == "finder" || pair.chapter == "system-events" || pair.chapter == "system-preferences";
    return isOfApplications || pair.source.find("⌂") != std::string::npos;
}

// The pairs are of a computer whose startup volume has no label.
std::string withStartupVolume(std::string const& text) {
    return replaced(text, "Macintosh HD", utf8FromUnits(nameOfStartupVolume()));
}

class Conformance : public testing::TestWithParam<Pair> {};

TEST_P(Conformance, GivesTheResult) {
    Pair const& pair = GetParam();
    if (!needsHome(pair)) {
        EXPECT_EQ(outcomeText(withStartupVolume(pair.source)), withStartupVolume(pair.expected));
        return;
    }
    ScriptHome const home;
    EXPECT_EQ(outcomeText(withHome(withStartupVolume(pair.source), home.path())),
              withHome(withStartupVolume(pair.expected), home.path()));
}

INSTANTIATE_TEST_SUITE_P(Pairs, Conformance, testing::ValuesIn(allPairs()), [](auto const& pair) {
    return replaced(pair.param.chapter, "-", "_") + "_line_" + std::to_string(pair.param.line);
});

class ConformanceChapter : public testing::TestWithParam<std::string> {};

TEST_P(ConformanceChapter, HasPairsAndEndsWithAResult) {
    Chapter const chapter = readChapter(GetParam());
    EXPECT_GT(chapter.pairs.size(), 0U);
    EXPECT_EQ(chapter.rest, "");
}

INSTANTIATE_TEST_SUITE_P(Chapters, ConformanceChapter, testing::ValuesIn(chapters()),
                         [](auto const& chapter) { return replaced(chapter.param, "-", "_"); });

TEST(ConformanceChapters, AreAllFilesOfTheFolder) {
    std::vector<std::string> found;
    for (auto const& file : std::filesystem::directory_iterator(FRAMEKEEPER_PAIRS))
        found.push_back(file.path().stem());
    std::ranges::sort(found);
    EXPECT_EQ(found, chapters());
}

} // namespace

} // namespace mac::applescript::test
