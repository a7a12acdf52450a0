#include "tests/platform/system/walker/RandomTree.h"
#include <array>
#include <cerrno>
#include <random>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace mac::test {

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

} // namespace mac::test
