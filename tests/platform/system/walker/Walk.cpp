#include "tests/platform/system/walker/Walk.h"
#include "tests/support/Commands.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <random>
#include <semaphore>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace mac::test {

std::vector<std::string> sorted(std::vector<std::string> paths) {
    std::ranges::sort(paths);
    return paths;
}

WalkResult walk(VolumeWalkRequest const& request) {
    std::binary_semaphore finished{0};
    VolumeWalker* started = nullptr;
    VolumeWalker walker(request, [&started, &finished] {
        if (started->progress().isFinished) finished.release();
    });
    started = &walker;
    if (!walker.start()) throw std::runtime_error("the walk did not start");
    finished.acquire();
    return {.paths = sorted(walker.takeFound()), .progress = walker.progress()};
}

std::vector<std::string> pathsOfWalk(VolumeWalkRequest const& request) { return walk(request).paths; }

std::vector<std::string> nextFound(VolumeWalker& walker) {
    std::vector<std::string> found;
    while (found.empty()) {
        std::this_thread::yield();
        found = walker.takeFound();
    }
    return found;
}

WaitingWalks::WaitingWalks(Volume const& volume) {
    for (std::atomic<bool>& wasLeft : m_left)
        wasLeft = true;
    for (std::atomic<bool> const& wasLeft : m_left)
        m_visits.emplace_back(volume, wasLeft);
}

std::vector<std::string> packagesByFind(std::string const& folder) {
    std::string const output = outputOf({"find", folder, "-type", "d", "-name", "?*.app", "-prune", "-print0"});
    std::vector<std::string> paths;
    for (std::size_t start = 0; start < output.size(); start = output.find('\0', start) + 1)
        paths.emplace_back(output.c_str() + start);
    return sorted(std::move(paths));
}

namespace {

constexpr std::array<std::string_view, 10> s_folderEndings{"",     "a",     "app", ".ap",      ".app.old",
                                                           ".APP", ".apps", "\n",  "\xFF\xFE", " "};

void require(int result, std::string const& path) {
    if (result != 0 && errno != EEXIST) throw std::system_error(errno, std::generic_category(), path);
}

} // namespace

void makeRandomTree(std::string const& folder, std::uint64_t seed) {
    std::mt19937_64 engine(seed);
    auto const random = [&engine](std::size_t below) { return static_cast<std::size_t>(engine() % below); };
    std::vector<std::string> folders{folder};
    for (int i = 0; i < 600; ++i) {
        std::string const& parent = folders[random(2) == 0 ? random(folders.size()) : folders.size() - 1];
        std::string const base = parent + "/" + std::to_string(i);
        switch (random(8)) {
        case 0:
            require(::mkdir((base + ".app").c_str(), 0755), base);
            if (i > 50 && random(4) == 0) folders.push_back(base + ".app");
            break;
        case 1: {
            std::string const wanted = parent + "/Mirror Frame.app";
            require(::mkdir(wanted.c_str(), 0755), wanted);
            break;
        }
        case 2:
            require(::mknod((base + "-file.app").c_str(), S_IFREG | 0644, 0), base);
            break;
        case 3:
            require(::symlink(folders[random(folders.size())].c_str(), (base + "-link.app").c_str()), base);
            break;
        default: {
            std::string const plain = base + std::string(s_folderEndings[random(s_folderEndings.size())]);
            require(::mkdir(plain.c_str(), 0755), plain);
            folders.push_back(plain);
        }
        }
    }
    require(::mkdir((folder + "/.app").c_str(), 0755), folder);
    require(::mkdir((folder + "/.app/in hidden.app").c_str(), 0755), folder);
}

FolderForMany::FolderForMany() {
    char const* const before = std::getenv("TMPDIR");
    std::string const kept = before ? before : "";
    if (::access("/dev/shm", W_OK | X_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
    m_folder.emplace();
    ::setenv("TMPDIR", kept.c_str(), 1);
}

} // namespace mac::test
