#pragma once

#include <functional>
#include <memory>
#include <string>

namespace mac {

// Reports changes to folders: an entry is added, removed or changed, or the folder or one above it is moved. Calls
// `onChange` on the main thread's run loop with the path of the changed folder. Subfolders are not watched. Folders
// that cannot be watched (a path too long, the system's limit reached) are not reported.
class FolderWatch {
public:
    // `onChange` gets an empty path if events were lost: every folder may have changed.
    explicit FolderWatch(std::function<void(std::string const& folder)> onChange);
    ~FolderWatch();
    FolderWatch(FolderWatch const&) = delete;
    FolderWatch& operator=(FolderWatch const&) = delete;

    // Adding a watched folder again changes nothing. False if the folder cannot be watched.
    bool add(std::string const& folder);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace mac
