#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/faults/Operations.h"
#include <memory>

namespace mac::faults {

namespace {

using applescript::CompiledScript;
using applescript::ScriptError;
using applescript::ScriptOutcome;

// A script, compiled once, that the processes for the fault points run.
class Script {
public:
    explicit Script(std::string statements) : m_statements(std::move(statements)) {}

    void compile(Fixture const& fixture) {
        auto const file = [&fixture](char const* path) { return "POSIX file \"" + fixture.path(path) + "\""; };
        std::string const source = "set x to " + file("w/x") + "\nset w to " + file("w") + "\nset o to " + file("o") +
                                   "\ntell application \"Finder\"\n" + m_statements + "\nend tell\n";
        ScriptError error;
        m_script = CompiledScript::compile(unitsFromFileSystemBytes(source), error);
    }

    bool run() { return m_script && !m_script->run({}).error; }

private:
    std::string m_statements;
    std::optional<CompiledScript> m_script{};
};

Operation scripted(std::string statements, Operation operation) {
    std::shared_ptr<Script> const script = std::make_shared<Script>(std::move(statements));
    operation.warmUp = [script](Fixture const& fixture) { script->compile(fixture); };
    operation.run = [script](Fixture const&) { return script->run(); };
    return operation;
}

void makeFile(Fixture const& fixture) {
    fixture.makeTrash();
    fixture.makeFile("w/x", {}, 0640);
    fixture.setAttribute("w/x", "user.note", secretText("note"));
}

void makeFolder(Fixture const& fixture) {
    fixture.makeTrash();
    fixture.makeFolder("w/x");
    fixture.makeFile("w/x/a");
    fixture.makeFile("w/x/b");
}

void makeFileAndOld(Fixture const& fixture) {
    makeFile(fixture);
    fixture.makeFile("o/x", "old");
}

std::vector<std::string> const Exchanges{"w/x"};
std::vector<std::string> const Ways{"w", "o"};
constexpr char InTrash[] = "data/Trash/files/x";

} // namespace

std::vector<Operation> scriptOperations() {
    Item const kept{"w/x", "w/x"};
    return {
        scripted("delete x", {.name = "script: delete a file",
                              .prepare = makeFile,
                              .items = {{"w/x", InTrash}},
                              .exchanged = Exchanges,
                              .exchangedWays = Ways}),
        scripted("move x to o", {.name = "script: move a folder",
                                 .prepare = makeFolder,
                                 .items = {{"w/x", "o/x"}},
                                 .exchanged = Exchanges,
                                 .exchangedWays = Ways}),
        scripted("move x to o with replacing", {.name = "script: move a file and replace",
                                                .prepare = makeFileAndOld,
                                                .items = {{"w/x", "o/x"}, {"o/x", InTrash}},
                                                .exchanged = {"w/x", "o/x"},
                                                .exchangedWays = Ways}),
        scripted("duplicate x", {.name = "script: duplicate a folder",
                                 .flushing = Flushing::Later,
                                 .prepare = makeFolder,
                                 .items = {kept},
                                 .exchanged = Exchanges,
                                 .exchangedWays = Ways}),
        scripted("duplicate x to o with replacing", {.name = "script: duplicate a file and replace",
                                                     .flushing = Flushing::Later,
                                                     .prepare = makeFileAndOld,
                                                     .items = {kept, {"o/x", InTrash}},
                                                     .exchanged = {"w/x", "o/x"},
                                                     .exchangedWays = Ways}),
        scripted("set name of x to \"y\"", {.name = "script: rename a file",
                                            .prepare = makeFile,
                                            .items = {{"w/x", "w/y"}},
                                            .exchanged = Exchanges,
                                            .exchangedWays = Ways}),
        scripted("make new folder at w with properties {name:\"made\"}",
                 {.name = "script: make a folder", .prepare = makeFile, .items = {kept}, .exchangedWays = Ways}),
        scripted("make new file at w with properties {name:\"made\"}",
                 {.name = "script: make a file", .prepare = makeFile, .items = {kept}, .exchangedWays = Ways}),
        scripted("set comment of x to \"remark\"", {.name = "script: set a comment",
                                                    .prepare = makeFile,
                                                    .items = {kept},
                                                    .exchanged = Exchanges,
                                                    .exchangedWays = Ways}),
        scripted("empty trash", {.name = "script: empty the trash",
                                 .prepare =
                                     [](Fixture const& fixture) {
                                         makeFile(fixture);
                                         fixture.makeFile(InTrash);
                                         fixture.recordTrashed("x");
                                     },
                                 .items = {kept},
                                 .exchanged = {InTrash},
                                 .exchangedWays = Ways,
                                 .failure = Failure::LeavesSomeDone}),
    };
}

} // namespace mac::faults
