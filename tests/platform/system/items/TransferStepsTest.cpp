#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/PrivateMounts.h"
#include <filesystem>
#include <fstream>

// What other processes do between the steps of copies, moves and removals.

namespace mac::test {

namespace {

class TransferSteps : public PrivateMounts {
protected:
    // The system's error code of the failure; 0 on success.
    int moveWith(std::string const& name, RemovalSteps const& steps) const {
        Result<OpenItem> const item = openItemAtPath(m_folder.path(name), LinkAtEnd::IsNotFollowed);
        FileDescriptor const target = folderAt(m_point.path());
        Result<void, TransferProblem> const moved =
            moveItem({.item = item.value(), .folder = target, .name = name, .removalSteps = steps});
        if (moved.isDone()) return 0;
        EXPECT_EQ(moved.problem().kind, TransferProblem::Kind::OriginalStays);
        return moved.problem().error.code;
    }

    int copyWith(std::string const& name, CopySteps const& steps) const {
        Result<OpenItem> const item = openItemAtPath(m_folder.path(name), LinkAtEnd::IsNotFollowed);
        FileDescriptor const target = folderAt(m_point.path());
        Result<void, TransferProblem> const copied =
            copyItem({.item = item.value(), .folder = target, .name = name, .copySteps = steps});
        return copied.isDone() ? 0 : copied.problem().error.code;
    }

    TemporaryFolder const m_folder{};
    TemporaryFolder const m_point{};
};

TEST_F(TransferSteps, ARemovalLeavesTheItemThatTakesThePlaceOfTheOriginal) {
    mountMemory(m_point.path());
    for (char const* const name : {"file", "tree/file"}) {
        std::string const file = m_folder.makeFile(name, "old");
        std::string const item = std::string(name).substr(0, 4);
        auto const exchange = [&](RemovalStep step) {
            if (step != RemovalStep::Checked || textOf(file) != "old") return;
            ASSERT_EQ(::rename(file.c_str(), m_folder.path("elsewhere").c_str()), 0);
            m_folder.makeFile(name, "another's");
        };
        EXPECT_EQ(moveWith(item, exchange), ESTALE);
        EXPECT_EQ(textOf(file), "another's");
        EXPECT_EQ(textOf(m_folder.path("elsewhere")), "old");
        EXPECT_EQ(textOf(m_point.path(name)), "old");
    }
    EXPECT_EQ(namesIn(m_folder.path()), (std::vector<std::string>{"elsewhere", "file", "tree"}));
    EXPECT_EQ(namesIn(m_folder.path("tree")), std::vector<std::string>{"file"});
}

TEST_F(TransferSteps, ACopyIsNotMadeInAFolderOfAnother) {
    mountMemory(m_point.path(), "mode=777");
    m_folder.makeFile("tree/inner/file", "secret");
    auto const exchange = [&](CopyStep step) {
        if (step != CopyStep::FolderMade) return;
        std::string const made = m_point.path(namesIn(m_point.path()).at(0));
        ASSERT_EQ(::rename(made.c_str(), m_point.path("x elsewhere").c_str()), 0);
        ASSERT_EQ(::mkdir(made.c_str(), 0700), 0);
        ASSERT_EQ(::chmod(made.c_str(), 0777), 0);
    };
    EXPECT_EQ(copyWith("tree", exchange), ESTALE);
    EXPECT_EQ(namesIn(m_point.path("x elsewhere")), std::vector<std::string>());
}

TEST_F(TransferSteps, ACopyThatGetsNoNameTakesNoOtherItemAlong) {
    for (char const* const name : {"file", "tree"}) {
        m_folder.makeFile(std::string(name) == "tree" ? "tree/inner" : "file", "x");
        FileDescriptor const target = folderAt(m_point.path());
        OpenItem const item = itemAt(m_folder.path(name));
        std::string temporary;
        auto const exchange = [&](CopyStep step) {
            if (step != CopyStep::Complete) return;
            temporary = namesIn(m_point.path()).at(0);
            ASSERT_EQ(::rename(m_point.path(temporary).c_str(), m_point.path("x copy").c_str()), 0);
            m_point.makeFile(temporary, "another's");
            m_point.makeFile("taken", "taken");
        };
        Result<void, TransferProblem> const copied =
            copyItem({.item = item, .folder = target, .name = "taken", .copySteps = exchange});
        ASSERT_FALSE(copied.isDone());
        EXPECT_EQ(copied.problem().error.code, EEXIST);
        EXPECT_EQ(textOf(m_point.path(temporary)), "another's");
        EXPECT_EQ(textOf(m_point.path("taken")), "taken");
        for (std::string const& left : namesIn(m_point.path()))
            std::filesystem::remove_all(m_point.path(left));
    }
}

TEST_F(TransferSteps, ACopyThatGetsNoNameIsRemoved) {
    m_folder.makeFile("tree/inner/file", "x");
    m_folder.makeFile("._tree", AppleDouble);
    OpenItem const item = itemAt(m_folder.path("tree"));
    FileDescriptor const target = folderAt(m_point.path());
    auto const take = [&](CopyStep step) {
        if (step == CopyStep::Complete) m_point.makeFile("taken", "taken");
    };
    Result<void, TransferProblem> const copied =
        copyItem({.item = item, .folder = target, .name = "taken", .copySteps = take});
    ASSERT_FALSE(copied.isDone());
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>{"taken"});
}

TEST_F(TransferSteps, ARemovalLosesNothingAlsoWhereTheNameIsTakenMeanwhile) {
    mountMemory(m_point.path());
    std::string const file = m_folder.makeFile("file", "old");
    auto const exchange = [&](RemovalStep step) {
        if (step == RemovalStep::Checked) {
            ASSERT_EQ(::unlink(file.c_str()), 0);
            m_folder.makeFile("file", "second");
        } else {
            m_folder.makeFile("file", "third");
        }
    };
    EXPECT_EQ(moveWith("file", exchange), ESTALE);
    EXPECT_EQ(textOf(file), "third");
    std::vector<std::string> const names = namesIn(m_folder.path());
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(textOf(m_folder.path(names[0])), "second") << "moved aside and kept there";
}

TEST_F(TransferSteps, ARemovalKeepsAFileThatIsSavedAtTheLastMoment) {
    mountMemory(m_point.path());
    std::string const file = m_folder.makeFile("file", "old");
    EXPECT_EQ(moveWith("file",
                       [&](RemovalStep step) {
                           if (step == RemovalStep::Checked) std::ofstream(file) << "saved";
                       }),
              ESTALE);
    EXPECT_EQ(textOf(file), "saved");
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"file"});
}

TEST_F(TransferSteps, ASpecialFileGivesItsPermissionsToNoOther) {
    std::string const strangers = m_folder.makeFile("stranger's", "x");
    ASSERT_EQ(::chmod(strangers.c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(m_folder.path("tree pipe").c_str(), 0666), 0);
    ASSERT_EQ(::chmod(m_folder.path("tree pipe").c_str(), 0666), 0);
    for (CopyStep const step : {CopyStep::SpecialMade, CopyStep::SpecialOpened}) {
        bool isExchanged = false;
        auto const exchange = [&](CopyStep done) {
            if (done != step) return;
            // In whatever folder the pipe is made.
            for (std::string const& name : namesIn(m_point.path())) {
                std::string const inner = m_point.path(name) + "/";
                for (std::string const& pipe : namesIn(inner)) {
                    isExchanged = true;
                    ASSERT_EQ(::unlink((inner + pipe).c_str()), 0);
                    ASSERT_EQ(::link(strangers.c_str(), (inner + pipe).c_str()), 0);
                }
            }
        };
        int const code = copyWith("tree pipe", exchange);
        EXPECT_TRUE(isExchanged) << "the test looks at nothing";
        EXPECT_TRUE(step != CopyStep::SpecialMade || code == ESTALE) << code;
        EXPECT_EQ(statusOf(strangers).st_mode & 07777U, 0600U);
        ::unlink(m_point.path("tree pipe").c_str());
    }
}

TEST_F(TransferSteps, AnItemNeverHasTheSidecarOfAnother) {
    m_folder.makeFile("file", "new");
    m_folder.makeFile("._file", AppleDouble + "new");
    std::string const old = m_point.makeFile("file", "old");
    int steps = 0;
    auto const look = [&](CopyStep) {
        ++steps;
        EXPECT_EQ(textOf(old), "old");
        EXPECT_FALSE(isThere(m_point.path("._file")));
    };
    Result<OpenItem> const item = openItemAtPath(m_folder.path("file"), LinkAtEnd::IsNotFollowed);
    FileDescriptor const target = folderAt(m_point.path());
    auto const placing = [&](PlaceItem const& place) { return place(); };
    Result<void, TransferProblem> const copied =
        copyItem({.item = item.value(), .folder = target, .name = "file", .placing = placing, .copySteps = look});
    ASSERT_FALSE(copied.isDone());
    EXPECT_EQ(copied.problem().error.code, EEXIST);
    EXPECT_EQ(steps, 1) << "it was complete, and then the name was taken";
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>{"file"});
    // In a free place the sidecar comes first and the item is complete when it appears.
    ASSERT_EQ(::unlink(old.c_str()), 0);
    std::vector<CopyStep> seen;
    EXPECT_EQ(copyWith("file",
                       [&](CopyStep step) {
                           seen.push_back(step);
                           EXPECT_EQ(isThere(old), step == CopyStep::Named);
                           EXPECT_EQ(isThere(m_point.path("._file")), step != CopyStep::Complete);
                       }),
              0);
    EXPECT_EQ(seen, (std::vector<CopyStep>{CopyStep::Complete, CopyStep::SidecarNamed, CopyStep::Named}));
    EXPECT_EQ(namesIn(m_point.path()), (std::vector<std::string>{"._file", "file"}));
    EXPECT_EQ(statusOf(m_point.path("._file")).st_nlink, 1U);
}

} // namespace

} // namespace mac::test
