#include "tests/app/ProgramInASession.h"
#include "tests/support/ServedFolder.h"
#include <filesystem>
#include <fstream>

// The window, and the command line, beside a volume whose server is stopped (FUSE): what is under way there is done and
// told once the server runs again, and everything else goes on meanwhile.

namespace framekeeper::test {
namespace {

class NeighboursOnAVolume : public ProgramInASession {
protected:
    void SetUp() override {
        if (!ServedFolder::whyNone().empty()) GTEST_SKIP() << ServedFolder::whyNone();
        ProgramInASession::SetUp();
        if (IsSkipped()) return;
        std::filesystem::create_directories(m_home + "/volume");
        std::filesystem::create_directories(m_folder.path("served"));
        std::filesystem::rename(pathOfCopy("media/Mirror Frame 2.1"), m_folder.path("served/Mirror Frame.app"));
        m_volume = std::make_unique<ServedFolder>(m_folder.path("served"), m_home + "/volume");
        ASSERT_TRUE(waitUntil([this] { return m_volume->isMounted(); }));
    }
    // Such a volume is not searched: its copy is known from the places.
    void addToPlaces() const {
        std::filesystem::create_directories(m_home + "/.config/gtk-3.0");
        std::ofstream(m_home + "/.config/gtk-3.0/bookmarks")
            << "file://" + m_home + "/volume/Mirror%20Frame.app A copy\n";
    }
    // Waits until the program's main thread waits for the volume's server.
    bool waitsForTheVolume() const {
        return waitUntil([this] { return ServedFolder::isWaitedForBy(m_program->pid()); });
    }

    // Waits until the copy's row tells so of its existence.
    bool existsAs(std::string const& path, std::string const& answer) const {
        return waitUntil([&] {
            std::vector<std::string> const cells = row(path);
            return cells.size() > ExistsColumn && cells[ExistsColumn] == answer;
        });
    }

    static constexpr std::size_t ExistsColumn = 2;

    std::unique_ptr<ServedFolder> m_volume{};
};

TEST_F(NeighboursOnAVolume, WhatIsUnderWayThereIsDoneAndTold) {
    std::string const path = pathOfCopy("volume");
    addToPlaces();
    startProgram();
    select(path);
    m_volume->stop();
    press("delete");
    ASSERT_TRUE(waitsForTheVolume());
    m_volume->goOn();
    EXPECT_TRUE(says("Moved to the trash."));
    EXPECT_FALSE(std::filesystem::exists(path));
    press("ctrl+z");
    EXPECT_TRUE(says("Put back."));
    EXPECT_TRUE(std::filesystem::exists(path));
    select(path);
    m_volume->stop();
    press("shift+delete");
    ASSERT_TRUE(waitsForTheVolume());
    m_volume->goOn();
    EXPECT_TRUE(existsAs(path, "No")) << "the places still name it";
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(NeighboursOnAVolume, AScanGoesOnElsewhereAndTheProgramEnds) {
    m_volume->stop();
    startProgram();
    EXPECT_TRUE(lists(pathOfCopy("Applications")));
    EXPECT_TRUE(lists(pathOfCopy("Documents/Übergabe für Anna")));
    select(pathOfCopy("Applications"));
    press("escape");
    EXPECT_TRUE(isDisabled("Stop", "No search is running"));
    ChildProcess quitting({OSA, "-e", "tell application id \"com.tidelark.framekeeper\" to quit"});
    EXPECT_EQ(quitting.wait(), 0);
    EXPECT_EQ(m_program->wait(), 0);
}

TEST_F(NeighboursOnAVolume, AListGoesOnWithoutTheCachesThere) {
    EnvironmentVariable const caches{"XDG_CACHE_HOME", m_home + "/volume/caches"};
    std::filesystem::create_directories(m_folder.path("served/caches"));
    std::string const first = outputOf({FRAMEKEEPER_CLI, "list"});
    EXPECT_TRUE(std::filesystem::exists(m_folder.path("served/caches/framekeeper")));
    // The check for leaks would stop every thread at the end of the command, and one of them waits for the server.
    EnvironmentVariable const checks{"ASAN_OPTIONS", "detect_stack_use_after_return=1:detect_leaks=0"};
    m_volume->stop();
    EXPECT_EQ(outputOf({FRAMEKEEPER_CLI, "list"}), first);
    EXPECT_NE(first.find(pathOfCopy("Applications")), std::string::npos);
}

TEST_F(NeighboursOnAVolume, ACopyOfThePlacesThereHoldsNothingUpAndIsLookedAtLater) {
    std::string const path = pathOfCopy("volume");
    addToPlaces();
    m_volume->stop();
    startProgram();
    ASSERT_TRUE(existsAs(path, "No"));
    EXPECT_TRUE(says("No answer yet from “" + path + "”."));
    select(path);
    EXPECT_TRUE(isDisabled("Put Back", "Not in the trash"));
    press("f5");
    EXPECT_TRUE(lists(pathOfCopy("Applications")));
    m_volume->goOn();
    EXPECT_TRUE(existsAs(path, "Yes"));
}

TEST_F(NeighboursOnAVolume, ACopyOfThePlacesIsSelectedAndSearchedForOnceTheVolumeHasStopped) {
    std::string const path = pathOfCopy("volume");
    addToPlaces();
    startProgram();
    ASSERT_TRUE(existsAs(path, "Yes"));
    m_volume->stop();
    select(path);
    select(pathOfCopy("Applications"));
    press("f5");
    EXPECT_TRUE(existsAs(path, "No"));
    EXPECT_TRUE(lists(pathOfCopy("Applications")));
    m_volume->goOn();
    EXPECT_TRUE(existsAs(path, "Yes"));
}

} // namespace
} // namespace framekeeper::test
