#include "platform/spotlight/NSMetadataQuery.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/Log.h"
#include "tests/platform/spotlight/MetadataQuery.h"
#include "tests/support/OrdinaryUser.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

TEST_F(MetadataQuery, PostsStartThenProgressThenTheEnd) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gather());
    EXPECT_EQ(names(), (std::vector<std::string>{NSMetadataQueryDidStartGatheringNotification,
                                                 NSMetadataQueryGatheringProgressNotification,
                                                 NSMetadataQueryDidFinishGatheringNotification}));
    EXPECT_EQ(bodyOf(recorder)->counts, (std::vector<NSUInteger>{0, 1, 1}));
}

TEST_F(MetadataQuery, PostsNothingBeforeControlReturnsToTheRunLoop) {
    ASSERT_TRUE(query.startQuery());
    EXPECT_TRUE(names().empty());
    EXPECT_TRUE(query.isGathering());
}

TEST_F(MetadataQuery, OfAnEmptyDiskPostsNoProgress) {
    ASSERT_TRUE(gather());
    EXPECT_EQ(names(), (std::vector<std::string>{NSMetadataQueryDidStartGatheringNotification,
                                                 NSMetadataQueryDidFinishGatheringNotification}));
}

TEST_F(MetadataQuery, TellsEveryFindAsProgressBeforeTheEnd) {
    for (int index = 0; index < 300; ++index)
        folder.makeFolder(std::to_string(index) + "/Mirror Frame.app");
    ASSERT_TRUE(gather());
    ASSERT_GE(names().size(), 3U);
    EXPECT_EQ(names()[names().size() - 2], NSMetadataQueryGatheringProgressNotification);
    EXPECT_EQ(bodyOf(recorder)->counts[names().size() - 2], 300U);
}

TEST_F(MetadataQuery, FindsFoldersOfTheNameOnly) {
    folder.makeFolder("a/Mirror Frame.app");
    folder.makeFolder("b/Mirror Frame 2.app");
    folder.makeFolder("c/mirror frame.app");
    folder.makeFile("d/Mirror Frame.app", "a file");
    ::symlink(folder.path("a/Mirror Frame.app").c_str(), folder.path("Mirror Frame.app").c_str());
    ASSERT_TRUE(gather());
    EXPECT_TRUE(foundPaths().isEqualToSet_(NSSet::setWithObject_(string(folder.path("a/Mirror Frame.app")))));
}

TEST_F(MetadataQuery, FindsWhatItsPredicateSaysWhateverThatIs) {
    folder.makeFolder("a/One.app");
    folder.makeFolder("b/Two.app");
    folder.makeFolder("c/Three.app");
    query.setPredicate_(NSPredicate::predicateWithFormat_(
        "kMDItemFSName IN {'One.app', 'Two.app'} OR kMDItemPath ENDSWITH '/c/Three.app'"));
    ASSERT_TRUE(gather());
    EXPECT_EQ(query.resultCount(), 3U);
    query.stopQuery();
    query.setPredicate_(
        NSPredicate::predicateWithFormat_("kMDItemKind = 'Application' AND NOT kMDItemFSName = 'One.app'"));
    ASSERT_TRUE(query.startQuery());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidFinishGatheringNotification, 2));
    EXPECT_EQ(query.resultCount(), 2U);
}

TEST_F(MetadataQuery, FindsApplicationsOnly) {
    folder.makeFolder("a/Mirror Frame.app");
    query.setPredicate_(NSPredicate::predicateWithFormat_("kMDItemKind = 'Document'"));
    ASSERT_TRUE(gather());
    EXPECT_EQ(query.resultCount(), 0U);
}

TEST_F(MetadataQuery, SearchesTheFoldersOfItsScopes) {
    folder.makeFolder("a/Mirror Frame.app");
    folder.makeFolder("b/Mirror Frame.app");
    query.setSearchScopes_(NSArray::arrayWithObject_(string(folder.path("b"))));
    ASSERT_TRUE(gather());
    EXPECT_TRUE(foundPaths().isEqualToSet_(NSSet::setWithObject_(string(folder.path("b/Mirror Frame.app")))));
}

TEST_F(MetadataQuery, RefusesToStartWithoutAPredicateOrAPlaceOrTwice) {
    query.setPredicate_(nil);
    EXPECT_FALSE(query.startQuery());
    query.setPredicate_(NSPredicate::predicateWithValue_(YES));
    query.setSearchScopes_(NSArray::array());
    EXPECT_FALSE(query.startQuery());
    query.setSearchScopes_(NSArray::arrayWithObject_(NSMetadataQueryLocalComputerScope));
    EXPECT_TRUE(query.startQuery());
    EXPECT_FALSE(query.startQuery());
}

TEST_F(MetadataQuery, StoppedKeepsItsResultsAndPostsNothingMore) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(query.startQuery());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryGatheringProgressNotification));
    query.stopQuery();
    std::size_t const posted = names().size();
    folder.makeFolder("a/b/Mirror Frame.app");
    runForAMoment();
    EXPECT_EQ(names().size(), posted);
    EXPECT_EQ(query.resultCount(), 1U);
    EXPECT_TRUE(query.isStopped());
    EXPECT_FALSE(query.isGathering());
}

TEST_F(MetadataQuery, StoppedBeforeItsStartWasToldPostsNothing) {
    ASSERT_TRUE(query.startQuery());
    query.stopQuery();
    runForAMoment();
    EXPECT_TRUE(names().empty());
}

TEST_F(MetadataQuery, RestartedForgetsItsResults) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gather());
    query.stopQuery();
    ::rmdir(folder.path("a/Mirror Frame.app").c_str());
    ASSERT_TRUE(query.startQuery());
    EXPECT_EQ(query.resultCount(), 0U);
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidFinishGatheringNotification, 2));
    EXPECT_EQ(query.resultCount(), 0U);
}

TEST_F(MetadataQuery, NoticesACopyThatGoesAndOneThatComesBesideAnother) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gather());
    ::rename(folder.path("a/Mirror Frame.app").c_str(), folder.path("a/Other").c_str());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidUpdateNotification));
    EXPECT_EQ(query.resultCount(), 0U);
    ::rename(folder.path("a/Other").c_str(), folder.path("a/Mirror Frame.app").c_str());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidUpdateNotification, 2));
    EXPECT_EQ(query.resultCount(), 1U);
}

TEST_F(MetadataQuery, NoticesThatTheFolderOfACopyIsMoved) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gather());
    ::rename(folder.path("a").c_str(), folder.path("b").c_str());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidUpdateNotification));
    EXPECT_EQ(query.resultCount(), 0U);
}

TEST_F(MetadataQuery, KeepsItsResultsWhileUpdatesAreDisabled) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gather());
    query.disableUpdates();
    ::rename(folder.path("a").c_str(), folder.path("b").c_str());
    runForAMoment();
    EXPECT_EQ(query.resultCount(), 1U);
    query.enableUpdates();
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidUpdateNotification));
    EXPECT_EQ(query.resultCount(), 0U);
}

TEST_F(MetadataQuery, CountsTheFoldersThatItCannotReadAndNamesOne) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    query.addObserver_forKeyPath_options_context_(recorder, "unreadableFolderCount", 0, nullptr);
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.path("gone").c_str(), 1);
    ASSERT_TRUE(gather());
    EXPECT_EQ(query.unreadableFolderCount(), 1U);
    ASSERT_EQ(query.unreadableFolders().count(), 1U);
    id const unreadable = query.unreadableFolders().objectAtIndex_(0);
    EXPECT_FALSE(as<NSString>(unreadable.valueForKey_("path")).length() == 0);
    EXPECT_FALSE(as<NSString>(unreadable.valueForKey_("reason")).length() == 0);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find(folder.path("gone")), std::string::npos);
    EXPECT_FALSE(bodyOf(recorder)->changedKeys.empty());
}

TEST_F(MetadataQuery, NamesAPackageWhoseContentsMayNotBeSearched) {
    std::string const contents = folder.makeFolder("a/Mirror Frame.app/Contents");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(contents.c_str(), 0), 0);
    {
        OrdinaryUser const user;
        ASSERT_TRUE(gather());
    }
    EXPECT_EQ(query.resultCount(), 1U);
    EXPECT_EQ(query.unreadableFolderCount(), 1U);
    ASSERT_EQ(query.unreadableFolders().count(), 1U);
    id const unreadable = query.unreadableFolders().objectAtIndex_(0);
    EXPECT_TRUE(unreadable.valueForKey_("path").isEqual_(string(contents)));
}

TEST_F(MetadataQuery, TellsObserversWhenItBeginsAndEndsToGather) {
    query.addObserver_forKeyPath_options_context_(recorder, "isGathering", 0, nullptr);
    ASSERT_TRUE(gather());
    EXPECT_EQ(bodyOf(recorder)->changedKeys, (std::vector<std::string>{"isGathering", "isGathering"}));
    EXPECT_FALSE(query.isGathering());
    EXPECT_TRUE(query.isStarted());
}

TEST_F(MetadataQuery, GivesItsResultsByIndex) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(gather());
    NSMetadataItem const item = query.resultAtIndex_(0);
    EXPECT_EQ(query.indexOfResult_(item), 0U);
    EXPECT_EQ(item.valueForAttribute_(kMDItemKind).description().UTF8String(), "Application");
    EXPECT_EQ(item.valueForAttribute_(kMDItemFSName).description().UTF8String(), "Mirror Frame.app");
    EXPECT_TRUE(item.valueForAttribute_("kMDItemAuthors") == nil);
    EXPECT_EQ(item.attributes().count(), 3U);
    EXPECT_THROW(query.resultAtIndex_(1), NSRangeException);
}

TEST_F(MetadataQuery, NoticesThatAFolderFurtherUpIsMoved) {
    folder.makeFolder("a/b/c/Mirror Frame.app");
    ASSERT_TRUE(gather());
    ::rename(folder.path("a").c_str(), folder.path("z").c_str());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidUpdateNotification));
    EXPECT_EQ(query.resultCount(), 0U);
}

TEST_F(MetadataQuery, NoticesWhatHappensBetweenAFindAndItsTelling) {
    folder.makeFolder("a/Mirror Frame.app");
    folder.makeFolder("b/Mirror Frame.app");
    query.disableUpdates();
    ASSERT_TRUE(query.startQuery());
    runForAMoment();
    ::rmdir(folder.path("a/Mirror Frame.app").c_str());
    query.enableUpdates();
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidFinishGatheringNotification));
    EXPECT_TRUE(runUntil([&] { return query.resultCount() == 1; }));
    EXPECT_TRUE(foundPaths().isEqualToSet_(NSSet::setWithObject_(string(folder.path("b/Mirror Frame.app")))));
}

TEST_F(MetadataQuery, KeepsToItsScopesWhenItNoticesChanges) {
    folder.makeFolder("a/Mirror Frame.app");
    query.setPredicate_(NSPredicate::predicateWithFormat_("kMDItemKind = 'Application'"));
    query.setSearchScopes_(NSArray::arrayWithObject_(string(folder.path("a/Mirror Frame.app/"))));
    ASSERT_TRUE(gather());
    EXPECT_EQ(query.resultCount(), 1U);
    folder.makeFolder("a/Outside.app");
    ::rmdir(folder.path("a/Mirror Frame.app").c_str());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidUpdateNotification));
    EXPECT_EQ(query.resultCount(), 0U);
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidUpdateNotification, 2));
    EXPECT_EQ(query.resultCount(), 1U);
}

TEST_F(MetadataQuery, MayBeStoppedByAnObserverOfItsEnd) {
    for (NSString const& key : {NSString("isGathering"), NSString("unreadableFolderCount")}) {
        ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.path("gone").c_str(), 1);
        query.addObserver_forKeyPath_options_context_(recorder, key, 0, nullptr);
        ASSERT_TRUE(query.startQuery());
        bodyOf(recorder)->onChange = [&] { query.stopQuery(); };
        ASSERT_TRUE(runUntil([&] { return !query.isGathering(); }));
        runForAMoment();
        EXPECT_TRUE(query.isStopped()) << key.UTF8String();
        EXPECT_EQ(names(), std::vector<std::string>{NSMetadataQueryDidStartGatheringNotification}) << key.UTF8String();
        bodyOf(recorder)->onChange = nullptr;
        bodyOf(recorder)->names.clear();
        query.removeObserver_forKeyPath_(recorder, key);
    }
}

TEST_F(MetadataQuery, MayBeRestartedByAnObserverOfItsProgress) {
    folder.makeFolder("a/Mirror Frame.app");
    // Nothing is remembered of a part of the computer, so that the second search finds the copy by progress, too.
    query.setSearchScopes_(NSArray::arrayWithObject_(string(folder.path())));
    bodyOf(recorder)->onNotification = [&](std::string const& name) {
        if (name != NSMetadataQueryGatheringProgressNotification) return;
        bodyOf(recorder)->onNotification = nullptr;
        query.stopQuery();
        EXPECT_TRUE(query.startQuery());
    };
    ASSERT_TRUE(gather());
    EXPECT_EQ(names(), (std::vector<std::string>{
                           NSMetadataQueryDidStartGatheringNotification, NSMetadataQueryGatheringProgressNotification,
                           NSMetadataQueryDidStartGatheringNotification, NSMetadataQueryGatheringProgressNotification,
                           NSMetadataQueryDidFinishGatheringNotification}));
}

TEST_F(MetadataQuery, EndsThoughAnObserverOfItsProgressRaises) {
    folder.makeFolder("a/Mirror Frame.app");
    LogListener const listener([](NSString const&) {});
    bodyOf(recorder)->onNotification = [](std::string const& name) {
        if (name == NSMetadataQueryGatheringProgressNotification) NSArray::array().objectAtIndex_(0);
    };
    ASSERT_TRUE(gather());
    EXPECT_FALSE(query.isGathering());
}

TEST_F(MetadataQuery, GathersByThePredicateItStartedWith) {
    folder.makeFolder("a/Mirror Frame.app");
    ASSERT_TRUE(query.startQuery());
    query.setPredicate_(NSPredicate::predicateWithFormat_("kMDItemKind = 'Document'"));
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidFinishGatheringNotification));
    EXPECT_EQ(query.resultCount(), 1U);
}

TEST_F(MetadataQuery, MayGoWhileItGathers) {
    folder.makeFolder("a/Mirror Frame.app");
    NSMetadataQuery shortLived = NSMetadataQuery::alloc().init();
    shortLived.setPredicate_(query.predicate());
    shortLived.setSearchScopes_(query.searchScopes());
    ASSERT_TRUE(shortLived.startQuery());
    Weak<NSMetadataQuery> const weak(shortLived);
    shortLived = nil;
    EXPECT_TRUE(runUntil([&] { return weak.load() == nil; }));
}

TEST(NilMetadataQuery, AnswersNothing) {
    NSMetadataQuery const query;
    query.setPredicate_(NSPredicate::predicateWithValue_(YES));
    query.setSearchScopes_(NSArray::array());
    query.setNotificationBatchingInterval_(1);
    query.stopQuery();
    query.disableUpdates();
    query.enableUpdates();
    EXPECT_FALSE(query.startQuery());
    EXPECT_TRUE(query.init() == nil);
    EXPECT_TRUE(query.predicate() == nil);
    EXPECT_TRUE(query.searchScopes() == nil);
    EXPECT_TRUE(query.results() == nil);
    EXPECT_TRUE(query.resultAtIndex_(0) == nil);
    EXPECT_EQ(query.resultCount(), 0U);
    EXPECT_EQ(query.unreadableFolderCount(), 0U);
    EXPECT_EQ(query.notificationBatchingInterval(), 0);
    EXPECT_TRUE(NSMetadataItem(nil).valueForAttribute_(kMDItemPath) == nil);
    EXPECT_TRUE(NSMetadataItem(nil).attributes() == nil);
}

TEST_F(MetadataQuery, StaysAsItIsIfItEndsWithGathering) {
    folder.makeFolder("a/Mirror Frame.app");
    query.setEndsWithGathering_(true);
    EXPECT_TRUE(query.endsWithGathering());
    ASSERT_TRUE(gather());
    folder.makeFolder("a/b/Mirror Frame.app");
    ::rename(folder.path("a/Mirror Frame.app").c_str(), folder.path("a/Other").c_str());
    runForAMoment();
    EXPECT_EQ(names().back(), NSMetadataQueryDidFinishGatheringNotification);
    EXPECT_EQ(query.resultCount(), 1U);
    // The next start reads this anew.
    query.stopQuery();
    query.setEndsWithGathering_(false);
    ASSERT_TRUE(query.startQuery());
    ASSERT_TRUE(runUntilNamed(NSMetadataQueryDidFinishGatheringNotification, 2));
    EXPECT_EQ(query.resultCount(), 1U);
    ::rename(folder.path("a/b/Mirror Frame.app").c_str(), folder.path("a/b/Other").c_str());
    EXPECT_TRUE(runUntil([this] { return query.resultCount() == 0; }));
}

} // namespace
} // namespace mac::test
