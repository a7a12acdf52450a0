// How fast the walk of a whole disk is beside the programs a user would search with, how much memory it takes, and
// whether it finds everything. Usage and options: see `usage` below.

#include "benchmarks/Timing.h"
#include "benchmarks/WholeDiskWalkRun.h"
#include "benchmarks/WholeDiskWalkTree.h"
#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/VolumeWalker.h"
#include "platform/system/walker/WalkMemory.h"

#include <linux/magic.h>
#include <sys/vfs.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <semaphore>
#include <string>
#include <vector>

using namespace benchmarks;

namespace {

constexpr char const* usage =
    "usage: whole_disk_walk [--keep] [--pairs N] [--cold-pairs N] [--entries N] [--despite-load] FOLDER\n"
    "Builds a tree of 1.5 million entries in FOLDER (5 GB free is plenty), walks it in turn with the walker and with "
    "fd,\n"
    "find and bfs, and prints how many times longer each of them took, pair by pair; then the same for a walk by what\n"
    "an earlier one remembers, with the walk that remembers nothing and with find. Deletes the tree in the end;\n"
    "with --keep it stays, and the next run uses it. Where the system's caches can be dropped (root), also cold.\n"
    "With other --entries (100000 at least) there are no targets, and with --despite-load it does not wait for other\n"
    "programs: both are for trying it out.\n"
    "Ends with 0 when everything was found and all targets were met.\n";

constexpr std::uint64_t seed = 20;
constexpr std::uint64_t entriesOfADisk = 1'500'000;
constexpr char const* treeName = "whole-disk-walk-tree";
constexpr char const* markName = "whole-disk-walk-tree.complete"; // lies beside the tree when it was built to the end
// A walk in two threads loses more to other programs than a search in one, so pairs of runs under foreign load are
// discarded.
constexpr double foreignLoadAllowed = 0.08;
constexpr int disturbedPairsForOne = 10; // then it is given up
constexpr std::chrono::minutes patience{10};
constexpr long memoryTarget = 6L * 1024;        // KiB
constexpr double rescanTarget = 1 / 0.35;       // how many times longer a walk that remembers nothing is to take
constexpr long rescanMemoryTarget = 16L * 1024; // KiB, the index of the folders among them
constexpr char const* memoryName = "whole-disk-walk-memory";

struct Options {
    std::string folder;
    bool keep = false;
    int pairs = 9;
    int coldPairs = 5;
    std::uint64_t entries = entriesOfADisk;
    bool isDespiteLoad = false;
};

struct Rival {
    std::string name;
    std::vector<std::string> command;
    double warmTarget = 0;
    double coldTarget = 0; // 0: none
};

std::optional<Options> readOptions(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        std::string const argument = arguments[i];
        bool const hasValue = i + 1 < count;
        if (argument == "--keep")
            options.keep = true;
        else if (argument == "--pairs" && hasValue)
            options.pairs = std::atoi(arguments[++i]);
        else if (argument == "--cold-pairs" && hasValue)
            options.coldPairs = std::atoi(arguments[++i]);
        else if (argument == "--entries" && hasValue)
            options.entries = std::strtoull(arguments[++i], nullptr, 10);
        else if (argument == "--despite-load")
            options.isDespiteLoad = true;
        else if (argument.starts_with("-") || !options.folder.empty())
            return std::nullopt;
        else
            options.folder = argument;
    }
    if (options.folder.empty() || options.pairs < 1 || options.coldPairs < 0 ||
        options.entries < WholeDiskWalkTree::leastEntries)
        return std::nullopt;
    return options;
}

// The option --walk: the walk alone, in a process of its own, so that its memory can be measured. With a memory folder
// it begins with what the last walk left there, and writes it anew only with Remembering::Yes.
enum class Remembering { No, Yes };
int walk(char const* top, std::vector<std::string> names, char const* memoryFolder, Remembering remembering) {
    long const before = memoryNow();
    std::binary_semaphore finished{0};
    mac::VolumeWalker* started = nullptr;
    mac::VolumeWalkRequest request{.roots = {top}, .packageSuffix = ".app", .names = std::move(names)};
    if (memoryFolder) request.memory = std::make_shared<mac::WalkMemory>(memoryFolder, &mac::folderClock);
    mac::VolumeWalker walker(request, [&started, &finished] {
        if (started->progress().isFinished) finished.release();
    });
    started = &walker;
    if (!walker.start()) return 1;
    finished.acquire();
    if (remembering == Remembering::Yes) walker.waitUntilRemembered(std::chrono::hours(1));
    long const grown = memoryPeak() - before;
    for (std::string const& path : walker.takeFound())
        std::printf("%s\n", path.c_str());
    std::fprintf(stderr, "%ld\n", grown);
    return walker.progress().unreadableFolders == 0 ? 0 : 1;
}

bool isMeasuredFileSystem(std::string const& folder) {
    struct statfs status;
    if (::statfs(folder.c_str(), &status) != 0) return false;
    return status.f_type == EXT4_SUPER_MAGIC || status.f_type == XFS_SUPER_MAGIC || status.f_type == TMPFS_MAGIC;
}

void removeFolder(std::string const& folder) { run({"rm", "-rf", "--", folder}); }

// The contest on one tree.
class Contest {
public:
    Contest(std::string const& top, WholeDiskWalkTree const& tree, bool isDespiteLoad)
        : m_isDespiteLoad(isDespiteLoad), m_top(top), m_expected(tree.packagesBelow(top)),
          m_wanted(tree.wantedPackagesBelow(top)) {}

    std::vector<std::string> walk() const { return {"/proc/self/exe", "--walk", m_top}; }
    // The question of the program: only the wanted packages. From here on they are expected.
    void askForWanted() { m_expected = m_wanted; }
    std::vector<std::string> walkForWanted() const { return {"/proc/self/exe", "--walk-wanted", m_top}; }
    // REQUIRES: remember() before.
    std::vector<std::string> rescan(std::string const& memory) const {
        return {"/proc/self/exe", "--rescan", m_top, memory};
    }
    // Walks once and leaves what the next needs, in a folder that is made.
    void remember(std::string const& memory);
    // Runs our walk and the rival in turn and prints the ratios. A target of 0 means no target.
    void compare(std::vector<std::string> const& command, Rival const& rival, int pairs, bool isCold, double target);
    // Prints the memory of the runs since the last call, and what would have been needed to stay below the limit.
    void printMemory(long limit);
    bool isWon() const { return m_isWon; }

private:
    std::optional<Run> prepareAndRun(std::vector<std::string> const& command, bool isCold);
    void check(bool holds, std::string const& complaint);

    bool const m_isDespiteLoad;
    std::string const m_top;
    std::vector<std::string> m_expected;
    std::vector<std::string> const m_wanted;
    long m_memory = 0;
    bool m_isWon = true;
};

void Contest::check(bool holds, std::string const& complaint) {
    if (holds) return;
    std::printf("  FAILED: %s\n", complaint.c_str());
    m_isWon = false;
}

// The program itself is read before the clock starts: it is the tree that shall be cold.
std::optional<Run> Contest::prepareAndRun(std::vector<std::string> const& command, bool isCold) {
    if (isCold) {
        dropCaches();
        run({command.front(), "--version"});
    }
    return run(command);
}

void Contest::remember(std::string const& memory) {
    removeFolder(memory);
    std::optional<Run> const first = run({"/proc/self/exe", "--remember", m_top, memory});
    check(first && first->outputLines == m_expected, "the walk that remembers is not complete");
    if (first) std::printf("  own memory of the walk that remembers: %ld KiB\n", std::atol(first->errorText.c_str()));
}

void Contest::compare(std::vector<std::string> const& command, Rival const& rival, int pairs, bool isCold,
                      double target) {
    std::vector<double> ratios;
    int disturbed = 0;
    std::printf("  %-5s", rival.name.c_str());
    while (static_cast<int>(ratios.size()) < pairs && disturbed < pairs * disturbedPairsForOne) {
        if (!m_isDespiteLoad && !waitUntilQuiet(foreignLoadAllowed, patience)) break;
        std::optional<Run> const ours = prepareAndRun(command, isCold);
        std::optional<Run> const theirs = prepareAndRun(rival.command, isCold);
        if (!theirs || theirs->outputLines.size() != m_expected.size()) {
            std::printf(" not compared: %s\n", theirs ? "it does not list the same" : "it is not installed");
            return check(target == 0, "its target is not met");
        }
        if (!ours || ours->outputLines != m_expected) return check(false, "the walk is not complete");
        m_memory = std::max(m_memory, std::atol(ours->errorText.c_str()));
        if (!m_isDespiteLoad && std::max(ours->foreignLoad, theirs->foreignLoad) > foreignLoadAllowed) {
            ++disturbed;
            continue;
        }
        ratios.push_back(theirs->seconds / ours->seconds);
        std::printf(" %5.2f", ratios.back());
        std::fflush(stdout);
    }
    if (static_cast<int>(ratios.size()) < pairs) return check(false, "other programs kept the machine busy");
    std::printf("   median %.2f", median(ratios));
    if (target > 0) std::printf(", wanted %.1f", target);
    if (disturbed > 0) std::printf(" (%d pairs left out, other programs were busy)", disturbed);
    std::printf("\n");
    check(median(ratios) >= target, "slower than wanted");
}

void Contest::printMemory(long limit) {
    std::printf("complete in every run: %zu packages, among them the %zu wanted\n", m_expected.size(), m_wanted.size());
    std::printf("own memory at most: %ld KiB, wanted under %ld\n", m_memory, limit);
    check(m_memory < limit, "too much memory");
    m_memory = 0;
}

void removeTree(std::string const& folder) {
    run({"rm", "-rf", "--", folder + "/" + markName, folder + "/" + treeName});
}

// Builds the tree unless a complete one is there; a complete tree has a mark that names its plan.
void provideTree(std::string const& folder, WholeDiskWalkTree const& tree, std::string const& plan) {
    std::string mark;
    std::getline(std::ifstream(folder + "/" + markName), mark);
    if (mark == plan) return;
    removeTree(folder);
    std::printf("building the tree\n");
    std::fflush(stdout);
    tree.build(folder + "/" + treeName);
    std::ofstream(folder + "/" + markName) << plan << "\n";
}

} // namespace

int main(int count, char** arguments) {
    if (count == 3 && std::strcmp(arguments[1], "--walk") == 0) return walk(arguments[2], {}, nullptr, Remembering::No);
    if (count == 3 && std::strcmp(arguments[1], "--walk-wanted") == 0)
        return walk(arguments[2], {WholeDiskWalkTree::wantedName}, nullptr, Remembering::No);
    if (count == 4 && std::strcmp(arguments[1], "--rescan") == 0)
        return walk(arguments[2], {WholeDiskWalkTree::wantedName}, arguments[3], Remembering::No);
    if (count == 4 && std::strcmp(arguments[1], "--remember") == 0)
        return walk(arguments[2], {WholeDiskWalkTree::wantedName}, arguments[3], Remembering::Yes);
    if (count == 2 && std::strcmp(arguments[1], "--version") == 0) return 0; // what a cold run asks of every program
    std::optional<Options> const options = readOptions(count, arguments);
    if (!options) {
        std::fputs(usage, stderr);
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // also into a file, as a run takes minutes
    WholeDiskWalkTree const tree(seed, options->entries);
    provideTree(options->folder, tree, std::to_string(seed) + " " + std::to_string(options->entries));
    std::string const top = options->folder + "/" + treeName;
    std::vector<std::string> const findTail = {top, "-type", "d", "-name", "*.app", "-prune", "-print"};
    std::vector<Rival> rivals = {
        {"fd", {"fdfind", "-u", "-t", "d", "--prune", "-g", "*.app", top}, 3, 5},
        {"find", {"find"}, 6, 8},
        {"bfs", {"bfs"}, 4.5, 0},
    };
    rivals[1].command.insert(rivals[1].command.end(), findTail.begin(), findTail.end());
    rivals[2].command.insert(rivals[2].command.end(), findTail.begin(), findTail.end());

    bool const hasTargets = isMeasuredFileSystem(options->folder) && options->entries == entriesOfADisk;
    if (!hasTargets) std::printf("no targets: another size, or a file system that is none of ext4, XFS and tmpfs\n");
    Contest contest(top, tree, options->isDespiteLoad);
    bool const canDrop = dropCaches();
    run({"find", top, "-name", "*.app", "-prune"});
    std::printf("warm: how many times longer than the walk (%ld directory entries in memory)\n",
                directoryEntriesInMemory());
    for (Rival const& rival : rivals)
        contest.compare(contest.walk(), rival, options->pairs, false, hasTargets ? rival.warmTarget : 0);
    if (canDrop && options->coldPairs > 0) {
        std::printf("cold: caches dropped before each run\n");
        for (Rival const& rival : rivals)
            contest.compare(contest.walk(), rival, options->coldPairs, true, hasTargets ? rival.coldTarget : 0);
    } else {
        std::printf("cold: not measured, %s\n",
                    canDrop ? "since no pairs are wanted" : "this user may not drop the system's caches");
    }
    contest.printMemory(memoryTarget);

    std::string const memory = options->folder + "/" + memoryName;
    std::printf("warm: how many times longer than a walk by what an earlier one remembers\n");
    contest.askForWanted();
    contest.remember(memory);
    Rival find = rivals[1];
    find.command = {"find",  top, "-type", "d", "-name", "*.app", "-prune", "-name", WholeDiskWalkTree::wantedName,
                    "-print"};
    contest.compare(contest.rescan(memory), {.name = "walk", .command = contest.walkForWanted()}, options->pairs, false,
                    hasTargets ? rescanTarget : 0);
    contest.compare(contest.rescan(memory), find, options->pairs, false, 0);
    contest.printMemory(rescanMemoryTarget);
    removeFolder(memory);
    if (!options->keep) removeTree(options->folder);
    return contest.isWon() ? 0 : 1;
}
