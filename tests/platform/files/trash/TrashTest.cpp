#include "tests/platform/files/trash/TrashHome.h"
#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <regex>
#include <sys/resource.h>
#include <thread>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

std::optional<TrashProblem::Kind> problemOf(std::string_view path) {
    Result<TrashedItem, TrashProblem> const result = moveToTrash(path);
    if (result.hasValue()) return std::nullopt;
    EXPECT_FALSE(result.problem().text().empty());
    return result.problem().kind;
}

std::optional<mode_t> permissionsOf(std::string const& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(status.st_mode & 07777U) : std::nullopt;
}

class Trash : public testing::Test {
protected:
    TrashHome const m_home{};
};

TEST_F(Trash, TakesAFileAndSaysWhereItCameFrom) {
    EnvironmentVariable const zone("TZ", "UTC");
    ::tzset();
    std::string const file = m_home.folder.makeFile("a/letter 100%.txt", "Dear Anna");
    std::int64_t const before = ::time(nullptr);
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file);
    ASSERT_TRUE(result.hasValue()) << result.problem().text();
    TrashedItem const& item = result.value();
    EXPECT_EQ(item.path, m_home.files("letter 100%.txt"));
    EXPECT_EQ(item.originalPath, file);
    EXPECT_FALSE(item.isFolder);
    EXPECT_GE(item.deletionTime, before);
    EXPECT_LE(item.deletionTime, ::time(nullptr));
    EXPECT_FALSE(isThere(file));
    EXPECT_EQ(textOf(item.path), "Dear Anna");
    std::string const text = textOf(m_home.information("letter 100%.txt.trashinfo"));
    std::regex const form("\\[Trash Info\\]\nPath=/.*/a/letter%20100%25\\.txt\n"
                          "DeletionDate=\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\n");
    EXPECT_TRUE(std::regex_match(text, form)) << text;
}

TEST_F(Trash, IsMadeForItsOwnerAlone) {
    ASSERT_TRUE(moveToTrash(m_home.folder.makeFile("a", "")).hasValue());
    for (std::string const& folder :
         {m_home.path("data"), m_home.path("data/Trash"), m_home.files(), m_home.information()})
        EXPECT_EQ(permissionsOf(folder), 0700U) << folder;
    EXPECT_EQ(permissionsOf(m_home.information("a.trashinfo")), 0600U);
}

TEST_F(Trash, IsMadeForItsOwnerWhateverTheUmaskWithholds) {
    std::string const file = m_home.folder.makeFile("a", "");
    mode_t const usual = ::umask(0777);
    bool const isMoved = moveToTrash(file).hasValue();
    ::umask(usual);
    ASSERT_TRUE(isMoved);
    for (std::string const& folder :
         {m_home.path("data"), m_home.path("data/Trash"), m_home.files(), m_home.information()})
        EXPECT_EQ(permissionsOf(folder), 0700U) << folder;
    EXPECT_EQ(permissionsOf(m_home.information("a.trashinfo")), 0600U);
}

TEST_F(Trash, TakesFoldersLinksAndPipes) {
    m_home.folder.makeFile("folder.app/Contents/Info.plist", "x");
    ASSERT_EQ(::symlink("folder.app", m_home.path("link").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", m_home.path("dangling").c_str()), 0);
    ASSERT_EQ(::mkfifo(m_home.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(problemOf(m_home.path("pipe")), std::nullopt);
    EXPECT_EQ(problemOf(m_home.path("dangling")), std::nullopt);
    // With the slash, too, it is the link that goes.
    EXPECT_EQ(problemOf(m_home.path("link/")), std::nullopt);
    EXPECT_TRUE(isThere(m_home.path("folder.app/Contents")));
    Result<TrashedItem, TrashProblem> const folder = moveToTrash(m_home.path("folder.app//"));
    ASSERT_TRUE(folder.hasValue());
    EXPECT_TRUE(folder.value().isFolder);
    EXPECT_EQ(namesIn(m_home.files()), (Names{"dangling", "folder.app", "link", "pipe"}));
    EXPECT_EQ(textOf(m_home.files("folder.app/Contents/Info.plist")), "x");
}

TEST_F(Trash, KeepsTheBytesOfNames) {
    std::string const name = "\xE9t\xC3\xA9 \n\\%41;\x01";
    std::string const file = m_home.folder.makeFile("\xFF/" + name, "");
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file);
    ASSERT_TRUE(result.hasValue()) << result.problem().text();
    EXPECT_EQ(result.value().path, m_home.files(name));
    std::string const text = textOf(m_home.information(name + ".trashinfo"));
    EXPECT_NE(text.find("/%FF/%E9t%C3%A9%20%0A%5C%2541%3B%01\n"), std::string::npos) << text;
    std::vector<TrashedItem> const items = trashedItems();
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].originalPath, file);
}

TEST_F(Trash, WritesTheRealPlaceOfWhatIsReachedThroughLinks) {
    std::string const file = m_home.folder.makeFile("real/file", "");
    ASSERT_EQ(::symlink("real", m_home.path("way").c_str()), 0);
    Result<TrashedItem, TrashProblem> const result = moveToTrash(m_home.path("way/../way/./file"));
    ASSERT_TRUE(result.hasValue());
    EXPECT_EQ(result.value().originalPath, file);
}

TEST_F(Trash, NumbersNamesThatAreTaken) {
    std::regex const second(R"(note \d\d-\d\d-\d\d( \d)?\.txt)");
    for (int round = 0; round < 4; ++round) {
        Result<TrashedItem, TrashProblem> const result =
            moveToTrash(m_home.folder.makeFile("note.txt", std::to_string(round)));
        ASSERT_TRUE(result.hasValue());
        std::string const name = result.value().path.substr(m_home.files().size());
        EXPECT_TRUE(round == 0 ? name == "note.txt" : std::regex_match(name, second)) << name;
        EXPECT_EQ(textOf(result.value().path), std::to_string(round));
        EXPECT_TRUE(isThere(m_home.information(name + ".trashinfo")));
    }
    EXPECT_EQ(namesIn(m_home.files()).size(), 4U);
}

TEST_F(Trash, ReplacesNothingThatItDoesNotKnowOf) {
    m_home.folder.makeFile("data/Trash/files/a", "unknown");
    m_home.folder.makeFile("data/Trash/info/b.trashinfo", "[Trash Info]\nPath=/b\n");
    ASSERT_EQ(::chmod(m_home.path("data/Trash").c_str(), 0700), 0);
    EXPECT_EQ(problemOf(m_home.folder.makeFile("a", "new")), std::nullopt);
    EXPECT_EQ(problemOf(m_home.folder.makeFile("b", "new")), std::nullopt);
    EXPECT_EQ(textOf(m_home.files("a")), "unknown");
    EXPECT_FALSE(isThere(m_home.information("a.trashinfo")));
    EXPECT_EQ(textOf(m_home.information("b.trashinfo")), "[Trash Info]\nPath=/b\n");
    EXPECT_EQ(namesIn(m_home.files()).size(), 3U);
}

TEST_F(Trash, TakesNamesOfAnyLength) {
    for (std::size_t const length : {245, 246, 251, 255}) {
        std::string name(length - 4, 'x');
        name += ".txt";
        for (int round = 0; round < 2; ++round) {
            std::string const file = m_home.folder.makeFile("a/" + name, "");
            Result<TrashedItem, TrashProblem> const result = moveToTrash(file);
            ASSERT_TRUE(result.hasValue()) << length << result.problem().text();
            EXPECT_TRUE(result.value().path.ends_with(".txt"));
            EXPECT_TRUE(isThere(result.value().path));
            EXPECT_EQ(result.value().originalPath, file);
        }
    }
    EXPECT_EQ(namesIn(m_home.files()).size(), 8U);
    EXPECT_EQ(namesIn(m_home.information()).size(), 8U);
}

TEST_F(Trash, TakesPathsOfAnyLength) {
    std::string const component(200, 'd');
    std::string path = m_home.path("deep");
    ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 0; level < 30; ++level) {
        ASSERT_EQ(::mkdirat(folder.number(), component.c_str(), 0755), 0);
        folder = FileDescriptor(::openat(folder.number(), component.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        path += "/" + component;
    }
    FileDescriptor const file(::openat(folder.number(), "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    ASSERT_TRUE(file.isOpen());
    path += "/file";
    Result<TrashedItem, TrashProblem> const result = moveToTrash(path);
    ASSERT_TRUE(result.hasValue()) << result.problem().text();
    EXPECT_TRUE(result.value().originalPath == path);
    Result<std::string, TrashProblem> const back = putBack(result.value());
    ASSERT_TRUE(back.hasValue()) << back.problem().text();
    EXPECT_EQ(::faccessat(folder.number(), "file", F_OK, 0), 0);
    // The folder itself goes and is deleted, however deep it is.
    ASSERT_EQ(problemOf(m_home.path("deep")), std::nullopt);
    EXPECT_EQ(emptyTrash().removed, 1U);
    EXPECT_TRUE(namesIn(m_home.files()).empty());
}

TEST_F(Trash, TakesTheAppleDoubleFileAlong) {
    std::string const appleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);
    std::string const file = m_home.folder.makeFile("a/song.mp3", "la");
    m_home.folder.makeFile("a/._song.mp3", appleDouble);
    m_home.folder.makeFile("a/._other", appleDouble);
    Result<TrashedItem, TrashProblem> const result = moveToTrash(file);
    ASSERT_TRUE(result.hasValue());
    EXPECT_EQ(namesIn(m_home.path("a")), Names{"._other"});
    EXPECT_EQ(namesIn(m_home.files()), (Names{"._song.mp3", "song.mp3"}));
    EXPECT_EQ(namesIn(m_home.information()), (Names{"._song.mp3.trashinfo", "song.mp3.trashinfo"}));
    ASSERT_EQ(trashedItems().size(), 1U);
    EXPECT_EQ(trashedItems()[0].path, m_home.files("song.mp3"));
    // It keeps to its item under another name, too.
    m_home.folder.makeFile("a/song.mp3", "lala");
    m_home.folder.makeFile("a/._song.mp3", appleDouble);
    Result<TrashedItem, TrashProblem> const second = moveToTrash(file);
    ASSERT_TRUE(second.hasValue());
    std::string const name = second.value().path.substr(m_home.files().size());
    EXPECT_TRUE(isThere(m_home.files("._" + name)));
    ASSERT_TRUE(putBack(second.value()).hasValue());
    EXPECT_EQ(namesIn(m_home.path("a")), (Names{"._other", "._song.mp3", "song.mp3"}));
    EXPECT_EQ(textOf(file), "lala");
    EXPECT_EQ(namesIn(m_home.information()), (Names{"._song.mp3.trashinfo", "song.mp3.trashinfo"}));
    EXPECT_EQ(emptyTrash().removed, 1U);
    EXPECT_TRUE(namesIn(m_home.files()).empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(Trash, LeavesAFileThatOnlyHasTheNameOfAnAppleDoubleFile) {
    std::string const file = m_home.folder.makeFile("a/song", "la");
    m_home.folder.makeFile("a/._song", "somebody's notes");
    m_home.folder.makeFile("a/tune", "la");
    ASSERT_EQ(::mkfifo(m_home.path("a/._tune").c_str(), 0600), 0);
    EXPECT_EQ(problemOf(file), std::nullopt);
    EXPECT_EQ(problemOf(m_home.path("a/tune")), std::nullopt);
    EXPECT_EQ(namesIn(m_home.path("a")), (Names{"._song", "._tune"}));
}

TEST_F(Trash, WritesDownWhatFoldersTake) {
    m_home.folder.makeFile("my folder/a/file", std::string(100'000, 'x'));
    m_home.folder.makeFile("data/Trash/directorysizes", "10 20 gone\nrubbish\n");
    ASSERT_EQ(problemOf(m_home.path("my folder")), std::nullopt);
    std::string const text = textOf(m_home.path("data/Trash/directorysizes"));
    std::smatch match;
    ASSERT_TRUE(std::regex_match(text, match, std::regex("10 20 gone\n(\\d+) (\\d+) my%20folder\n"))) << text;
    EXPECT_GE(std::stoull(match[1]), 100'000U);
    EXPECT_LT(std::stoull(match[1]), 200'000U);
    struct stat status {};
    ASSERT_EQ(::stat(m_home.information("my folder.trashinfo").c_str(), &status), 0);
    EXPECT_EQ(std::stoll(match[2]), status.st_mtim.tv_sec);
    ASSERT_EQ(emptyTrash().removed, 1U);
    EXPECT_EQ(textOf(m_home.path("data/Trash/directorysizes")), "");
}

TEST_F(Trash, SaysThatThereIsNothing) {
    EXPECT_EQ(problemOf(m_home.path("none")), TrashProblem::NotThere);
    EXPECT_EQ(problemOf(m_home.folder.makeFile("file", "") + "/in"), TrashProblem::NotThere);
    EXPECT_EQ(problemOf(""), TrashProblem::NotThere);
    EXPECT_FALSE(isThere(m_home.path("data")));
}

TEST_F(Trash, LeavesTheRootItselfAndWhatHoldsItWhereTheyAre) {
    EXPECT_EQ(problemOf("/"), TrashProblem::Immovable);
    EXPECT_EQ(problemOf("/.."), TrashProblem::Immovable);
    // The trash would be made in that folder.
    m_home.folder.makeFolder("data");
    EXPECT_EQ(problemOf(m_home.path("data")), TrashProblem::Immovable);
    EXPECT_TRUE(namesIn(m_home.path("data")).empty());
    EXPECT_EQ(problemOf(m_home.folder.makeFile("a", "")), std::nullopt);
    EXPECT_EQ(problemOf(m_home.path()), TrashProblem::Immovable);
    EXPECT_EQ(problemOf(m_home.path("data")), TrashProblem::Immovable);
    EXPECT_EQ(problemOf(m_home.path("data/Trash")), TrashProblem::Immovable);
    EXPECT_EQ(problemOf(m_home.files()), TrashProblem::Immovable);
    EXPECT_EQ(problemOf(m_home.information()), TrashProblem::Immovable);
    EXPECT_EQ(problemOf(m_home.files("a")), TrashProblem::InTrash);
    m_home.folder.makeFile("folder/a/b", "");
    ASSERT_EQ(problemOf(m_home.path("folder")), std::nullopt);
    EXPECT_EQ(problemOf(m_home.files("folder/a/b")), TrashProblem::InTrash);
    ASSERT_EQ(::symlink(m_home.files("folder").c_str(), m_home.path("way in").c_str()), 0);
    EXPECT_EQ(problemOf(m_home.path("way in/a")), TrashProblem::InTrash);
    EXPECT_EQ(problemOf(m_home.information("a.trashinfo")), TrashProblem::InTrash);
    EXPECT_EQ(namesIn(m_home.files()), (Names{"a", "folder"}));
}

TEST_F(Trash, TellsItsFolder) {
    m_home.folder.makeFile("a", "");
    EXPECT_EQ(trashFolderOf(m_home.path("a"), MissingTrash::IsMissing), "");
    EXPECT_EQ(trashFolderOf(m_home.path("none"), MissingTrash::IsMade), "");
    EXPECT_FALSE(isThere(m_home.path("data")));
    EXPECT_EQ(trashFolderOf(m_home.path("a"), MissingTrash::IsMade), m_home.path("data/Trash/files"));
    EXPECT_EQ(trashFolderOf(m_home.path(), MissingTrash::IsMissing), m_home.path("data/Trash/files"));
}

TEST_F(Trash, FollowsNoLinkThatStandsForAPartOfIt) {
    m_home.folder.makeFolder("data/Trash/info");
    m_home.folder.makeFolder("elsewhere");
    ASSERT_EQ(::symlink(m_home.path("elsewhere").c_str(), m_home.path("data/Trash/files").c_str()), 0);
    EXPECT_EQ(problemOf(m_home.folder.makeFile("a", "")), TrashProblem::NoTrash);
    EXPECT_TRUE(isThere(m_home.path("a")));
    EXPECT_TRUE(namesIn(m_home.path("elsewhere")).empty());
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(Trash, IsNotUsedWhereItIsAFile) {
    m_home.folder.makeFile("data/Trash", "");
    EXPECT_EQ(problemOf(m_home.folder.makeFile("a", "")), TrashProblem::NoTrash);
    EXPECT_TRUE(isThere(m_home.path("a")));
}

TEST_F(Trash, TakesTheOpenItemAndNoOther) {
    std::string const file = m_home.folder.makeFile("a", "first");
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
    ASSERT_EQ(::rename(file.c_str(), m_home.path("moved").c_str()), 0);
    Result<TrashedItem, TrashProblem> const gone = moveToTrash(item.value());
    ASSERT_FALSE(gone.hasValue());
    EXPECT_EQ(gone.problem().kind, TrashProblem::NotThere);
    m_home.folder.makeFile("a", "second");
    Result<TrashedItem, TrashProblem> const other = moveToTrash(item.value());
    ASSERT_FALSE(other.hasValue());
    EXPECT_EQ(other.problem().kind, TrashProblem::Changed);
    EXPECT_EQ(textOf(file), "second");
    EXPECT_TRUE(namesIn(m_home.information()).empty());
}

TEST_F(Trash, TakesAnItemWholeOrNotAtAllWhenDescriptorsRunOut) {
    ASSERT_EQ(problemOf(m_home.folder.makeFile("first", "")), std::nullopt);
    std::string const file = m_home.folder.makeFile("file", "x");
    rlimit usual{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    rlim_t const next = static_cast<rlim_t>(FileDescriptor(::open("/", O_PATH | O_CLOEXEC)).number());
    bool isTrashed = false;
    for (rlim_t count = 0; !isTrashed && count < 40; ++count) {
        rlimit const scarce{next + count, usual.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &scarce), 0);
        isTrashed = moveToTrash(file).hasValue();
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
        EXPECT_NE(isThere(file), isTrashed) << count;
        EXPECT_EQ(isThere(m_home.files("file")), isTrashed) << count;
        EXPECT_EQ(isThere(m_home.information("file.trashinfo")), isTrashed) << count;
        EXPECT_FALSE(isThere("/.Trash-" + std::to_string(::geteuid()) + "/files/file"));
    }
    EXPECT_TRUE(isTrashed);
}

TEST_F(Trash, TakesFromManyThreadsAtOnce) {
    constexpr int perThread = 20;
    std::vector<std::thread> threads;
    std::atomic<int> moved = 0;
    for (int thread = 0; thread < 4; ++thread) {
        for (int file = 0; file < perThread; ++file)
            m_home.folder.makeFile(std::to_string(thread) + "/" + std::to_string(file) + "/same.txt", "");
        threads.emplace_back([this, thread, &moved] {
            for (int file = 0; file < perThread; ++file)
                moved += moveToTrash(m_home.path(std::to_string(thread) + "/" + std::to_string(file) + "/same.txt"))
                             .hasValue();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(moved, 4 * perThread);
    EXPECT_EQ(namesIn(m_home.files()).size(), 4U * perThread);
    EXPECT_EQ(namesIn(m_home.information()).size(), 4U * perThread);
}

} // namespace
} // namespace mac::test
