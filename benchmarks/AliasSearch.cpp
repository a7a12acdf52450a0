#include "benchmarks/Timing.h"
#include "platform/system/walker/VolumeWalker.h"
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <semaphore>
#include <sys/stat.h>
#include <unistd.h>

// Searching a whole volume for the item of an alias, against the walk that finds packages there when it has to read
// every folder. Usage: alias_search FOLDER, in which 200,000 files in 20,000 folders are made.

using namespace mac;
using namespace benchmarks;

namespace {

constexpr unsigned Folders = 20'000;
constexpr unsigned FilesInFolder = 10;
constexpr int Rounds = 15;

// Folders within folders, ten in each.
std::string folderPath(std::string const& top, unsigned number) {
    std::string path;
    for (; number > 0; number = (number - 1) / 10)
        path.insert(0, "/folder " + std::to_string(number));
    return top + path;
}

void makeTree(std::string const& top) {
    for (unsigned folder = 0; folder < Folders; ++folder) {
        std::string const path = folderPath(top, folder);
        if (::mkdir(path.c_str(), 0700) != 0) std::exit(1);
        for (unsigned file = 0; file < FilesInFolder; ++file)
            ::close(::open((path + "/file " + std::to_string(file)).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    }
}

// Runs the walk to its end and answers how many items it found.
std::uint64_t walk(VolumeWalkRequest request) {
    std::binary_semaphore finished{0};
    VolumeWalker* started = nullptr;
    VolumeWalker walker(std::move(request), [&] {
        if (started->progress().isFinished) finished.release();
    });
    started = &walker;
    if (!walker.start()) std::exit(1);
    finished.acquire();
    if (walker.progress().foldersVisited < Folders) std::exit(1);
    return walker.progress().packagesFound;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    std::string const top = std::string(arguments[1]) + "/alias-search-tree";
    makeTree(top);
    std::string const last = folderPath(top, Folders - 1) + "/file 9";
    struct stat status {};
    if (::stat(last.c_str(), &status) != 0) return 1;
    auto const isAny = [](FileDescriptor const&, std::string const&) { return true; };
    std::vector<double> files;
    std::vector<double> folders;
    for (int round = 0; round < Rounds; ++round) {
        double const packages = secondsOf([&] { walk({.roots = {top}, .usesLinkCounts = false}); });
        double const file = secondsOf([&] {
            SoughtItem const item{.inode = status.st_ino, .isFolder = false, .accepts = isAny};
            if (walk({.roots = {top}, .packageSuffix = "", .item = item}) != 1) std::exit(1);
        });
        double const folder = secondsOf([&] {
            SoughtItem const item{.inode = status.st_ino, .isFolder = true, .accepts = isAny};
            if (walk({.roots = {top}, .packageSuffix = "", .item = item}) != 0) std::exit(1);
        });
        files.push_back(file / packages);
        folders.push_back(folder / packages);
    }
    std::filesystem::remove_all(top);
    std::printf("a file by its number: %.2f times the walk for packages that reads every folder (goal: 1.2)\n",
                median(files));
    std::printf("a folder by its number: %.2f times that walk\n", median(folders));
    return 0;
}
