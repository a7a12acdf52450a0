#include "tests/faults/Fixture.h"
#include "platform/system/items/AppleDouble.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <ftw.h>
#include <iostream>
#include <linux/fs.h>
#include <span>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::faults {

namespace {

constexpr std::string_view SecondVolume = "2";
constexpr std::string_view SecondPrefix = "2/";

void need(bool isDone, std::string const& what) {
    if (isDone) return;
    std::cerr << "The fixture cannot be made: " << what << ": " << std::strerror(errno) << '\n';
    std::_Exit(2);
}

// Locked items have the immutable flag.
void unlock(std::string const& path) {
    int const file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    unsigned flags = 0;
    if (file >= 0 && ::ioctl(file, FS_IOC_GETFLAGS, &flags) == 0 && (flags & FS_IMMUTABLE_FL) != 0) {
        flags &= ~unsigned{FS_IMMUTABLE_FL};
        ::ioctl(file, FS_IOC_SETFLAGS, &flags);
    }
    if (file >= 0) ::close(file);
}

int removeOne(char const* path, struct stat const*, int, FTW* place) {
    if (place->level == 0 || ::remove(path) == 0) return 0;
    if (errno != EPERM) return -1;
    unlock(path);
    return ::remove(path);
}

void setVariable(char const* name, std::string const& value) { need(::setenv(name, value.c_str(), 1) == 0, name); }

} // namespace

Fixture::Fixture(std::string volume, std::optional<std::string> secondVolume)
    : m_volume(std::move(volume)), m_second(std::move(secondVolume)) {
    setVariable("HOME", path("home"));
    setVariable("XDG_DATA_HOME", path("data"));
    setVariable("XDG_CONFIG_HOME", path("config"));
    for (char const* const others : {"XDG_DATA_DIRS", "XDG_CONFIG_DIRS"})
        setVariable(others, path("none"));
    setVariable("XDG_DESKTOP_DIR", "");
    setVariable("FRAMEKEEPER_LOCAL_COMPUTER", m_volume);
}

Fixture::~Fixture() {
    remove(m_volume);
    if (m_second) remove(*m_second);
}

bool Fixture::canExchangeNames() const {
    reset();
    makeFile("w/x");
    return ::renameat2(AT_FDCWD, path("w/x").c_str(), AT_FDCWD, path("canary.file").c_str(), RENAME_EXCHANGE) == 0;
}

bool Fixture::canKeepAttributes() const {
    reset();
    makeFile("w/x");
    return setAttribute("w/x", "user.note", "note");
}

std::string Fixture::path(std::string_view relative) const {
    if (relative == SecondVolume) return m_second.value_or("/nonexistent");
    if (!relative.starts_with(SecondPrefix)) return m_volume + "/" + std::string(relative);
    return path(SecondVolume) + "/" + std::string(relative.substr(SecondPrefix.size()));
}

void Fixture::remove(std::string const& folder) const {
    constexpr int mostOpen = 16;
    auto const removeAll = [&] { return ::nftw(folder.c_str(), removeOne, mostOpen, FTW_DEPTH | FTW_PHYS) == 0; };
    if (removeAll()) return;
    // Operations take over permissions that close a folder to everybody but root.
    test::openFolders(folder);
    need(removeAll(), folder);
}

void Fixture::reset() const {
    remove(m_volume);
    if (m_second) remove(*m_second);
    for (char const* const folder : {"w", "o", "home", "data", "config", "canary"})
        makeFolder(folder);
    makeFile("canary/file");
    makeFile("canary/x");
    makeLink("canary.link", path("canary"));
    makeLink("canary.file", path("canary/file"));
}

Snapshot Fixture::snapshot() const {
    Snapshot all;
    addItems(all, m_volume, "");
    if (m_second) addItems(all, *m_second, std::string(SecondPrefix));
    // Sizes of trashed folders, which no program relies on.
    std::erase_if(all, [](auto const& item) { return item.first.ends_with("/directorysizes"); });
    return all;
}

void Fixture::makeText(std::string_view relative, std::string_view contents, unsigned mode) const {
    std::string const file = path(relative);
    int const open = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    need(open >= 0, file);
    need(::write(open, contents.data(), contents.size()) == std::ssize(contents), file);
    need(::fchmod(open, mode) == 0, file);
    std::array<timespec, 2> const times{timespec{FixtureDate, 0}, timespec{FixtureDate, 0}};
    need(::futimens(open, times.data()) == 0, file);
    ::close(open);
}

void Fixture::makeFile(std::string_view relative, std::string_view text, unsigned mode) const {
    makeText(relative, secretText(relative) + std::string(text), mode);
}

void Fixture::makeFolder(std::string_view relative, unsigned mode) const {
    need(::mkdir(path(relative).c_str(), 0700) == 0, path(relative));
    need(::chmod(path(relative).c_str(), mode) == 0, path(relative));
}

void Fixture::makeLink(std::string_view relative, std::string const& target) const {
    need(::symlink(target.c_str(), path(relative).c_str()) == 0, path(relative));
}

bool Fixture::setAttribute(std::string_view relative, char const* name, std::string const& value) const {
    return ::setxattr(path(relative).c_str(), name, value.data(), value.size(), 0) == 0;
}

void Fixture::giveAway(std::string_view relative) const {
    constexpr unsigned another = 12345;
    if (::geteuid() == 0) need(::lchown(path(relative).c_str(), another, another) == 0, path(relative));
}

void Fixture::shareByDefault(std::string_view folder) const {
    // Version 2; then for each entry tag, permissions and ID: owner rwx, user 12345 rwx, group r-x, mask rwx, others
    // none.
    constexpr std::array<unsigned char, 44> list{2, 0,  0,   0,   1,   0,   7,  0, 255, 255, 255, 255, 2,   0,  7,
                                                 0, 57, 48,  0,   0,   4,   0,  5, 0,   255, 255, 255, 255, 16, 0,
                                                 7, 0,  255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};
    (void)::setxattr(path(folder).c_str(), "system.posix_acl_default", list.data(), list.size(), 0);
}

void Fixture::makeTrash() const {
    for (char const* const folder : {"data/Trash", "data/Trash/files", "data/Trash/info"})
        makeFolder(folder, 0700);
}

void Fixture::recordTrashed(std::string_view name) const {
    std::string const record =
        "[Trash Info]\nPath=" + path("w/") + std::string(name) + "\nDeletionDate=2026-01-02T03:04:05\n";
    makeText("data/Trash/info/" + std::string(name) + ".trashinfo", record, 0600);
}

void Fixture::makeSidecar(std::string_view folder, std::string_view item) const {
    std::string const place = std::string(folder) + "/._" + std::string(item);
    std::string const secret = secretText(place);
    AppleDouble contents;
    need(contents.setValue("beside", std::as_bytes(std::span(secret))), place);
    std::optional<std::vector<std::byte>> const bytes = contents.written();
    need(bytes.has_value(), place);
    makeText(place, {reinterpret_cast<char const*>(bytes->data()), bytes->size()}, 0600);
}

} // namespace mac::faults
