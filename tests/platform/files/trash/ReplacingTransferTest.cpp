#include "tests/platform/files/references/References.h"
#include "tests/platform/files/trash/ReplacingTransfers.h"
#include "tests/support/Failures.h"
#include <sys/syscall.h>
#include <utility>

namespace mac::test {

namespace {

TEST(ReplacingTransfer, ReplacesWhatHasTheNameWhichGoesToTheTrash) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    folder.makeFile("a", "a");
    folder.makeFile("there/b/inner", "b");
    EXPECT_EQ(errorOf(copy, folder.path("a"), folder.path("there"), "b", NameClash::IsReplaced), 0);
    EXPECT_EQ(textOf(folder.path("there/b")), "a");
    EXPECT_EQ(textOf(home.files("b/inner")), "b");
    folder.makeFile("c", "c");
    EXPECT_EQ(errorOf(move, folder.path("c"), folder.path("there"), "b", NameClash::IsReplaced), 0);
    EXPECT_EQ(textOf(folder.path("there/b")), "c");
    EXPECT_EQ(trashedItems().size(), 2U);
    EXPECT_EQ(namesIn(folder.path("there")), (std::vector<std::string>{"b"}));
    EXPECT_EQ(errorOf(move, folder.path("there/b"), folder.path("there"), "b", NameClash::IsReplaced), 0);
    EXPECT_EQ(textOf(folder.path("there/b")), "c") << "it takes its own place";
}

TEST(ReplacingTransfer, DoesNotReplaceTheFolderThatHoldsTheItem) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    folder.makeFile("a/a", "x");
    folder.makeFile("a/sibling", "y");
    EXPECT_EQ(errorOf(move, folder.path("a/a"), folder.path(), "a", NameClash::IsReplaced), EINVAL);
    EXPECT_EQ(errorOf(copy, folder.path("a/a"), folder.path(), "a", NameClash::IsReplaced), EINVAL);
    EXPECT_EQ(textOf(folder.path("a/a")), "x");
    EXPECT_EQ(textOf(folder.path("a/sibling")), "y");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"a"}) << "no copy is left";
}

TEST(ReplacingTransfer, DoesNotPartAnItemFromItsAppleDoubleFile) {
    TemporaryFolder const folder;
    folder.makeFile("file", "x");
    folder.makeFile("._file", AppleDouble + "own");
    folder.makeFile("there/._file", AppleDouble + "stray");
    for (Transfer const transfer : {copy, move}) {
        for (NameClash const clash : {NameClash::IsRefused, NameClash::IsReplaced}) {
            EXPECT_EQ(errorOf(transfer, folder.path("file"), folder.path("there"), "file", clash), EEXIST);
            EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"._file", "file", "there"}));
            EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>{"._file"});
            EXPECT_EQ(textOf(folder.path("there/._file")), AppleDouble + "stray");
        }
    }
    EXPECT_EQ(errorOf(copy, folder.path("file"), folder.path("there"), "copy", NameClash::IsRefused), 0);
    EXPECT_EQ(textOf(folder.path("there/._copy")), AppleDouble + "own");
    EXPECT_EQ(errorOf(move, folder.path("file"), folder.path("there"), "moved"), 0);
    EXPECT_EQ(textOf(folder.path("there/._moved")), AppleDouble + "own");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"there"});
}

TEST(ReplacingTransfer, ReferencesFindAnItemThatCameBack) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    std::string const file = folder.makeFile("file", "x");
    folder.makeFile("._file", AppleDouble + "own");
    folder.makeFile("there/._file", AppleDouble + "stray");
    FSRef const reference = referenceTo(file);
    // The item moves in steps, and its sidecar cannot follow.
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        EXPECT_EQ(errorOf(move, file, folder.path("there"), "file", NameClash::IsRefused), EEXIST);
    });
    EXPECT_EQ(textOf(file), "x");
    EXPECT_EQ(pathOf(reference), file);
    std::string const inTrash = moveToTrash(file).takeValue().path;
    FSRef const trashed = referenceTo(inTrash);
    TrashSteps const steps = [&](TrashStep step) {
        if (step == TrashStep::ItemPutBack) folder.makeFile("._file", AppleDouble + "another's");
    };
    withRefusedCall(SYS_renameat2, EINVAL, [&] { EXPECT_FALSE(putBackItemAtPath(inTrash, steps).hasValue()); });
    EXPECT_EQ(pathOf(trashed), inTrash);
}

TEST(ReplacingTransfer, GivesNoItemTheAttributesOfAStrayAppleDoubleFile) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    folder.makeFile("file", "x");
    folder.makeFile("there/._file", AppleDouble + "stray");
    for (Transfer const transfer : {copy, move}) {
        for (NameClash const clash : {NameClash::IsRefused, NameClash::IsReplaced}) {
            EXPECT_EQ(errorOf(transfer, folder.path("file"), folder.path("there"), "file", clash), EEXIST);
            EXPECT_EQ(textOf(folder.path("file")), "x");
            EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>{"._file"});
        }
    }
    // It goes with the item that it belongs to.
    folder.makeFile("there/file", "old");
    EXPECT_EQ(errorOf(copy, folder.path("file"), folder.path("there"), "file", NameClash::IsReplaced), 0);
    EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>{"file"});
    EXPECT_EQ(textOf(home.files("._file")), AppleDouble + "stray");
    // Somebody else's file gives no attributes.
    folder.makeFile("there/._other", "somebody else's");
    EXPECT_EQ(errorOf(copy, folder.path("file"), folder.path("there"), "other"), 0);
    EXPECT_EQ(errorOf(move, folder.path("there/other"), folder.path(), "moved"), 0);
    EXPECT_EQ(namesIn(folder.path("there")), (std::vector<std::string>{"._other", "file"}));
}

TEST(ReplacingTransfer, DoesNotTrashTheItemThatCannotGoBack) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    std::string const file = folder.makeFile("file", "x");
    folder.makeFile("._file", AppleDouble + "own");
    folder.makeFile("there/._file", AppleDouble + "stray");
    for (NameClash const clash : {NameClash::IsReplaced, NameClash::IsRefused}) {
        bool isFirst = true;
        TransferSteps steps;
        steps.rename = [&](RenameStep step) {
            if (step == RenameStep::Renamed && std::exchange(isFirst, false)) folder.makeFile("file", "another's");
        };
        steps.trash = [&](TrashStep step) {
            EXPECT_NE(step, TrashStep::InformationWritten) << "it is about to go to the trash";
        };
        EXPECT_EQ(errorOf(move, file, folder.path("there"), "file", clash, steps), ESTALE);
        EXPECT_EQ(textOf(folder.path("there/file")), "x");
        EXPECT_EQ(textOf(folder.path("there/._file")), AppleDouble + "stray");
        EXPECT_EQ(textOf(file), "another's");
        EXPECT_TRUE(trashedItems().empty());
        ASSERT_EQ(::rename(folder.path("there/file").c_str(), file.c_str()), 0);
    }
}
} // namespace

} // namespace mac::test
