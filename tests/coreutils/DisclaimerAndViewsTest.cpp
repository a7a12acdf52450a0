#include "coreutils/DisclaimerAndViews.h"
#include "pathutils/FinderMetadata.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RunUntil.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

namespace mac::test {
namespace {

// Its dialog is tested in DisclaimerInASessionTest.cpp.
TEST(Disclaimer, OfNilIsNotShown) { EXPECT_FALSE(pxRunDisclaimer(nil)); }

NSBox boxWithFrame(NSRect const& frame, std::initializer_list<NSUInteger> masks) {
    NSBox const box = NSBox::alloc().initWithFrame_(frame);
    for (NSUInteger const mask : masks) {
        NSView const view = NSView::alloc().initWithFrame_(NSMakeRect(10, 20, 30, 40));
        view.setAutoresizingMask_(mask);
        box.addSubview_(view);
    }
    return box;
}

NSView subviewAt(NSBox const& box, NSUInteger index) { return as<NSView>(box.subviews().objectAtIndex_(index)); }

TEST(BoxTitle, TakesItsHeightAlongAndBringsItBack) {
    NSBox const box = boxWithFrame(NSMakeRect(10, 100, 300, 200), {});
    pxSetTitleHidden_(box, YES);
    EXPECT_EQ(box.frame(), NSMakeRect(10, 113, 300, 187));
    EXPECT_EQ(box.titlePosition(), NSNoTitle);
    pxSetTitleHidden_(box, NO);
    EXPECT_EQ(box.frame(), NSMakeRect(10, 100, 300, 200));
    EXPECT_EQ(box.titlePosition(), NSAtTop);
}

TEST(BoxTitle, IsHiddenTwiceIfThatIsAsked) {
    NSBox const box = boxWithFrame(NSMakeRect(10, 100, 300, 200), {});
    pxSetTitleHidden_(box, YES);
    pxSetTitleHidden_(box, YES);
    EXPECT_EQ(box.frame(), NSMakeRect(10, 126, 300, 174));
}

TEST(BoxTitle, LeavesTheSubviewsWhereTheyAre) {
    NSUInteger const grows = NSViewWidthSizable | NSViewHeightSizable;
    NSBox const box = boxWithFrame(NSMakeRect(10, 100, 300, 200), {grows, NSViewMinYMargin, NSViewNotSizable});
    for (BOOL const hide : {YES, NO, NO}) {
        pxSetTitleHidden_(box, hide);
        for (NSUInteger index = 0; index < 3; ++index)
            EXPECT_EQ(subviewAt(box, index).frame(), NSMakeRect(10, 20, 30, 40)) << index;
    }
}

TEST(BoxTitle, GivesAllSubviewsTheMaskOfTheFirst) {
    for (BOOL const hide : {YES, NO}) {
        NSBox const box = boxWithFrame(NSMakeRect(10, 100, 300, 200), {0x12, 0x24});
        pxSetTitleHidden_(box, hide);
        EXPECT_EQ(subviewAt(box, 0).autoresizingMask(), 0x12U);
        EXPECT_EQ(subviewAt(box, 1).autoresizingMask(), 0x12U);
    }
}

TEST(BoxTitle, OfNilIsNotHidden) { pxSetTitleHidden_(nil, YES); }

NSManagedObject newManagedObject() { return NSManagedObject::alloc().init(); }

TEST(PrimitiveValues, AreSetWithoutAWordToObservers) {
    NSManagedObject const object = newManagedObject();
    Recorder const recorder = Recorder::recorder();
    recorder.observe(object, "name");
    recorder.observe(object, "weight");
    Parcel const parcel = Parcel::parcelWithName_("a");
    parcel.setWeight_(5);
    pxSetPrimitiveValueFrom_forKey_(object, parcel, "name");
    EXPECT_EQ(text(object.valueForKey_("name")), "a");
    parcel.setName_("b");
    pxSetPrimitiveValuesFrom_forKeys_(object, parcel, words({"name", "weight"}));
    EXPECT_EQ(text(object.valueForKey_("name")) + text(object.valueForKey_("weight")), "b5");
    pxSetPrimitiveValuesFrom_(object, NSDictionary::dictionaryWithObject_forKey_("c", "name"));
    EXPECT_EQ(text(object.valueForKey_("name")), "c");
    pxSetPrimitiveValueFrom_forKey_(object, nil, "name");
    EXPECT_TRUE(object.valueForKey_("name") == nil);
    EXPECT_EQ(recorder.count(), 0U);
}

TEST(PrimitiveValues, AreSetOnOtherObjectsAsUsual) {
    NSManagedObject const object = newManagedObject();
    object.setPrimitiveValue_forKey_("a", "name");
    object.setPrimitiveValue_forKey_(number(7), "weight");
    Parcel const parcel = Parcel::parcelWithName_("");
    Recorder const recorder = Recorder::recorder();
    recorder.observe(parcel, "name");
    pxSetValueFromPrimitive_forKey_(parcel, object, "name");
    EXPECT_EQ(text(parcel.name()), "a");
    object.setPrimitiveValue_forKey_("b", "name");
    pxSetValuesFromPrimitive_forKeys_(parcel, object, words({"name", "weight"}));
    EXPECT_EQ(text(parcel.name()), "b");
    EXPECT_EQ(parcel.weight(), 7);
    EXPECT_EQ(recorder.count(), 2U);
}

TEST(PrimitiveValues, UnknownKeysAreRaised) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    NSManagedObject const object = newManagedObject();
    EXPECT_THROW(pxSetPrimitiveValuesFrom_forKeys_(object, parcel, words({"name", "colour", "weight"})),
                 NSUndefinedKeyException);
    EXPECT_EQ(text(object.valueForKey_("name")), "a") << "in their order";
    EXPECT_TRUE(object.valueForKey_("weight") == nil);
    EXPECT_THROW(pxSetValueFromPrimitive_forKey_(parcel, object, "colour"), NSUndefinedKeyException);
}

TEST(PrimitiveValues, OfNilAreNotSet) {
    Parcel const parcel = Parcel::parcelWithName_("a");
    pxSetPrimitiveValueFrom_forKey_(nil, parcel, "name");
    pxSetPrimitiveValuesFrom_forKeys_(nil, parcel, words({"name"}));
    pxSetPrimitiveValuesFrom_forKeys_(newManagedObject(), parcel, nil);
    pxSetPrimitiveValuesFrom_(nil, NSDictionary::dictionaryWithObject_forKey_("c", "name"));
    pxSetPrimitiveValuesFrom_(newManagedObject(), nil);
    pxSetValueFromPrimitive_forKey_(nil, newManagedObject(), "name");
    pxSetValuesFromPrimitive_forKeys_(nil, newManagedObject(), words({"name"}));
    pxSetValueFromPrimitive_forKey_(parcel, nil, "name");
    EXPECT_TRUE(parcel.name() == nil) << "of nil all values are nil";
}

// A user's and a system's data folder. Types of files are those of the computer.
class InstalledSounds : public testing::Test {
protected:
    InstalledSounds() { EXPECT_EQ(::symlink("/usr/share/mime", m_folder.path("system/mime").c_str()), 0); }

    std::string users(std::string const& name) const { return m_folder.makeFile("user/Sounds/" + name, ""); }
    std::string systems(std::string const& name) const { return m_folder.makeFile("system/Sounds/" + name, ""); }
    static std::string names() { return joined(pxArrayWithInstalledSoundNames(), "|"); }

    TemporaryFolder const m_folder{};
    std::string const m_system{m_folder.makeFolder("system")};
    EnvironmentVariable const m_home{"HOME", m_folder.path()};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("user")};
    EnvironmentVariable const m_shared{"XDG_DATA_DIRS", m_system};
};

TEST_F(InstalledSounds, AreListedOnceByNameWithoutExtension) {
    EXPECT_EQ(names(), "");
    users("b.wav");
    users("A.aiff");
    systems("A.aiff");
    systems("C.mp3");
    users("note.txt");
    users("Animals/cat.aiff");
    EXPECT_EQ(names(), "A|Animals/cat|b|C");
}

TEST_F(InstalledSounds, AreNotListedIfInvisible) {
    users("A.aiff");
    users(".hidden.aiff");
    std::string const marked = users("marked.aiff");
    ASSERT_TRUE(pxSetFinderFlagsOfPath_mask_(NSString::stringWithFileSystemRepresentation_(marked), kIsInvisible,
                                             kIsInvisible));
    EXPECT_EQ(names(), "A");
}

TEST_F(InstalledSounds, AreThoseOfThemesToo) {
    m_folder.makeFile("system/sounds/freedesktop/stereo/bell.oga", "");
    m_folder.makeFile("system/sounds/freedesktop/index.theme", "[Sound Theme]\n");
    EXPECT_EQ(names(), "freedesktop/stereo/bell");
}

TEST_F(InstalledSounds, AreFoundOnceInFoldersThatLoop) {
    users("A.aiff");
    ASSERT_EQ(::symlink(".", m_folder.path("user/Sounds/again").c_str()), 0);
    ASSERT_EQ(::symlink("..", m_folder.path("user/Sounds/up").c_str()), 0);
    ASSERT_EQ(::symlink("/", m_folder.path("user/Sounds/root").c_str()), 0);
    ASSERT_EQ(::symlink("loop.aiff", m_folder.path("user/Sounds/loop.aiff").c_str()), 0);
    EXPECT_EQ(names(), "A");
}

TEST_F(InstalledSounds, AreNotLookedForInFiles) {
    m_folder.makeFile("user/Sounds", "a file");
    EXPECT_EQ(names(), "");
}

// Counts how often it is asked to remove a path again, and does so.
class Remover : public Handle<Remover, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        int tries{0};
        bool isPastDelay{false};
    };
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "Remover",
                .superclass = classOf<NSObject>(),
                .methods = {method<&Remover::remove_>("pxRemovePathAfterNotBusy:"),
                            method<&Remover::passDelay_>("passDelay:")}};
    }
    void remove_(NSString const& path) const {
        ++bodyOf(*this)->tries;
        pxRemovePathAfterNotBusy_(*this, path);
    }
    void passDelay_(id const&) const { bodyOf(*this)->isPastDelay = true; }
    int tries() const { return bodyOf(*this)->tries; }
    // Runs the loop until another try of the past would have come.
    void awaitNextTry() const {
        performSelector_withObject_afterDelay_(*this, "passDelay:", nil, 1);
        EXPECT_TRUE(runUntil([this] { return bodyOf(*this)->isPastDelay; }));
    }
};

NSString pathIn(TemporaryFolder const& folder, std::string const& name) {
    return NSString::stringWithFileSystemRepresentation_(folder.path(name));
}

class BusyRemoval : public testing::Test {
protected:
    NSString path(std::string const& name) const { return pathIn(m_folder, name); }

    TemporaryFolder const m_folder{};
};

class BusyVolume : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
};

TEST_F(BusyRemoval, RemovesAFileAtOnce) {
    m_folder.makeFile("file", "");
    ASSERT_EQ(::symlink("nowhere", m_folder.path("link").c_str()), 0);
    pxRemovePathAfterNotBusy_(nil, path("file"));
    EXPECT_TRUE(isThere(m_folder.path("file"))) << "a message to nil";
    pxRemovePathAfterNotBusy_(adopt<Remover>(), path("file"));
    pxRemovePathAfterNotBusy_(adopt<Remover>(), path("link"));
    EXPECT_TRUE(namesIn(m_folder.path()).empty());
    pxRemovePathAfterNotBusy_(adopt<Remover>(), path("file"));
    pxRemovePathAfterNotBusy_(adopt<Remover>(), nil);
}

TEST_F(BusyVolume, IsRemovedByATryASecondLater) {
    m_folder.makeFolder("busy");
    mountMemory(m_folder.path("busy"), "size=64k");
    Remover const remover = adopt<Remover>();
    NSDate const start = NSDate::date();
    pxRemovePathAfterNotBusy_(remover, pathIn(m_folder, "busy"));
    EXPECT_TRUE(runUntil([&] { return remover.tries() == 1; }));
    EXPECT_LE(start.timeIntervalSinceNow(), -1);
    EXPECT_TRUE(isThere(m_folder.path("busy")));
    EXPECT_EQ(::umount2(m_folder.path("busy").c_str(), 0), 0) << "the tries do not hold the volume";
    EXPECT_TRUE(runUntil([&] { return !isThere(m_folder.path("busy")); }));
    EXPECT_EQ(remover.tries(), 2);
    remover.awaitNextTry();
    EXPECT_EQ(remover.tries(), 2) << "it is over with the item";
}

TEST_F(BusyRemoval, TakesAFolderThatIsNotEmptyForBusy) {
    m_folder.makeFile("full/file", "");
    Remover const remover = adopt<Remover>();
    pxRemovePathAfterNotBusy_(remover, path("full"));
    EXPECT_TRUE(runUntil([&] { return remover.tries() == 1; }));
    ASSERT_EQ(::unlink(m_folder.path("full/file").c_str()), 0);
    EXPECT_TRUE(runUntil([&] { return !isThere(m_folder.path("full")); }));
}

TEST_F(BusyRemoval, GivesUpAfterAnyOtherError) {
    m_folder.makeFile("locked", "");
    FSRef ref{};
    ASSERT_TRUE(KRPathGetFSRef_traverseLink_(path("locked"), &ref, NO));
    FSCatalogInfo const locked{.nodeFlags = kFSNodeLockedMask};
    FSCatalogInfo const unlocked{.nodeFlags = 0};
    ASSERT_EQ(FSSetCatalogInfo(&ref, kFSCatInfoNodeFlags, &locked), noErr);
    Remover const remover = adopt<Remover>();
    pxRemovePathAfterNotBusy_(remover, path("locked"));
    remover.awaitNextTry();
    EXPECT_EQ(remover.tries(), 0);
    EXPECT_TRUE(isThere(m_folder.path("locked")));
    EXPECT_EQ(FSSetCatalogInfo(&ref, kFSCatInfoNodeFlags, &unlocked), noErr);
}

} // namespace
} // namespace mac::test
