#pragma once

#include <functional>
#include <memory>
#include <string>

namespace mac {

// Tells when something appears in, goes from or happens to a folder, and when a folder above it is moved: on the main
// thread's run loop, by the path of the folder that it happened to. Folders below are not watched. What cannot be
// watched (a path too long, the system's limit reached) is not told.
class FolderWatch {
public:
    // An empty path means that events were lost: every folder may have changed.
    explicit FolderWatch(std::function<void(std::string const& folder)> onChange);
    ~FolderWatch();
    FolderWatch(FolderWatch const&) = delete;
    FolderWatch& operator=(FolderWatch const&) = delete;

    // Watching a folder again changes nothing; false when it cannot be watched.
    bool add(std::string const& folder);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace mac
