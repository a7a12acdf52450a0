#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace benchmarks {

// A disk's worth of folders and files, the same for each seed: shaped as a system disk is (three in five folders hold
// no folder, a few hold hundreds, most files lie in a few folders), with packages strewn in, packages inside packages,
// and names that look like the wanted one and are not.
class WholeDiskWalkTree {
public:
    static constexpr std::uint64_t leastEntries = 100'000;
    static constexpr std::uint32_t wantedPackages = 200;
    static constexpr char const* wantedName = "Mirror Frame.app";

    // Only makes the plan; it is always the same for a seed and so many folders, files and links, without the top
    // folder.
    WholeDiskWalkTree(std::uint64_t seed, std::uint64_t entries);

    // Makes the tree below `top`, which is a new folder. Ends the program with a message when the disk refuses.
    void build(std::string const& top) const;

    // The packages a walk must find, sorted: all of them that lie in no other package, and those of the wanted name.
    std::vector<std::string> packagesBelow(std::string const& top) const;
    std::vector<std::string> wantedPackagesBelow(std::string const& top) const;

private:
    struct Folder {
        std::uint32_t parent = 0;
        std::uint32_t files = 0;
        std::string name;
        bool isPackage = false;
        bool isInPackage = false;
        std::vector<std::uint32_t> subfolders;
        std::vector<std::string> decoyFiles;
        std::vector<std::string> decoyLinks;
    };

    std::uint32_t addFolder(std::uint32_t parent, std::string name, bool isPackage = false);
    void addPackage(std::uint32_t parent, std::string const& name, bool holdsAnother);
    void addOrdinaryFolders(std::uint32_t count);
    void addFiles(std::uint32_t ordinaryFolders, std::uint64_t count);
    std::uint64_t randomFileCount(bool hasSubfolders);
    std::uint64_t random(std::uint64_t below);
    std::string pathOf(std::uint32_t folder, std::string const& top) const;
    void fill(int descriptor, Folder const& folder) const;

    std::uint64_t m_state;
    std::vector<Folder> m_folders; // the first is the top
};

} // namespace benchmarks
