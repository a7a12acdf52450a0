#include "benchmarks/WholeDiskWalkTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace benchmarks {

namespace {

constexpr std::array words = {"archive", "build",  "cache",   "data",  "docs",   "export",  "fonts",
                              "git",     "images", "include", "lib",   "locale", "modules", "objects",
                              "pages",   "photos", "plugins", "share", "source", "static",  "tests",
                              "themes",  "units",  "vendor",  "work"};

// How many of a thousand folders hold how many files: `least` up to `least + span - 1`, and the rest none. Most hold
// few, few hold most, and those with subfolders hold fewer than the others.
struct FileCountClass {
    std::uint64_t perThousand;
    std::uint64_t least;
    std::uint64_t span;
};
constexpr std::array<FileCountClass, 6> fileCountsWithout = {
    {{270, 1, 1}, {270, 2, 2}, {315, 4, 10}, {75, 16, 32}, {16, 64, 64}, {3, 256, 128}}};
constexpr std::array<FileCountClass, 6> fileCountsWithSubfolders = {
    {{120, 1, 1}, {270, 2, 2}, {330, 4, 6}, {42, 16, 16}, {7, 64, 32}, {1, 256, 32}}};

[[noreturn]] void giveUp(char const* what) {
    std::perror(what);
    std::exit(1);
}

void require(bool success, char const* what) {
    if (!success) giveUp(what);
}

} // namespace

WholeDiskWalkTree::WholeDiskWalkTree(std::uint64_t seed, std::uint64_t entries) : m_state(seed) {
    // One in eight, as on a system disk.
    auto const folders = static_cast<std::uint32_t>(entries * 19 / 150);
    constexpr std::uint32_t otherPackages = 800;
    constexpr std::uint32_t packagesInPackages = 100;
    constexpr std::uint32_t foldersPerPackage = 4;
    constexpr std::uint32_t inPackages = (wantedPackages + otherPackages + packagesInPackages) * foldersPerPackage;
    constexpr std::uint32_t decoyFolders = 200;
    std::uint32_t const ordinary = folders - inPackages - decoyFolders;
    m_folders.reserve(folders + 1);
    m_folders.emplace_back();
    addOrdinaryFolders(ordinary);
    // Neighbours get a file and a link of the wanted name; each name is in a folder once.
    std::uint32_t const distance = ordinary / wantedPackages;
    for (std::uint32_t folder = 1; folder <= wantedPackages * distance; folder += distance) {
        addPackage(folder, wantedName, false);
        m_folders[folder + 1].decoyFiles.emplace_back(wantedName);
        m_folders[folder + 2].decoyLinks.emplace_back(wantedName);
    }
    for (std::uint32_t i = 0; i < otherPackages; ++i)
        addPackage(1 + static_cast<std::uint32_t>(random(ordinary)), "Package " + std::to_string(i) + ".app",
                   i < packagesInPackages);
    for (std::uint32_t i = 0; i < decoyFolders; ++i)
        addFolder(1 + static_cast<std::uint32_t>(random(ordinary)), "Mirror Frame.app." + std::to_string(i));
    constexpr std::uint64_t decoys = std::uint64_t{2} * wantedPackages;
    addFiles(ordinary, entries - folders - decoys);
}

// The steps of splitmix64: a few lines that give the same numbers everywhere.
std::uint64_t WholeDiskWalkTree::random(std::uint64_t below) {
    m_state += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = m_state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return (mixed ^ (mixed >> 31)) % below;
}

std::uint32_t WholeDiskWalkTree::addFolder(std::uint32_t parent, std::string name, bool isPackage) {
    auto const index = static_cast<std::uint32_t>(m_folders.size());
    Folder folder;
    folder.parent = parent;
    folder.name = std::move(name);
    folder.isPackage = isPackage;
    folder.isInPackage = m_folders[parent].isPackage || m_folders[parent].isInPackage;
    m_folders.push_back(std::move(folder));
    m_folders[parent].subfolders.push_back(index);
    return index;
}

void WholeDiskWalkTree::addPackage(std::uint32_t parent, std::string const& name, bool holdsAnother) {
    std::uint32_t const package = addFolder(parent, name, true);
    std::uint32_t const contents = addFolder(package, "Contents");
    m_folders[contents].files = 2;
    m_folders[addFolder(contents, "MacOS")].files = 1;
    std::uint32_t const resources = addFolder(contents, "Resources");
    m_folders[resources].files = 6;
    if (holdsAnother) addPackage(resources, wantedName, false);
}

// A new folder is a sibling of any earlier one, so that some folders come to hold hundreds, or lies in any, or
// continues the last few, as deep paths do. These shares give the depths and the leaves of a system disk.
void WholeDiskWalkTree::addOrdinaryFolders(std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint64_t const kind = random(100);
        std::uint64_t parent = random(m_folders.size());
        if (kind < 45) parent = m_folders[parent].parent;
        if (kind >= 85) parent = m_folders.size() - 1 - random(std::min<std::uint64_t>(m_folders.size(), 3));
        addFolder(static_cast<std::uint32_t>(parent), words[random(words.size())] + std::to_string(i));
    }
}

std::uint64_t WholeDiskWalkTree::randomFileCount(bool hasSubfolders) {
    auto const& classes = hasSubfolders ? fileCountsWithSubfolders : fileCountsWithout;
    std::uint64_t kind = random(1000);
    for (FileCountClass const& one : classes) {
        if (kind < one.perThousand) return one.least + random(one.span);
        kind -= one.perThousand;
    }
    return 0;
}

void WholeDiskWalkTree::addFiles(std::uint32_t ordinaryFolders, std::uint64_t count) {
    for (Folder const& folder : m_folders)
        count -= folder.files;
    for (std::uint32_t i = 1; i <= ordinaryFolders; ++i) {
        Folder& folder = m_folders[i];
        folder.files = static_cast<std::uint32_t>(std::min(randomFileCount(!folder.subfolders.empty()), count));
        count -= folder.files;
    }
    m_folders[ordinaryFolders].files += static_cast<std::uint32_t>(count);
}

void WholeDiskWalkTree::build(std::string const& top) const {
    require(::mkdir(top.c_str(), 0755) == 0, top.c_str());
    int const descriptor = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    require(descriptor >= 0, top.c_str());
    fill(descriptor, m_folders.front());
    ::close(descriptor);
}

// Half of the files come before the subfolders and half after them, as in folders that grew.
void WholeDiskWalkTree::fill(int descriptor, Folder const& folder) const {
    auto const makeFile = [descriptor](std::string const& name) {
        require(::mknodat(descriptor, name.c_str(), S_IFREG | 0644, 0) == 0, name.c_str());
    };
    std::uint32_t file = 0;
    for (; file < folder.files / 2; ++file)
        makeFile("file-" + std::to_string(file) + ".txt");
    for (std::uint32_t const subfolder : folder.subfolders) {
        char const* name = m_folders[subfolder].name.c_str();
        require(::mkdirat(descriptor, name, 0755) == 0, name);
        int const inside = ::openat(descriptor, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        require(inside >= 0, name);
        fill(inside, m_folders[subfolder]);
        ::close(inside);
    }
    for (; file < folder.files; ++file)
        makeFile("file-" + std::to_string(file) + ".txt");
    for (std::string const& name : folder.decoyFiles)
        makeFile(name);
    for (std::string const& name : folder.decoyLinks)
        require(::symlinkat("..", descriptor, name.c_str()) == 0, name.c_str());
}

std::string WholeDiskWalkTree::pathOf(std::uint32_t folder, std::string const& top) const {
    if (folder == 0) return top;
    return pathOf(m_folders[folder].parent, top) + "/" + m_folders[folder].name;
}

std::vector<std::string> WholeDiskWalkTree::packagesBelow(std::string const& top) const {
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < m_folders.size(); ++i)
        if (m_folders[i].isPackage && !m_folders[i].isInPackage) paths.push_back(pathOf(i, top));
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::vector<std::string> WholeDiskWalkTree::wantedPackagesBelow(std::string const& top) const {
    std::vector<std::string> paths = packagesBelow(top);
    auto const isOther = [](std::string const& path) { return !path.ends_with(std::string("/") + wantedName); };
    paths.erase(std::remove_if(paths.begin(), paths.end(), isOther), paths.end());
    return paths;
}

} // namespace benchmarks
