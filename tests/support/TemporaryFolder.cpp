#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace mac::test {

namespace {

[[noreturn]] void fail(std::string const& path) { throw std::system_error(errno, std::generic_category(), path); }

void makeFolders(std::string const& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        std::string const folder = path.substr(0, slash);
        if (::mkdir(folder.c_str(), 0755) != 0 && errno != EEXIST) fail(folder);
        if (slash == std::string::npos) return;
    }
}

constexpr int MostOpenFolders = 32;

int openOne(char const* path, struct stat const* status, int type, FTW*) {
    bool const isClosed = (status->st_mode & S_IRWXU) != S_IRWXU;
    bool const isFolder = type == FTW_D || type == FTW_DNR;
    if (isFolder && isClosed) ::chmod(path, (status->st_mode & 07777U) | S_IRWXU);
    // It could not be listed until now.
    if (type == FTW_DNR && isClosed) openFolders(path);
    return 0;
}

int removeEntry(char const* path, struct stat const*, int, FTW*) {
    ::remove(path);
    return 0;
}

std::string usualBase() {
    char const* const base = std::getenv("TMPDIR");
    return base && *base ? base : "/tmp";
}

} // namespace

void openFolders(std::string const& path) { ::nftw(path.c_str(), openOne, MostOpenFolders, FTW_PHYS | FTW_MOUNT); }

TemporaryFolder::TemporaryFolder() : TemporaryFolder(usualBase()) {}

TemporaryFolder::TemporaryFolder(std::string const& base) : m_path(base + "/framekeeper-test-XXXXXX") {
    if (!::mkdtemp(m_path.data())) fail(m_path);
}

TemporaryFolder::~TemporaryFolder() {
    openFolders(m_path);
    ::nftw(m_path.c_str(), removeEntry, MostOpenFolders, FTW_DEPTH | FTW_PHYS | FTW_MOUNT);
}

std::string TemporaryFolder::makeFolder(std::string_view relative) const {
    std::string const folder = path(relative);
    makeFolders(folder);
    return folder;
}

std::string TemporaryFolder::makeFile(std::string_view relative, std::string_view contents) const {
    std::string const file = path(relative);
    makeFolders(file.substr(0, file.rfind('/')));
    int const descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (descriptor < 0) fail(file);
    std::size_t written = 0;
    while (written < contents.size()) {
        ssize_t const count = ::write(descriptor, contents.data() + written, contents.size() - written);
        if (count < 0) fail(file);
        written += static_cast<std::size_t>(count);
    }
    ::close(descriptor);
    return file;
}

std::string TemporaryFolder::makeBundle(std::string_view relative, std::string_view informationFile) const {
    makeFile(std::string(relative) + "/Contents/Info.plist", informationFile);
    return path(relative);
}

std::string informationFile(std::string_view identifier, std::string_view shortVersion, std::string_view version) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
    auto const add = [&text](std::string_view key, std::string_view value) {
        if (!value.empty()) text += "<key>" + std::string(key) + "</key><string>" + std::string(value) + "</string>\n";
    };
    add("CFBundleIdentifier", identifier);
    add("CFBundleShortVersionString", shortVersion);
    add("CFBundleVersion", version);
    return text + "</dict>\n</plist>\n";
}

} // namespace mac::test
