#include "platform/files/trash/Trash.h"
#include "tests/faults/Operations.h"
#include <unistd.h>

namespace mac::faults {

namespace {

constexpr std::string_view Files = "data/Trash/files/";

std::string inTrash(std::string_view name) { return std::string(Files) + std::string(name); }

void makeSharedFile(Fixture const& fixture) {
    fixture.shareByDefault("w");
    fixture.makeFile("w/x");
    fixture.setAttribute("w/x", "user.note", secretText("note"));
}

void makeTree(Fixture const& fixture, std::string const& place) {
    fixture.makeFolder(place);
    fixture.makeFile(place + "/a", {}, 0640);
    fixture.makeFolder(place + "/inner", 0700);
    fixture.makeFile(place + "/inner/b");
    fixture.makeLink(place + "/link", fixture.path("canary"));
}

void makeTrashed(Fixture const& fixture, std::string const& name) {
    fixture.makeFile(inTrash(name));
    fixture.recordTrashed(name);
}

bool trash(Fixture const& fixture) { return moveToTrash(fixture.path("w/x")).hasValue(); }

bool putBackX(Fixture const& fixture) {
    for (TrashedItem const& item : trashedItems())
        if (item.originalPath == fixture.path("w/x")) return putBack(item).hasValue();
    return false;
}

bool empty(Fixture const&) {
    EmptiedTrash const emptied = emptyTrash();
    return emptied.left == 0 && emptied.removed > 0;
}

std::vector<std::string> const TrashingExchanges{"w/x", "data/Trash/files", "data/Trash/info"};
std::vector<std::string> const TrashingWays{"w", "data", "data/Trash"};
std::vector<std::string> const TrashExchanges{"data/Trash/files/x", "data/Trash/files", "data/Trash/info",
                                              "data/Trash/info/x.trashinfo"};

} // namespace

std::vector<Operation> trashOperations() {
    return {
        {.name = "trash a file",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeSharedFile(fixture);
             },
         .run = trash,
         .items = {{"w/x", inTrash("x")}},
         .exchanged = TrashingExchanges,
         .exchangedWays = TrashingWays},
        {.name = "trash a file for the first time",
         .prepare = makeSharedFile,
         .run = trash,
         .items = {{"w/x", inTrash("x")}},
         .exchanged = {"w/x"},
         .exchangedWays = {"w", "data"}},
        {.name = "trash a file of a name that is taken",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeTrashed(fixture, "x");
                 makeSharedFile(fixture);
             },
         .run = trash,
         .items = {{"w/x", inTrash("x *")}, {inTrash("x"), inTrash("x")}},
         .exchanged = TrashingExchanges,
         .exchangedWays = TrashingWays},
        {.name = "trash a folder",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeTree(fixture, "w/x");
             },
         .run = trash,
         .items = {{"w/x", inTrash("x")}},
         .exchanged = TrashingExchanges,
         .exchangedWays = TrashingWays},
        {.name = "trash a link",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 fixture.makeLink("w/x", fixture.path("canary"));
             },
         .run = trash,
         .items = {{"w/x", inTrash("x")}},
         .exchanged = TrashingExchanges,
         .exchangedWays = TrashingWays},
        {.name = "trash a file with its sidecar",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeSharedFile(fixture);
                 fixture.makeSidecar("w", "x");
             },
         .run = trash,
         .items = {{"w/x", inTrash("x")}, {"w/._x", inTrash("._x")}},
         .exchanged = {"w/x", "w/._x", "data/Trash/files"},
         .exchangedWays = TrashingWays},
        {.name = "put back a file",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeTrashed(fixture, "x");
             },
         .run = putBackX,
         .items = {{inTrash("x"), "w/x"}},
         .exchanged = TrashExchanges,
         .exchangedWays = TrashingWays},
        {.name = "put back a folder",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeTree(fixture, inTrash("x"));
                 fixture.recordTrashed("x");
             },
         .run = putBackX,
         .items = {{inTrash("x"), "w/x"}},
         .exchanged = TrashExchanges,
         .exchangedWays = TrashingWays},
        {.name = "put back a file with its sidecar",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeTrashed(fixture, "x");
                 fixture.makeSidecar("data/Trash/files", "x");
                 fixture.recordTrashed("._x");
             },
         .run = putBackX,
         .items = {{inTrash("x"), "w/x"}, {inTrash("._x"), "w/._x"}},
         .exchanged = TrashExchanges,
         .exchangedWays = TrashingWays},
        {.name = "empty the trash",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeTrashed(fixture, "x");
                 makeTree(fixture, inTrash("tree"));
                 fixture.recordTrashed("tree");
                 fixture.makeFile("w/y");
             },
         .run = empty,
         .items = {{"w/y", "w/y"}},
         .exchanged = {"data/Trash/files/x", "data/Trash/files/tree", "data/Trash/files/tree/inner", "data/Trash/files",
                       "data/Trash/info"},
         .failure = Failure::LeavesSomeDone},
        {.name = "trash a file of a second volume",
         .prepare = [](Fixture const& fixture) { fixture.makeFile("2/x"); },
         .run = [](Fixture const& fixture) { return moveToTrash(fixture.path("2/x")).hasValue(); },
         .items = {{"2/x", "2/.Trash-" + std::to_string(::geteuid()) + "/files/x"}},
         .exchanged = {"2/x"},
         .needs = Needs::TwoVolumes},
    };
}

} // namespace mac::faults
