#pragma once

#include "tests/support/TemporaryFolder.h"
#include <string>
#include <vector>

namespace mac::test {

// Folders within each other, so many that the path of the innermost is longer than the system takes. They go with the
// object, with the files and folders made through it.
class LongFolder {
public:
    LongFolder();
    ~LongFolder();
    LongFolder(LongFolder const&) = delete;
    LongFolder& operator=(LongFolder const&) = delete;

    // Of the innermost folder.
    std::string const& path() const { return m_path; }
    void makeFolder(std::string const& relative);
    void makeFile(std::string const& relative, std::string const& contents);

private:
    struct Made {
        int folder;
        std::string name;
        int flags;
    };

    TemporaryFolder m_top;
    std::string m_path;
    std::vector<int> m_folders;
    std::vector<Made> m_made;
};

} // namespace mac::test
