#include "platform/files/trash/ReplacingTransfer.h"
#include "tests/faults/Operations.h"
#include <fcntl.h>
#include <sys/stat.h>

namespace mac::faults {

namespace {

using Transfer = Result<void, ReplacingProblem> (*)(ItemTransfer, NameClash, TrashSteps const&);

constexpr Transfer Copy = copyItem;
constexpr Transfer Move = moveItem;

// Transfers the item to the name "x" in the folder.
bool transfer(Fixture const& fixture, std::string const& path, Transfer how, std::string const& folder,
              NameClash clash = NameClash::IsRefused, std::string const& name = "x") {
    Result<OpenItem> const item = openItemAtPath(fixture.path(path), LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return false;
    FileDescriptor const target(::open(fixture.path(folder).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!target.isOpen()) return false;
    return how({.item = item.value(), .folder = target, .name = name}, clash, {}).isDone();
}

std::function<bool(Fixture const&)> transferring(Transfer how, std::string folder,
                                                 NameClash clash = NameClash::IsRefused) {
    return [=](Fixture const& fixture) { return transfer(fixture, "w/x", how, folder, clash); };
}

void makeFile(Fixture const& fixture) {
    fixture.shareByDefault("o");
    fixture.makeFile("w/x", std::string(3000, 'x'), 0640);
    fixture.setAttribute("w/x", "user.note", secretText("note"));
}

void makeFileOfAnother(Fixture const& fixture) {
    makeFile(fixture);
    fixture.giveAway("w/x");
}

void makeWithSidecar(Fixture const& fixture) {
    makeFile(fixture);
    fixture.makeSidecar("w", "x");
}

void makeTree(Fixture const& fixture) {
    fixture.shareByDefault("o");
    fixture.makeFolder("w/x", 0750);
    fixture.makeFile("w/x/a", {}, 0644);
    fixture.setAttribute("w/x/a", "user.note", secretText("note"));
    fixture.makeFolder("w/x/inner", 0700);
    fixture.makeFile("w/x/inner/b");
    fixture.makeLink("w/x/link", fixture.path("canary"));
}

void makeLink(Fixture const& fixture) { fixture.makeLink("w/x", fixture.path("canary")); }

// What is to be replaced is there, and a trash that takes it.
void makeFileAndOld(Fixture const& fixture) {
    makeFile(fixture);
    fixture.makeTrash();
    fixture.makeFile("o/x", "old");
}

void makeTreeAndOld(Fixture const& fixture) {
    makeTree(fixture);
    fixture.makeTrash();
    fixture.makeFolder("o/x");
    fixture.makeFile("o/x/old");
}

void makeFileAndOldWithSidecars(Fixture const& fixture) {
    makeFileAndOld(fixture);
    fixture.makeSidecar("w", "x");
    fixture.makeSidecar("o", "x");
}

std::vector<std::string> const Exchanges{"w/x", "o/x"};
std::vector<std::string> const Ways{"w", "o"};
constexpr char InTrash[] = "data/Trash/files/x";

} // namespace

void copyIntoFolder(Fixture const& fixture, std::string const& folder) {
    static_cast<void>(transfer(fixture, "canary/file", Copy, folder, NameClash::IsRefused, "next"));
}

std::vector<Operation> transferOperations() {
    Item const kept{"w/x", "w/x"};
    Item const keptSidecar{"w/._x", "w/._x"};
    Item const replaced{"o/x", InTrash};
    NameClash const replaces = NameClash::IsReplaced;
    return {
        {.name = "copy a file",
         .flushing = Flushing::Later,
         .prepare = makeFile,
         .run = transferring(Copy, "o"),
         .items = {kept},
         .exchanged = {"w/x"},
         .exchangedWays = Ways},
        {.name = "copy a file of another user",
         .flushing = Flushing::Later,
         .prepare = makeFileOfAnother,
         .run = transferring(Copy, "o"),
         .items = {kept},
         .exchanged = {"w/x"},
         .exchangedWays = Ways},
        {.name = "copy a link",
         .flushing = Flushing::Later,
         .prepare = makeLink,
         .run = transferring(Copy, "o"),
         .items = {kept},
         .exchanged = {"w/x"},
         .exchangedWays = Ways},
        {.name = "copy a file with its sidecar",
         .flushing = Flushing::Later,
         .prepare = makeWithSidecar,
         .run = transferring(Copy, "o"),
         .items = {kept, keptSidecar},
         .exchanged = {"w/x", "w/._x"},
         .exchangedWays = Ways},
        {.name = "copy a folder",
         .flushing = Flushing::Later,
         .prepare = makeTree,
         .run = transferring(Copy, "o"),
         .items = {kept},
         .exchanged = {"w/x", "w/x/a", "w/x/inner"},
         .exchangedWays = Ways},
        {.name = "copy a file and replace",
         .flushing = Flushing::Later,
         .prepare = makeFileAndOld,
         .run = transferring(Copy, "o", replaces),
         .items = {kept, replaced},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "copy a folder and replace",
         .flushing = Flushing::Later,
         .prepare = makeTreeAndOld,
         .run = transferring(Copy, "o", replaces),
         .items = {kept, replaced},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "copy a file with its sidecar and replace",
         .flushing = Flushing::Later,
         .prepare = makeFileAndOldWithSidecars,
         .run = transferring(Copy, "o", replaces),
         .items = {kept, keptSidecar, replaced, {"o/._x", "data/Trash/files/._x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "move a file",
         .prepare = makeFile,
         .run = transferring(Move, "o"),
         .items = {{"w/x", "o/x"}},
         .exchanged = {"w/x"},
         .exchangedWays = Ways},
        {.name = "move a file with its sidecar",
         .prepare = makeWithSidecar,
         .run = transferring(Move, "o"),
         .items = {{"w/x", "o/x"}, {"w/._x", "o/._x"}},
         .exchanged = {"w/x", "w/._x"},
         .exchangedWays = Ways},
        {.name = "move a folder",
         .prepare = makeTree,
         .run = transferring(Move, "o"),
         .items = {{"w/x", "o/x"}},
         .exchanged = {"w/x"},
         .exchangedWays = Ways},
        {.name = "move a file and replace",
         .prepare = makeFileAndOld,
         .run = transferring(Move, "o", replaces),
         .items = {{"w/x", "o/x"}, replaced},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "move a file with its sidecar and replace",
         .prepare = makeFileAndOldWithSidecars,
         .run = transferring(Move, "o", replaces),
         .items = {{"w/x", "o/x"}, {"w/._x", "o/._x"}, replaced, {"o/._x", "data/Trash/files/._x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "move a file to a second volume",
         .prepare = makeWithSidecar,
         .run = transferring(Move, "2"),
         .items = {{"w/x", "2/x"}, {"w/._x", "2/._x"}},
         .exchanged = {"w/x", "w/._x"},
         .exchangedWays = {"w"},
         .failure = Failure::LeavesSomeDone,
         .needs = Needs::TwoVolumes},
        {.name = "move a folder to a second volume",
         .prepare = makeTree,
         .run = transferring(Move, "2"),
         .items = {{"w/x", "2/x"}},
         .exchanged = {"w/x", "w/x/a", "w/x/inner"},
         .exchangedWays = {"w"},
         .failure = Failure::LeavesSomeDone,
         .needs = Needs::TwoVolumes},
    };
}

} // namespace mac::faults
