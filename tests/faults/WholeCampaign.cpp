#include "tests/faults/Campaign.h"
#include "tests/faults/KnownBreaks.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <string_view>

// The whole campaign in a folder, which scripts/faults makes on each file system. Exit status: 0 if all promises held,
// 1 if one was broken, 2 for arguments that are not understood and for a campaign that looked at nothing.

namespace mac::faults {

namespace {

struct Arguments {
    std::string volume{};
    std::optional<std::string> second{};
    std::string operation{};
    CampaignOptions options{.volumes = {Volume::Ordinary, Volume::WithoutExclusiveRename}};
};

[[noreturn]] void refuse(std::string_view argument) {
    std::cerr << "faults_campaign: not understood: " << argument << "\n"
              << "usage: faults_campaign FOLDER [--second FOLDER] [--operation PART-OF-NAME] [--stride N [--part N]]\n"
              << "                       [--seed N] [--only faults|kills|exchanges|power-loss|races] [--races N]\n"
              << "                       [--call NAME-OF-SYSTEM-CALL]\n"
              << "FOLDER is emptied.\n";
    std::exit(2);
}

template <class Number>
Number numberOf(std::string_view text) {
    Number number{};
    std::from_chars_result const result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || text.empty()) refuse(text);
    return number;
}

void only(CampaignOptions& options, std::string_view what) {
    constexpr std::array<std::string_view, 5> kinds{"faults", "kills", "exchanges", "power-loss", "races"};
    if (std::ranges::find(kinds, what) == kinds.end()) refuse(what);
    options.hasFaults = what == "faults";
    options.hasKills = what == "kills";
    options.hasExchanges = what == "exchanges";
    options.hasPowerLoss = what == "power-loss";
}

Arguments read(int count, char** texts) {
    Arguments arguments;
    if (count < 2) refuse("");
    arguments.volume = texts[1];
    for (int at = 2; at + 1 < count; at += 2) {
        std::string_view const name = texts[at];
        std::string_view const value = texts[at + 1];
        if (name == "--second")
            arguments.second = value;
        else if (name == "--operation")
            arguments.operation = value;
        else if (name == "--stride")
            arguments.options.stride = numberOf<unsigned>(value);
        else if (name == "--part")
            arguments.options.part = numberOf<unsigned>(value);
        else if (name == "--seed")
            arguments.options.seed = numberOf<std::uint64_t>(value);
        else if (name == "--call")
            arguments.options.call = value;
        else if (name == "--races")
            arguments.options.races = numberOf<unsigned>(value);
        else if (name == "--only")
            only(arguments.options, value);
        else
            refuse(name);
    }
    if (count % 2 != 0) refuse(texts[count - 1]);
    if (arguments.options.part >= arguments.options.stride) refuse("--part");
    return arguments;
}

// What the operation broke, at once: a campaign takes long.
void tellBreaks(Campaign const& campaign, std::size_t first) {
    for (std::size_t at = first; at < campaign.breaks().size(); ++at) {
        Break const& found = campaign.breaks()[at];
        std::cout << (rowOf(found) ? "known: " : "broken: ") << found.text() << '\n';
    }
}

// Answers whether the operation could be tried.
bool tryOperation(Campaign& campaign, Operation const& operation) {
    std::size_t const first = campaign.breaks().size();
    bool isTried = true;
    try {
        campaign.run(operation);
    } catch (std::runtime_error const& error) {
        std::cout << "left out: " << error.what() << '\n';
        isTried = false;
    }
    tellBreaks(campaign, first);
    Counts const& counts = campaign.counts();
    std::cout << "so far, up to " << operation.name << ": " << counts.faults << " faults, " << counts.kills
              << " kills, " << counts.exchanges << " exchanges, " << counts.races << " races, " << counts.prefixes
              << " prefixes\n"
              << std::flush;
    return isTried;
}

int run(Arguments const& arguments) {
    Fixture const fixture(arguments.volume, arguments.second);
    Campaign campaign(fixture, arguments.options);
    bool isComplete = true;
    for (Operation const& operation : allOperations()) {
        if (operation.name.find(arguments.operation) == std::string::npos) continue;
        isComplete = tryOperation(campaign, operation) && isComplete;
    }
    std::vector<KnownBreak> const& rows = knownBreaks();
    std::vector<std::uint64_t> points(rows.size());
    std::size_t unknown = 0;
    for (Break const& found : campaign.breaks()) {
        KnownBreak const* const row = rowOf(found);
        unknown += row ? 0 : 1;
        if (row) points[static_cast<std::size_t>(row - rows.data())] += found.points;
    }
    // For scripts/faults, which finds the rows that no file system needs.
    for (std::size_t at = 0; at < rows.size(); ++at)
        std::cout << "row " << at + 1 << " matched " << points[at] << ": " << joined(rows[at].operations) << ": "
                  << nameOf(rows[at].promise) << ": " << joined(rows[at].calls) << '\n';
    Counts const& counts = campaign.counts();
    std::cout << "counts: calls " << counts.calls << " faults " << counts.faults << " kills " << counts.kills
              << " exchanges " << counts.exchanges << " races " << counts.races << " prefixes " << counts.prefixes
              << " denied " << counts.deniedSuccesses << " broken " << unknown << " known "
              << campaign.breaks().size() - unknown << '\n';
    if (counts.faults + counts.kills + counts.exchanges + counts.races + counts.prefixes == 0) return 2;
    return isComplete && unknown == 0 ? 0 : 1;
}

} // namespace

} // namespace mac::faults

int main(int count, char** texts) {
    try {
        return mac::faults::run(mac::faults::read(count, texts));
    } catch (std::exception const& error) {
        std::cerr << "faults_campaign: " << error.what() << '\n';
        return 2;
    }
}
