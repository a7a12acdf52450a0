#include "benchmarks/Timing.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/ItemTransfer.h"
#include "platform/system/items/TreeRemoval.h"
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// A tree of small files copied against `cp -a`, and deleted against `rm -rf`, which a user would run instead. The two
// run in turn, on trees of their own, and each round prints its ratio.

namespace {

using namespace mac;
using namespace benchmarks;

constexpr char const* usage =
    "usage: tree_copy FOLDER [--files N] [--pairs N]\n"
    "Makes a tree of N small files (100000) in FOLDER, copies and deletes it in N pairs (5), and prints how many "
    "times\n"
    "as long as `cp -a` and `rm -rf` that takes. Everything it has made is deleted in the end. Ends with 0 when the\n"
    "targets were met.\n";

constexpr int FilesInAFolder = 100;
constexpr double MostForCopy = 1.2;
constexpr double MostForRemoval = 1.3;

struct Options {
    std::string folder;
    int files = 100'000;
    int pairs = 5;
};

std::optional<Options> readOptions(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        std::string const argument = arguments[i];
        if (argument == "--files" && i + 1 < count)
            options.files = std::atoi(arguments[++i]);
        else if (argument == "--pairs" && i + 1 < count)
            options.pairs = std::atoi(arguments[++i]);
        else if (argument.starts_with("-") || !options.folder.empty())
            return std::nullopt;
        else
            options.folder = argument;
    }
    if (options.folder.empty() || options.files < 1 || options.pairs < 1) return std::nullopt;
    return options;
}

[[noreturn]] void end(std::string const& what, int code) {
    std::fprintf(stderr, "%s: %s\n", what.c_str(), std::strerror(code));
    std::exit(1);
}

void makeFolder(std::string const& path) {
    if (::mkdir(path.c_str(), 0755) != 0) end(path, errno);
}

// Files of 64 bytes to 8 KB.
void makeTree(std::string const& path, int files) {
    makeFolder(path);
    std::string folder;
    for (int number = 0; number < files; ++number) {
        if (number % FilesInAFolder == 0) {
            folder = path + "/folder " + std::to_string(number / FilesInAFolder);
            makeFolder(folder);
        }
        std::string const file = folder + "/file " + std::to_string(number) + ".txt";
        FileDescriptor const opened(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
        std::string const contents(std::size_t{64} << static_cast<unsigned>(number % 8), 'x');
        if (!opened.isOpen() || ::write(opened.number(), contents.data(), contents.size()) < 0) end(file, errno);
    }
}

OpenItem itemAt(std::string const& path) {
    Result<OpenItem> item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) end(path, item.problem().code);
    return item.takeValue();
}

void copyTree(std::string const& from, std::string const& to) {
    OpenItem const item = itemAt(from);
    std::string const name = to.substr(to.rfind('/') + 1);
    Result<void, TransferProblem> const copied = copyItem({.item = item, .folder = item.folder, .name = name});
    if (!copied.isDone()) end(to, copied.problem().error.code);
}

void deleteTree(std::string const& path) {
    OpenItem const item = itemAt(path);
    Result<IdentifiedItem> const identity = identify(item.item);
    if (!identity.hasValue()) end(path, identity.problem().code);
    Result<void> const removed = removeTree(item.folder, item.name, identity.value().identity);
    if (!removed.isDone()) end(path, removed.problem().code);
}

struct Pair {
    double ours = 0;
    double theirs = 0;
};

// Flushes the volume before each run, so that earlier writes do not reach the disk during it.
double settledSecondsOf(std::string const& folder, auto const& function) {
    FileDescriptor const opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen() || ::syncfs(opened.number()) != 0) end(folder, errno);
    return secondsOf(function);
}

class Comparison {
public:
    Comparison(char const* what, char const* command, double target)
        : m_what(what), m_command(command), m_target(target) {}

    void add(int round, Pair const& pair) {
        m_ratios.push_back(pair.ours / pair.theirs);
        std::printf("  %d: %s %6.2f s, %s %6.2f s, ratio %.2f\n", round + 1, m_what, pair.ours, m_command, pair.theirs,
                    m_ratios.back());
    }

    bool isMet() const {
        std::printf("%s: median %.2f of %s, wanted at most %.1f\n", m_what, median(m_ratios), m_command, m_target);
        return median(m_ratios) <= m_target;
    }

private:
    char const* m_what;
    char const* m_command;
    double m_target;
    std::vector<double> m_ratios{};
};

} // namespace

int main(int count, char** arguments) {
    std::optional<Options> const options = readOptions(count, arguments);
    if (!options) {
        std::fputs(usage, stderr);
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    std::string const top = options->folder + "/tree-copy-" + std::to_string(::getpid());
    std::string const tree = top + "/tree";
    std::string const ours = top + "/ours";
    std::string const theirs = top + "/theirs";
    makeFolder(top);
    makeTree(tree, options->files);
    Comparison copying("copy", "cp -a", MostForCopy);
    Comparison removing("deletion", "rm -rf", MostForRemoval);
    for (int round = 0; round < options->pairs; ++round) {
        // Neither is always the first one.
        bool const isFirst = round % 2 == 0;
        Pair copy;
        Pair removal;
        for (bool const isOurs : {isFirst, !isFirst}) {
            double& copied = isOurs ? copy.ours : copy.theirs;
            double& removed = isOurs ? removal.ours : removal.theirs;
            copied = settledSecondsOf(top, [&] {
                isOurs ? copyTree(tree, ours) : runProgram({"cp", "-a", tree, theirs});
            });
            removed = settledSecondsOf(top, [&] { isOurs ? deleteTree(ours) : runProgram({"rm", "-rf", theirs}); });
        }
        copying.add(round, copy);
        removing.add(round, removal);
    }
    bool const isCopyMet = copying.isMet();
    bool const isRemovalMet = removing.isMet();
    runProgram({"rm", "-rf", top});
    return isCopyMet && isRemovalMet ? 0 : 1;
}
