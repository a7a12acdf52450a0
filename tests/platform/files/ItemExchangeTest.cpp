#include "platform/files/ItemExchange.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/references/CatalogInformation.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/system/items/ItemLock.h"
#include "tests/platform/files/references/References.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Failures.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {
namespace {

OpenItem open(std::string const& path) { return openItemAtPath(path, LinkAtEnd::IsNotFollowed).takeValue(); }

std::string resourcesOf(std::string const& path) {
    std::array<char, 100> bytes{};
    ssize_t const size = getxattr(path.c_str(), XATTR_RESOURCEFORK_NAME, bytes.data(), bytes.size(), 0, 0);
    return size < 0 ? "-" : std::string(bytes.data(), static_cast<std::size_t>(size));
}

// All that can be seen of a file, to be compared.
struct Seen {
    std::string contents{};
    std::string resources{};
    UTCDateTime modified{};
    UTCDateTime created{};
    std::uint16_t flags{0};

    bool operator==(Seen const&) const = default;
};

Seen seen(std::string const& path) {
    FSRef const ref = referenceTo(path, LinkAtEnd::IsNotFollowed);
    FSCatalogInfo information;
    FSCatalogInfoBitmap const which = kFSCatInfoContentMod | kFSCatInfoCreateDate | kFSCatInfoFinderInfo;
    EXPECT_EQ(FSGetCatalogInfo(&ref, which, &information, nullptr, nullptr, nullptr), noErr);
    return {textOf(path), resourcesOf(path), information.contentModDate, information.createDate,
            finderInformationOf(information).finderFlags()};
}

class ItemExchange : public PrivateMounts {
protected:
    void SetUp() override {}

    // Two files that differ in all that can be seen.
    void makeFiles(std::string const& folder) {
        m_first = m_folder.makeFile(folder + "/first", "one");
        m_second = m_folder.makeFile(folder + "/below/second", "the other");
        make(m_first, 0x0400, 100, "resources");
        make(m_second, 0x4000, 200, "");
    }
    void make(std::string const& path, std::uint16_t flags, std::uint32_t date, std::string_view resources) const {
        FSRef const ref = referenceTo(path, LinkAtEnd::IsNotFollowed);
        FSCatalogInfo information;
        FinderInformation finder;
        finder.setFinderFlags(flags);
        setFinderInformation(information, finder);
        information.contentModDate.lowSeconds = 3'000'000'000 + date;
        ASSERT_EQ(FSSetCatalogInfo(&ref, kFSCatInfoFinderInfo | kFSCatInfoContentMod, &information), noErr);
        if (resources.empty()) return;
        ASSERT_EQ(setxattr(path.c_str(), XATTR_RESOURCEFORK_NAME, resources.data(), resources.size(), 0, 0), 0);
    }
    // Contents, resources and modification dates have changed places, the rest has not.
    void expectExchanged(Seen const& first, Seen const& second) const {
        EXPECT_EQ(seen(m_first),
                  (Seen{second.contents, second.resources, second.modified, first.created, first.flags}));
        EXPECT_EQ(seen(m_second),
                  (Seen{first.contents, first.resources, first.modified, second.created, second.flags}));
    }

    TemporaryFolder const m_folder{};
    std::string m_first{};
    std::string m_second{};
};

TEST_F(ItemExchange, ExchangesWhatFilesHold) {
    makeFiles("files");
    Seen const first = seen(m_first);
    Seen const second = seen(m_second);
    EXPECT_TRUE(exchangeItems(open(m_first), open(m_second)).isDone());
    expectExchanged(first, second);
    EXPECT_TRUE(exchangeItems(open(m_first), open(m_second)).isDone());
    EXPECT_EQ(seen(m_first), first);
    EXPECT_EQ(seen(m_second), second);
}

TEST_F(ItemExchange, LeavesReferencesWithTheirPaths) {
    makeFiles("files");
    FSRef const first = referenceTo(m_first, LinkAtEnd::IsNotFollowed);
    FSRef const second = referenceTo(m_second, LinkAtEnd::IsNotFollowed);
    EXPECT_EQ(FSExchangeObjects(&first, &second), noErr);
    EXPECT_EQ(textOf(m_first), "the other");
    EXPECT_EQ(pathOf(first), m_first);
    EXPECT_EQ(pathOf(second), m_second);
    EXPECT_EQ(referenceTo(m_first, LinkAtEnd::IsNotFollowed), first);
    EXPECT_EQ(referenceTo(m_second, LinkAtEnd::IsNotFollowed), second);
    // The references go on following their items.
    ASSERT_EQ(::rename(m_first.c_str(), m_folder.path("moved").c_str()), 0);
    EXPECT_EQ(pathOf(first), m_folder.path("moved"));
    EXPECT_EQ(referenceTo(m_folder.path("moved"), LinkAtEnd::IsNotFollowed), first);
    // A third file takes part.
    FSRef const third = referenceTo(m_folder.makeFile("third", "3"), LinkAtEnd::IsNotFollowed);
    EXPECT_EQ(FSExchangeObjects(&first, &third), noErr);
    EXPECT_EQ(pathOf(first), m_folder.path("moved"));
    EXPECT_EQ(pathOf(third), m_folder.path("third"));
    EXPECT_EQ(textOf(m_folder.path("third")), "the other");
    EXPECT_EQ(FSExchangeObjects(&first, &third), noErr);
    EXPECT_EQ(FSExchangeObjects(&first, &second), noErr);
    EXPECT_EQ(textOf(m_folder.path("moved")), "one");
    EXPECT_EQ(pathOf(second), m_second);
}

TEST_F(ItemExchange, ExchangesLinksThemselves) {
    makeFiles("files");
    std::string const link = m_folder.path("link");
    ASSERT_EQ(::symlink("nowhere", link.c_str()), 0);
    EXPECT_TRUE(exchangeItems(open(m_first), open(link)).isDone());
    EXPECT_EQ(textOf(link), "one");
    std::array<char, 20> text{};
    EXPECT_EQ(::readlink(m_first.c_str(), text.data(), text.size()), 7);
    EXPECT_TRUE(exchangeItems(open(m_first), open(link)).isDone());
    EXPECT_EQ(textOf(m_first), "one");
}

TEST_F(ItemExchange, RefusesWhatCannotBeExchanged) {
    makeFiles("files");
    std::string const folder = m_folder.makeFolder("folder");
    FSRef const file = referenceTo(m_first, LinkAtEnd::IsNotFollowed);
    FSRef const other = referenceTo(folder, LinkAtEnd::IsNotFollowed);
    FSRef const none{};
    EXPECT_EQ(FSExchangeObjects(&file, &file), sameFileErr);
    EXPECT_EQ(FSExchangeObjects(&file, &other), notAFileErr);
    EXPECT_EQ(FSExchangeObjects(&other, &file), notAFileErr);
    EXPECT_EQ(FSExchangeObjects(&file, &none), errFSBadFSRef);
    EXPECT_EQ(FSExchangeObjects(&none, &file), errFSBadFSRef);
    EXPECT_EQ(FSExchangeObjects(nullptr, &file), paramErr);
    EXPECT_EQ(FSExchangeObjects(&file, nullptr), paramErr);
    ASSERT_EQ(::link(m_second.c_str(), m_folder.path("another name").c_str()), 0);
    FSRef const second = referenceTo(m_second, LinkAtEnd::IsNotFollowed);
    EXPECT_EQ(FSExchangeObjects(&file, &second), notAFileErr);
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(exchangeItems(open(m_first), open(m_folder.path("pipe"))).problem().code, EINVAL);
    EXPECT_EQ(textOf(m_first), "one");
    EXPECT_EQ(textOf(m_second), "the other");
}

TEST_F(ItemExchange, IsRefusedWhereTheFileSystemCannot) {
    makeFiles("files");
    Seen const first = seen(m_first);
    Seen const second = seen(m_second);
    FSRef const file = referenceTo(m_first, LinkAtEnd::IsNotFollowed);
    FSRef const other = referenceTo(m_second, LinkAtEnd::IsNotFollowed);
    withRefusedCall(SYS_renameat2, EINVAL,
                    [&] { EXPECT_EQ(FSExchangeObjects(&file, &other), errFSOperationNotSupported); });
    EXPECT_EQ(seen(m_first), first);
    EXPECT_EQ(seen(m_second), second);
    EXPECT_EQ(pathOf(file), m_first);
}

// Attributes cannot be written any more once the files have changed names.
TEST_F(ItemExchange, IsTakenBackIfWhatStaysCannotBeWritten) {
    makeFiles("files");
    Seen const first = seen(m_first);
    Seen const second = seen(m_second);
    withRefusedCall(SYS_setxattr, EACCES,
                    [&] { EXPECT_EQ(exchangeItems(open(m_first), open(m_second)).problem().code, EACCES); });
    EXPECT_EQ(seen(m_first), first);
    EXPECT_EQ(seen(m_second), second);
}

TEST_F(ItemExchange, TakesEveryStepBack) {
    makeFiles("files");
    Seen const first = seen(m_first);
    Seen const second = seen(m_second);
    FSRef const reference = referenceTo(m_first, LinkAtEnd::IsNotFollowed);
    for (ExchangeStep const failing : {ExchangeStep::Exchanged, ExchangeStep::SidecarsFollowed}) {
        Result<void> const done = exchangeItems(open(m_first), open(m_second), [&](ExchangeStep step) {
            return step == failing ? Result<void>(SystemError{.code = EIO}) : Result<void>();
        });
        EXPECT_EQ(done.problem().code, EIO);
        EXPECT_EQ(seen(m_first), first);
        EXPECT_EQ(seen(m_second), second);
        EXPECT_EQ(pathOf(reference), m_first);
    }
}

TEST_F(ItemExchange, LeavesAnItemAloneThatHasTakenTheName) {
    makeFiles("files");
    OpenItem const first = open(m_first);
    m_folder.makeFile("replacement", "a third");
    ASSERT_EQ(::rename(m_folder.path("replacement").c_str(), m_first.c_str()), 0);
    EXPECT_EQ(exchangeItems(first, open(m_second)).problem().code, ESTALE);
    EXPECT_EQ(textOf(m_first), "a third");
    EXPECT_EQ(textOf(m_second), "the other");
}

TEST_F(ItemExchange, LeavesLockedFilesAlone) {
    makeFiles("files");
    for (std::string const& locked : {m_first, m_second}) {
        ASSERT_TRUE(setLock(open(locked), ItemLock::Locked).isDone());
        EXPECT_EQ(exchangeItems(open(m_first), open(m_second)).problem().code, ItemIsLocked);
        ASSERT_TRUE(setLock(open(locked), ItemLock::Unlocked).isDone());
    }
    EXPECT_EQ(textOf(m_first), "one");
    EXPECT_EQ(textOf(m_second), "the other");
}

// An item that takes a name between the exchange and its end is not moved to the other name.
TEST_F(ItemExchange, TakesNothingBackWhereAnotherItemHasTakenTheName) {
    for (bool const isFirst : {true, false}) {
        makeFiles("files");
        std::string const& taken = isFirst ? m_first : m_second;
        Result<void> const done = exchangeItems(open(m_first), open(m_second), [&](ExchangeStep) {
            m_folder.makeFile("replacement", "a third");
            EXPECT_EQ(::rename(m_folder.path("replacement").c_str(), taken.c_str()), 0);
            return Result<void>(SystemError{.code = EIO});
        });
        EXPECT_EQ(done.problem().code, ESTALE);
        EXPECT_STREQ(done.problem().operation, "exchange back");
        EXPECT_EQ(done.problem().item, "first");
        EXPECT_EQ(textOf(taken), "a third");
        EXPECT_EQ(textOf(isFirst ? m_second : m_first), isFirst ? "one" : "the other");
    }
}

// A file system without attributes, where sidecars hold them.
TEST_F(ItemExchange, TakesSidecarsAlong) {
    PrivateMounts::SetUp();
    if (IsSkipped()) return;
    mountWithoutAttributes(m_folder.makeFolder("plain"));
    makeFiles("plain");
    Seen const first = seen(m_first);
    Seen const second = seen(m_second);
    ASSERT_EQ(first.resources, "resources");
    EXPECT_TRUE(exchangeItems(open(m_first), open(m_second)).isDone());
    EXPECT_EQ(seen(m_second).resources, "resources");
    EXPECT_EQ(seen(m_second).flags, second.flags);
    EXPECT_EQ(seen(m_first).contents, "the other");
    EXPECT_EQ(seen(m_first).flags, first.flags);
    for (ExchangeStep const failing : {ExchangeStep::Exchanged, ExchangeStep::SidecarsFollowed}) {
        Seen const before = seen(m_first);
        Seen const otherBefore = seen(m_second);
        Result<void> const done = exchangeItems(open(m_first), open(m_second), [&](ExchangeStep step) {
            return step == failing ? Result<void>(SystemError{.code = EIO}) : Result<void>();
        });
        EXPECT_EQ(done.problem().code, EIO);
        EXPECT_EQ(seen(m_first), before);
        EXPECT_EQ(seen(m_second), otherBefore);
    }
}

TEST_F(ItemExchange, RefusesTwoVolumes) {
    PrivateMounts::SetUp();
    if (IsSkipped()) return;
    makeFiles("files");
    mountMemory(m_folder.makeFolder("volume"));
    FSRef const first = referenceTo(m_first, LinkAtEnd::IsNotFollowed);
    FSRef const other = referenceTo(m_folder.makeFile("volume/file", "elsewhere"), LinkAtEnd::IsNotFollowed);
    EXPECT_EQ(FSExchangeObjects(&first, &other), diffVolErr);
    EXPECT_EQ(textOf(m_first), "one");
}

} // namespace
} // namespace mac::test
