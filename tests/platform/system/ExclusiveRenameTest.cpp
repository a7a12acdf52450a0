#include "platform/system/ExclusiveRename.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/FolderContents.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemStatus.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

Names sortedNamesIn(std::string const& path) {
    Names names = namesInFolder(path, LinkAtEnd::IsFollowed).valueOr(Names{"cannot be read"});
    std::ranges::sort(names);
    return names;
}

std::string contentsOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class RenamingInSteps : public testing::Test {
protected:
    // The system's error code; 0 on success.
    int rename(std::string const& from, std::string const& to, std::function<void()> const& afterFirstStep = {}) const {
        return codeOf(StepwiseRename(afterFirstStep).rename(m_parent, from, m_parent, to));
    }

    // Runs the work where files cannot have two names.
    static void withoutSecondNames(std::function<void()> const& work) { withRefusedCall(SYS_linkat, EPERM, work); }
    static void withoutLinks(std::function<void()> const& work) {
        withoutSecondNames([&] { withRefusedCall(SYS_symlinkat, EPERM, work); });
    }

    // Expects the item to be the only one beside leftovers, each of which has the item's mark.
    void expectOnlyLeftoversBeside(std::string const& shown) const {
        std::uint64_t const mark = markOf(statusOf(m_parent, shown).value());
        for (std::string const& name : sortedNamesIn(m_folder.path())) {
            if (name == shown) continue;
            std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(name);
            EXPECT_TRUE(parsed && (!parsed->mark || parsed->accepts(mark))) << name;
        }
    }

    TemporaryFolder const m_folder{};
    FileDescriptor const m_parent{::open(m_folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
};

TEST_F(RenamingInSteps, MovesFilesFoldersAndLinks) {
    m_folder.makeFile("file", "x");
    m_folder.makeFile("folder/file", "y");
    ASSERT_EQ(::symlink("nowhere", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(rename("file", "file 2"), 0);
    EXPECT_EQ(rename("folder", "folder 2"), 0);
    EXPECT_EQ(rename("link", "link 2"), 0);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"file 2", "folder 2", "link 2"}));
    EXPECT_EQ(contentsOf(m_folder.path("file 2")), "x");
    EXPECT_EQ(contentsOf(m_folder.path("folder 2/file")), "y");
}

TEST_F(RenamingInSteps, ReplacesNothing) {
    m_folder.makeFile("file", "x");
    m_folder.makeFolder("folder");
    m_folder.makeFolder("empty");
    EXPECT_EQ(rename("file", "empty"), EEXIST);
    EXPECT_EQ(rename("folder", "empty"), EEXIST);
    EXPECT_EQ(rename("folder", "file"), EEXIST);
    EXPECT_EQ(rename("none", "new"), ENOENT);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"empty", "file", "folder"}));
}

TEST_F(RenamingInSteps, NeverShowsSomethingElseUnderTheNewName) {
    m_folder.makeFile("file", "x");
    std::string const second = m_folder.path("second");
    std::string seen;
    EXPECT_EQ(rename("file", "second", [&] { seen = contentsOf(second); }), 0);
    EXPECT_EQ(seen, "x") << "whatever is there is the item itself";
    m_folder.makeFolder("folder");
    EXPECT_EQ(rename("folder", "third",
                     [&] {
                         EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"folder", "second"}));
                     }),
              0);
    // Nothing else shows either where there are no links of any kind.
    withoutLinks([&] {
        EXPECT_EQ(rename("second", "fourth",
                         [&] {
                             EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"second", "third"}));
                         }),
                  0);
    });
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"fourth", "third"}));
}

TEST_F(RenamingInSteps, IsFollowedByOpenDescriptorsWhereFilesHaveOneName) {
    FileDescriptor const file(::open(m_folder.makeFile("file", "x").c_str(), O_PATH | O_CLOEXEC));
    ASSERT_TRUE(file.isOpen());
    withoutSecondNames([&] { EXPECT_EQ(rename("file", "second"), 0); });
    EXPECT_EQ(systemsPath(file).value(), m_folder.path("second"));
}

TEST_F(RenamingInSteps, LosesNothingThatTakesThePlaceOfTheFile) {
    std::string const file = m_folder.makeFile("file", "old");
    std::string const saved = m_folder.makeFile("saved", "new");
    EXPECT_EQ(rename("file", "second", [&] { ::rename(saved.c_str(), file.c_str()); }), 0);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"file", "second"}));
    EXPECT_EQ(contentsOf(file), "new");
    EXPECT_EQ(contentsOf(m_folder.path("second")), "old");
}

TEST_F(RenamingInSteps, LosesNothingThatTakesThePlaceOfTheFileWhereFilesHaveOneName) {
    std::string const file = m_folder.makeFile("file", "old");
    std::string const saved = m_folder.makeFile("saved", "new");
    ASSERT_EQ(::link(file.c_str(), m_folder.path("old").c_str()), 0);
    withoutSecondNames([&] { EXPECT_EQ(rename("file", "second", [&] { ::rename(saved.c_str(), file.c_str()); }), 0); });
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"old", "second"}));
    EXPECT_EQ(contentsOf(m_folder.path("second")), "new");
}

// Renames another process's item to the new name again and again, without looking, while a file is renamed to it.
TEST_F(RenamingInSteps, NeverReplacesAnItemThatTakesTheNewNameAtAnyMoment) {
    for (int step = 0; step < 40; ++step) {
        std::string const name = std::to_string(step);
        m_folder.makeFile(name + "/file", "x");
        std::string const anothers = m_folder.makeFile(name + "/another's", "y");
        std::string const second = m_folder.path(name + "/second");
        FileDescriptor const folder(::open(m_folder.path(name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        std::atomic<bool> isReady{false};
        std::thread other([&] {
            isReady = true;
            ::renameat2(AT_FDCWD, anothers.c_str(), AT_FDCWD, second.c_str(), RENAME_NOREPLACE);
        });
        while (!isReady)
            std::this_thread::yield();
        int const result = codeOf(StepwiseRename().rename(folder, "file", folder, "second"));
        other.join();
        EXPECT_TRUE(result == 0 || result == EEXIST) << result;
        Names const expected = result == 0 ? Names{"another's", "second"} : Names{"file", "second"};
        EXPECT_EQ(sortedNamesIn(m_folder.path(name)), expected);
        EXPECT_EQ(contentsOf(second), result == 0 ? "x" : "y");
    }
}

TEST_F(RenamingInSteps, KeepsAFileWhoseFirstNameAnotherProcessRemoves) {
    std::string const file = m_folder.makeFile("file", "x");
    EXPECT_EQ(rename("file", "second", [&] { ::unlink(file.c_str()); }), 0);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), Names{"second"});
    EXPECT_EQ(contentsOf(m_folder.path("second")), "x");
}

TEST_F(RenamingInSteps, TakesTheNewNameBackIfTheFirstOneCannotGo) {
    m_folder.makeFile("file", "x");
    withRefusedCall(SYS_renameat, EACCES, [&] { EXPECT_EQ(rename("file", "second"), EACCES); });
    EXPECT_EQ(contentsOf(m_folder.path("file")), "x");
    ::unlink(m_folder.path("second").c_str());
    // What refuses to remove a name refuses to remove those aside, too, which go as leftovers.
    withRefusedCall(SYS_unlinkat, EACCES, [&] { EXPECT_NE(rename("file", "third"), 0); });
    EXPECT_EQ(contentsOf(m_folder.path("file")), "x");
    expectOnlyLeftoversBeside("file");
}

TEST_F(RenamingInSteps, GivesTheFirstNameBackAlsoWhereNoRoomIsLeftForNames) {
    m_folder.makeFile("file", "x");
    std::thread([&] {
        int const result = rename("file", "second", [] {
            refuseCallOnThisThread(SYS_unlinkat, EACCES);
            refuseCallOnThisThread(SYS_linkat, ENOSPC);
        });
        EXPECT_EQ(result, EACCES);
    }).join();
    EXPECT_EQ(contentsOf(m_folder.path("file")), "x");
    expectOnlyLeftoversBeside("file");
}

// A server may get the request twice, and answers the second time that the name is gone.
TEST_F(RenamingInSteps, IsDoneWhereTheNameToRemoveIsGoneAlready) {
    m_folder.makeFile("file", "x");
    std::thread([&] {
        EXPECT_EQ(rename("file", "second", [] { refuseCallOnThisThread(SYS_unlinkat, ENOENT); }), 0);
    }).join();
    EXPECT_NE(::access(m_folder.path("file").c_str(), F_OK), 0);
    EXPECT_EQ(contentsOf(m_folder.path("second")), "x");
}

// If no name can be looked at, the new name stays, since it may be the only one.
TEST_F(RenamingInSteps, IsNotDoneWhereNothingCanBeSeen) {
    m_folder.makeFile("file", "x");
    std::thread([&] {
        EXPECT_EQ(rename("file", "second", [] { refuseCallOnThisThread(SYS_statx, ESTALE); }), EIO);
    }).join();
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"file", "second"}));
    std::string const other = m_folder.makeFile("other", "y");
    std::thread([&] {
        int const result = rename("other", "third", [&] {
            ::unlink(other.c_str());
            refuseCallOnThisThread(SYS_statx, ENOENT);
        });
        EXPECT_EQ(result, EIO);
    }).join();
    EXPECT_EQ(contentsOf(m_folder.path("third")), "y");
}

TEST_F(RenamingInSteps, MovesFilesWithOtherNames) {
    std::string const file = m_folder.makeFile("file", "x");
    ASSERT_EQ(::link(file.c_str(), m_folder.path("other").c_str()), 0);
    EXPECT_EQ(rename("file", "second"), 0);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"other", "second"}));
    EXPECT_EQ(rename("other", "second"), EEXIST);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"other", "second"}));
}

TEST_F(RenamingInSteps, LeavesWhatTakesTheNewNameOfAFolder) {
    m_folder.makeFile("folder/inner", "y");
    EXPECT_EQ(rename("folder", "third", [&] { m_folder.makeFile("third/file", "another's"); }), EEXIST);
    EXPECT_EQ(contentsOf(m_folder.path("third/file")), "another's");
    EXPECT_EQ(contentsOf(m_folder.path("folder/inner")), "y");
    EXPECT_EQ(rename("folder", "fourth", [&] { m_folder.makeFile("fourth", "another's"); }), EEXIST);
    EXPECT_EQ(contentsOf(m_folder.path("fourth")), "another's");
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"folder", "fourth", "third"}));
}

TEST_F(RenamingInSteps, LeavesWhatTakesTheNewNameOfAFile) {
    std::string const file = m_folder.makeFile("file", "x");
    std::string const anothers = m_folder.makeFile("another's", "y");
    EXPECT_EQ(rename("file", "second", [&] { ::rename(anothers.c_str(), m_folder.path("second").c_str()); }), EEXIST);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"file", "second"}));
    EXPECT_EQ(contentsOf(file), "x");
    EXPECT_EQ(contentsOf(m_folder.path("second")), "y");
    withoutLinks([&] { EXPECT_EQ(rename("file", "third", [&] { m_folder.makeFile("third", "another's"); }), EEXIST); });
    EXPECT_EQ(contentsOf(file), "x");
    EXPECT_EQ(contentsOf(m_folder.path("third")), "another's");
}

TEST_F(RenamingInSteps, LeavesWhatTakesTheNewNameWhereFilesHaveOneName) {
    std::string const file = m_folder.makeFile("file", "x");
    std::string const anothers = m_folder.makeFile("another's", "y");
    withoutSecondNames([&] {
        EXPECT_EQ(rename("file", "second", [&] { ::rename(anothers.c_str(), m_folder.path("second").c_str()); }),
                  EEXIST);
    });
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"file", "second"}));
    EXPECT_EQ(contentsOf(file), "x");
    EXPECT_EQ(contentsOf(m_folder.path("second")), "y");
}

TEST_F(RenamingInSteps, LeavesNothingBehindWhenItFails) {
    m_folder.makeFolder("folder/inner");
    FileDescriptor const inner(::open(m_folder.path("folder/inner").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_EQ(codeOf(StepwiseRename().rename(m_parent, "folder", inner, "itself")), EINVAL);
    EXPECT_TRUE(sortedNamesIn(m_folder.path("folder/inner")).empty());
    std::string const file = m_folder.makeFile("file", "x");
    EXPECT_EQ(rename("file", "second", [&] { ::rename(file.c_str(), m_folder.path("moved").c_str()); }), ENOENT);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"folder", "moved"}));
}

TEST_F(RenamingInSteps, IsWhatIsDoneWhereTheSystemCannotRenameSo) {
    m_folder.makeFile("file", "x");
    m_folder.makeFile("taken", "y");
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        EXPECT_EQ(codeOf(renameWithoutReplacing(m_parent, "file", m_parent, "taken")), EEXIST);
        EXPECT_EQ(codeOf(renameWithoutReplacing(m_parent, "file", m_parent, "free")), 0);
    });
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"free", "taken"}));
    EXPECT_EQ(contentsOf(m_folder.path("taken")), "y");
}

TEST_F(RenamingInSteps, TellsWhatFailedAndOnWhat) {
    Result<void> const renamed = StepwiseRename().rename(m_parent, "none", m_parent, "new");
    ASSERT_FALSE(renamed.isDone());
    EXPECT_EQ(renamed.problem().code, ENOENT);
    EXPECT_EQ(renamed.problem().item, "none");
    m_folder.makeFile("file", "");
    m_folder.makeFile("taken", "");
    Result<void> const taken = renameWithoutReplacing(m_parent, "file", m_parent, "taken");
    ASSERT_FALSE(taken.isDone());
    EXPECT_EQ(taken.problem().code, EEXIST);
    EXPECT_STREQ(taken.problem().operation, "rename");
    EXPECT_EQ(taken.problem().item, "file");
}

class NamingANewFile : public RenamingInSteps {
protected:
    int name(std::string const& from, std::string const& to) const { return codeOf(nameNewFile(m_parent, from, to)); }
    // Names the file where the system cannot rename without replacing.
    int nameInSteps(std::string const& from, std::string const& to) const {
        int result = 0;
        withRefusedCall(SYS_renameat2, EINVAL, [&] { result = name(from, to); });
        return result;
    }
};

TEST_F(NamingANewFile, ReplacesNothing) {
    m_folder.makeFile("new", "x");
    m_folder.makeFile("taken", "y");
    EXPECT_EQ(name("new", "taken"), EEXIST);
    EXPECT_EQ(nameInSteps("new", "taken"), EEXIST);
    EXPECT_EQ(name("new", "free"), 0);
    EXPECT_EQ(nameInSteps("free", "name"), 0);
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"name", "taken"}));
    EXPECT_EQ(contentsOf(m_folder.path("name")), "x");
    EXPECT_EQ(contentsOf(m_folder.path("taken")), "y");
}

TEST_F(NamingANewFile, IsDoneAlsoWhereTheFirstNameCannotGo) {
    m_folder.makeFile("new", "x");
    withRefusedCall(SYS_unlinkat, EACCES, [&] { EXPECT_EQ(nameInSteps("new", "name"), 0); });
    EXPECT_EQ(sortedNamesIn(m_folder.path()), (Names{"name", "new"}));
    EXPECT_EQ(contentsOf(m_folder.path("name")), "x");
}

TEST_F(NamingANewFile, NeedsNoSecondNames) {
    m_folder.makeFile("new", "x");
    withRefusedCall(SYS_linkat, EPERM, [&] { EXPECT_EQ(nameInSteps("new", "name"), 0); });
    EXPECT_EQ(sortedNamesIn(m_folder.path()), Names{"name"});
    EXPECT_EQ(contentsOf(m_folder.path("name")), "x");
}

} // namespace
} // namespace mac::test
