#pragma once

#include "platform/system/items/ItemTransfer.h"
#include "tests/support/DiskContents.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

// Copies and moves by path, and a folder to try them on.

inline std::string const AppleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);

inline FileDescriptor folderAt(std::string const& path) {
    return FileDescriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

// Opens the item at the path; a symbolic link is not followed.
inline OpenItem itemAt(std::string const& path) {
    Result<OpenItem> item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    EXPECT_TRUE(item.hasValue()) << path;
    return item.hasValue() ? item.takeValue() : OpenItem();
}

using Transfer = Result<void, TransferProblem> (*)(ItemTransfer const&);
inline constexpr Transfer copy = copyItem;
inline constexpr Transfer move = moveItem;

// The system's error code of the failure; 0 on success.
inline int errorOf(Transfer transfer, std::string const& path, std::string const& folder, std::string const& name,
                   std::function<bool()> shouldContinue = {}) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return item.problem().code;
    FileDescriptor const target = folderAt(folder);
    Result<void, TransferProblem> const done =
        transfer({.item = item.value(), .folder = target, .name = name, .shouldContinue = std::move(shouldContinue)});
    return done.isDone() ? 0 : done.problem().error.code;
}

inline struct stat statusOf(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

// Makes a folder with an item of each kind in it.
inline void makeTree(TemporaryFolder const& folder, std::string const& name) {
    folder.makeFile(name + "/inner/deep.txt", "deep");
    std::string const file = folder.makeFile(name + "/file \xFF", "contents");
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    std::array<timespec, 2> const times{timespec{1000, 0}, timespec{2000, 5}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    ASSERT_EQ(::symlink("nowhere", folder.path(name + "/link").c_str()), 0);
    ASSERT_EQ(::mkfifo(folder.path(name + "/pipe").c_str(), 0600), 0);
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.path(name).c_str(), times.data(), 0), 0);
}

inline void expectTree(std::string const& path) {
    EXPECT_EQ(namesIn(path), (std::vector<std::string>{"file \xFF", "inner", "link", "pipe"}));
    EXPECT_EQ(textOf(path + "/inner/deep.txt"), "deep");
    EXPECT_EQ(textOf(path + "/file \xFF"), "contents");
    struct stat const file = statusOf(path + "/file \xFF");
    EXPECT_EQ(file.st_mode & 07777U, 0640U);
    EXPECT_EQ(file.st_mtim.tv_sec, 2000);
    EXPECT_EQ(file.st_mtim.tv_nsec, 5);
    EXPECT_TRUE(S_ISLNK(statusOf(path + "/link").st_mode));
    EXPECT_TRUE(S_ISFIFO(statusOf(path + "/pipe").st_mode));
    EXPECT_EQ(statusOf(path).st_mtim.tv_sec, 2000);
}

} // namespace mac::test
