#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include <memory>
#include <unistd.h>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

// More open files than any transfer needs at once.
constexpr unsigned ManyFiles = 40;

// A file with an AppleDouble sidecar and a folder to bring it to, all an ordinary user's.
class SidecarTransfer : public testing::TestWithParam<Transfer> {
protected:
    void SetUp() override {
        OrdinaryUser::own(m_folder.path());
        OrdinaryUser::own(m_folder.makeFolder("from"));
        OrdinaryUser::own(m_to);
        makeItem();
    }

    void makeItem() const {
        OrdinaryUser::own(m_folder.makeFile("from/file", "x"));
        OrdinaryUser::own(m_folder.makeFile("from/._file", AppleDouble));
    }
    int transfer() const { return errorOf(GetParam(), m_folder.path("from/file"), m_to, "file"); }
    void expectUntouched() const {
        EXPECT_EQ(namesIn(m_folder.path("from")), (Names{"._file", "file"}));
        EXPECT_EQ(namesIn(m_to), Names());
    }

    TemporaryFolder const m_folder{};
    std::string const m_to = m_folder.makeFolder("to");
};

TEST_P(SidecarTransfer, FailsWhereTheSidecarIsClosed) {
    ASSERT_EQ(::chmod(m_folder.path("from/._file").c_str(), 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(transfer(), EACCES);
    expectUntouched();
}

TEST_P(SidecarTransfer, FailsWhereTheSidecarIsOpenToItsOtherOwnerAlone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make somebody else's file";
    std::string const sidecar = m_folder.path("from/._file");
    ASSERT_EQ(::chmod(sidecar.c_str(), 0600), 0);
    ASSERT_EQ(::chown(sidecar.c_str(), 0, 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(transfer(), EACCES);
    expectUntouched();
}

TEST_P(SidecarTransfer, FailsWhereAStraySidecarIsClosed) {
    ASSERT_EQ(::unlink(m_folder.path("from/._file").c_str()), 0);
    std::string const stray = m_folder.makeFile("to/._file", AppleDouble);
    OrdinaryUser::own(stray);
    ASSERT_EQ(::chmod(stray.c_str(), 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(transfer(), EACCES);
    EXPECT_EQ(namesIn(m_folder.path("from")), Names{"file"});
    EXPECT_EQ(namesIn(m_to), Names{"._file"});
}

TEST_P(SidecarTransfer, IsWholeOrNotDoneWhenTooManyFilesAreOpen) {
    unsigned failures = 0;
    for (unsigned more = 0; more < ManyFiles; ++more) {
        Result<OpenItem> const item = openItemAtPath(m_folder.path("from/file"), LinkAtEnd::IsNotFollowed);
        ASSERT_TRUE(item.hasValue());
        FileDescriptor const target = folderAt(m_to);
        auto limit = std::make_unique<OpenFilesLimit>(more);
        Result<void, TransferProblem> const done = GetParam()({.item = item.value(), .folder = target, .name = "file"});
        limit.reset();
        SCOPED_TRACE(std::to_string(more) + " more files");
        if (!done.isDone()) {
            ++failures;
            EXPECT_EQ(done.problem().error.code, EMFILE) << done.problem().error.text();
            expectUntouched();
            continue;
        }
        EXPECT_EQ(namesIn(m_to), (Names{"._file", "file"}));
        ASSERT_EQ(::unlink((m_to + "/file").c_str()), 0);
        ASSERT_EQ(::unlink((m_to + "/._file").c_str()), 0);
        makeItem();
    }
    EXPECT_GT(failures, 0U);
    EXPECT_LT(failures, ManyFiles);
}

INSTANTIATE_TEST_SUITE_P(OfItems, SidecarTransfer, testing::Values(copy, move),
                         [](auto const& parameter) { return parameter.param == copy ? "Copy" : "Move"; });

} // namespace

} // namespace mac::test
