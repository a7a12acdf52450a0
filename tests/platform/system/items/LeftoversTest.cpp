#include "platform/system/items/Leftovers.h"
#include "platform/system/FileWriting.h"
#include "platform/system/TemporaryName.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/OrdinaryUser.h"
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {

namespace {

// Runs the work in a process of its own, which the work kills.
void withKilledProcess(std::function<void()> const& work) {
    int const child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "it came to its end";
}

void endProcess() { ::kill(::getpid(), SIGKILL); }

// A temporary name made by a process that was killed.
std::string nameOfKilledProcess(std::string (*name)()) {
    std::array<int, 2> pipe{};
    EXPECT_EQ(::pipe(pipe.data()), 0);
    withKilledProcess([&] {
        std::string const made = name();
        if (::write(pipe[1], made.data(), made.size()) > 0) endProcess();
    });
    std::string text(255, '\0');
    ssize_t const size = ::read(pipe[0], text.data(), text.size());
    text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    ::close(pipe[0]);
    ::close(pipe[1]);
    return text;
}

std::string leftoverName() {
    return nameOfKilledProcess([] { return temporaryName().value(); });
}

class Leftovers : public testing::Test {
protected:
    std::vector<std::string> remove() const { return removeLeftovers(folderAt(m_folder.path())); }

    TemporaryFolder const m_folder{};
};

TEST_F(Leftovers, OfACopyThatWasKilledGoWithTheNextOne) {
    makeTree(m_folder, "tree");
    m_folder.makeFile("._tree", AppleDouble);
    m_folder.makeFolder("there");
    for (int most = 0; most < 6; ++most) {
        withKilledProcess([&] {
            int asked = 0;
            errorOf(copy, m_folder.path("tree"), m_folder.path("there"), "copy", [&] {
                if (asked++ == most) endProcess();
                return true;
            });
        });
        EXPECT_FALSE(namesIn(m_folder.path("there")).empty() && most > 0) << "the test looks at nothing";
        EXPECT_EQ(errorOf(copy, m_folder.path("tree"), m_folder.path("there"), "next"), 0);
        EXPECT_EQ(namesIn(m_folder.path("there")), (std::vector<std::string>{"._next", "next"}));
        ASSERT_EQ(::unlink(m_folder.path("there/._next").c_str()), 0);
        EXPECT_EQ(errorOf(move, m_folder.path("there/next"), m_folder.path(), "done " + std::to_string(most)), 0);
    }
}

TEST_F(Leftovers, OfACopyWithItsSidecarGoAtEachStep) {
    m_folder.makeFile("file", "x");
    m_folder.makeFile("._file", AppleDouble + "own");
    m_folder.makeFolder("there");
    for (CopyStep const step : {CopyStep::Complete, CopyStep::SidecarNamed, CopyStep::Named}) {
        withKilledProcess([&] {
            Result<OpenItem> const item = openItemAtPath(m_folder.path("file"), LinkAtEnd::IsNotFollowed);
            FileDescriptor const target = folderAt(m_folder.path("there"));
            static_cast<void>(
                copyItem({.item = item.value(), .folder = target, .name = "file", .copySteps = [&](CopyStep done) {
                              if (done == step) endProcess();
                          }}));
        });
        bool const isNamed = step == CopyStep::Named;
        EXPECT_EQ(isThere(m_folder.path("there/file")), isNamed);
        removeLeftovers(folderAt(m_folder.path("there")));
        EXPECT_EQ(namesIn(m_folder.path("there")),
                  isNamed ? (std::vector<std::string>{"._file", "file"}) : std::vector<std::string>());
        EXPECT_EQ(textOf(m_folder.path("there/._file")), isNamed ? AppleDouble + "own" : "");
    }
}

TEST_F(Leftovers, OfAFileThatWasWrittenGoWithTheNextOne) {
    std::string const file = m_folder.makeFile("file", "old");
    std::span<std::byte const> const bytes = std::as_bytes(std::span("new", 3));
    withKilledProcess([&] {
        static_cast<void>(replaceFileAtPath(file, bytes, {.beforeRenaming = [](FileDescriptor const&) {
                                                endProcess();
                                                return Result<void>();
                                            }}));
    });
    EXPECT_EQ(namesIn(m_folder.path()).size(), 2U);
    EXPECT_EQ(textOf(file), "old");
    EXPECT_TRUE(replaceFileAtPath(file, bytes).isDone());
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"file"});
    EXPECT_EQ(textOf(file), "new");
}

TEST_F(Leftovers, OfProcessesThatRunOrCannotBeSeenStay) {
    std::string const own = temporaryName().value();
    m_folder.makeFile(own, "x");
    TemporaryOwner const owner = TemporaryOwner::current();
    std::string const inContainer =
        ".framekeeper-" + owner.machine + "-" + owner.boot + "-1-1-1-1-" + std::string(32, '0');
    m_folder.makeFile(inContainer + "/file", "x");
    std::string const gone = leftoverName();
    m_folder.makeFile(gone + "/inner/file", "x");
    EXPECT_EQ(remove(), std::vector<std::string>{inContainer}) << "this one is told, and only this one";
    EXPECT_EQ(namesIn(m_folder.path()), (std::vector<std::string>{inContainer, own}));
    EXPECT_EQ(textOf(m_folder.path(inContainer + "/file")), "x");
}

TEST_F(Leftovers, OfARemovalGoOnlyIfTheyAreWhatWasToGo) {
    std::string const file = m_folder.makeFile("file", "copied");
    FileDescriptor const opened(::open(file.c_str(), O_PATH | O_CLOEXEC));
    static std::uint64_t mark = 0;
    mark = markOf(statusOf(opened).value());
    std::string const aside = nameOfKilledProcess([] { return asideName(mark).value(); });
    std::string const wrong = nameOfKilledProcess([] { return asideName(mark).value(); });
    m_folder.makeFile(wrong, "another's");
    ASSERT_EQ(::rename(file.c_str(), m_folder.path(aside).c_str()), 0);
    EXPECT_EQ(remove(), std::vector<std::string>{wrong});
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{wrong});
    EXPECT_EQ(textOf(m_folder.path(wrong)), "another's");
}

// Two items that were exchanged: either goes, with the sidecar that lies beside it, and no third one.
TEST_F(Leftovers, OfAnExchangeGoWhicheverHasTheName) {
    static std::uint64_t one = 0;
    static std::uint64_t other = 0;
    for (char const* const going : {"copy", "old"}) {
        m_folder.makeFile("copy", "new contents");
        m_folder.makeFile("old", "old");
        FileDescriptor const folder = folderAt(m_folder.path());
        one = markOf(statusOf(folder, "copy").value());
        other = markOf(statusOf(folder, "old").value());
        std::string const aside = nameOfKilledProcess([] { return asideNameForEither(one, other).value(); });
        std::string const wrong = nameOfKilledProcess([] { return asideNameForEither(one, other).value(); });
        ASSERT_EQ(::rename(m_folder.path(going).c_str(), m_folder.path(aside).c_str()), 0);
        m_folder.makeFile("._" + aside, AppleDouble);
        m_folder.makeFile(wrong, "another's");
        m_folder.makeFile("._" + wrong, AppleDouble);
        EXPECT_EQ(remove(), (std::vector<std::string>{wrong, "._" + wrong}));
        EXPECT_FALSE(isThere(m_folder.path(aside)) || isThere(m_folder.path("._" + aside)));
        EXPECT_EQ(textOf(m_folder.path(wrong)), "another's");
        for (std::string const& name : namesIn(m_folder.path()))
            ASSERT_EQ(::unlink(m_folder.path(name).c_str()), 0);
    }
}

// An item that was exchanged and has got its own name back, but not its sidecar.
TEST_F(Leftovers, OfAnExchangeStayWhileTheirItemIsThere) {
    m_folder.makeFile("old", "old");
    static std::uint64_t mark = 0;
    mark = markOf(statusOf(folderAt(m_folder.path()), "old").value());
    std::string const aside = nameOfKilledProcess([] { return asideNameForEither(mark + 1, mark).value(); });
    std::string const sidecar = "._" + aside;
    m_folder.makeFile(sidecar, AppleDouble);
    EXPECT_EQ(remove(), std::vector<std::string>{sidecar});
    EXPECT_EQ(textOf(m_folder.path(sidecar)), AppleDouble);
    ASSERT_EQ(::unlink(m_folder.path("old").c_str()), 0);
    // The clock of file times may not have moved on since.
    std::array<timespec, 2> const times{timespec{1, 0}, timespec{1, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, m_folder.path().c_str(), times.data(), 0), 0);
    EXPECT_EQ(remove(), std::vector<std::string>());
    EXPECT_FALSE(isThere(m_folder.path(sidecar)));
}

TEST_F(Leftovers, ThatAreToComeBackStay) {
    std::string const aside = nameOfKilledProcess([] { return asideName(MarkOfNoItem).value(); });
    m_folder.makeFile(aside, "the only one");
    EXPECT_EQ(remove(), std::vector<std::string>{aside});
    EXPECT_EQ(textOf(m_folder.path(aside)), "the only one");
}

TEST_F(Leftovers, ThatAnotherUserMayHaveNamedStay) {
    std::string const name = leftoverName();
    m_folder.makeFile(name + "/file", "x");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0777), 0);
    EXPECT_EQ(remove(), std::vector<std::string>{name});
    EXPECT_EQ(textOf(m_folder.path(name + "/file")), "x");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 01777), 0);
    m_folder.makeFile("changed", "");
    EXPECT_EQ(remove(), std::vector<std::string>()) << "here nobody else can have named it";
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"changed"});
}

TEST_F(Leftovers, ThatAMemberOfTheGroupMayHaveNamedStay) {
    std::string const name = leftoverName();
    m_folder.makeFile(name + "/file", "x");
    ASSERT_EQ(::chown(m_folder.path().c_str(), ::geteuid(), ::getegid()), 0);
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0770), 0);
    EXPECT_EQ(remove(), std::vector<std::string>{name});
    EXPECT_EQ(textOf(m_folder.path(name + "/file")), "x");
}

TEST_F(Leftovers, OfAnotherComputerStay) {
    std::string const live =
        ".framekeeper-" + std::string(16, 'b') + "-" + std::string(16, 'a') + "-1-1-1-1-" + std::string(32, '0');
    m_folder.makeFile(live + "/file", "x");
    EXPECT_EQ(remove(), std::vector<std::string>{live});
    EXPECT_EQ(textOf(m_folder.path(live + "/file")), "x");
}

TEST_F(Leftovers, AreNotRemovedWhenOneOfThemIsCopied) {
    std::string const name = leftoverName();
    m_folder.makeFile(name, "x");
    EXPECT_EQ(errorOf(copy, m_folder.path(name), m_folder.path(), "saved"), 0);
    EXPECT_EQ(textOf(m_folder.path("saved")), "x");
}

} // namespace

} // namespace mac::test
