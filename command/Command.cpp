#include "command/Command.h"
#include "command/Actions.h"
#include "command/Report.h"
#include "platform/foundation/Beep.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/VisibleLine.h"
#include "platform/system/StandardStreams.h"
#include <cstdio>
#include <string_view>

namespace framekeeper {

namespace {

void tellPeople(std::string_view text) {
    // Standard error has no other place to which its own failure could be told.
    [[maybe_unused]] Result<void> const written = writeTo(StandardStream::Errors, text);
}

Status print(std::string const& text) {
    Result<void> const written = writeTo(StandardStream::Output, text);
    if (written.isDone()) return Status::Done;
    tellPeople("framekeeper-cli: " + written.problem().text() + "\n");
    return Status::NotWritten;
}

// On a terminal alone: a line that grows no longer and is taken away at the end.
class ProgressLine {
public:
    ~ProgressLine() {
        if (m_isShown) tellPeople("\r\x1b[K");
    }
    void tell(std::size_t found) {
        if (!m_isTerminal) return;
        tellPeople("\r\x1b[KSearching: " + std::to_string(found) + " found");
        m_isShown = true;
    }

private:
    bool const m_isTerminal = isTerminal(StandardStream::Errors);
    bool m_isShown{false};
};

void tellUnreadable(Copies const& copies) {
    NSUInteger const folders = copies.controller().query().unreadableFolderCount();
    if (folders == 0) return;
    tellPeople("framekeeper-cli: " + std::to_string(folders) + (folders == 1 ? " folder" : " folders") +
               " could not be read\n");
}

Status list(CommandLine const& line) {
    Copies const copies;
    bool isFinished = false;
    {
        ProgressLine progress;
        isFinished = copies.search([&](std::size_t found) { progress.tell(found); });
    }
    if (!isFinished) {
        tellPeople("framekeeper-cli: the search could not be started\n");
        return Status::Failed;
    }
    tellUnreadable(copies);
    return print(listing(copies.records(), line.form));
}

// The paths that the source in question knows, without a search.
Status listSource(CommandLine const& line) {
    Copies const copies;
    bool const isLogin = line.verb == Verb::Login;
    if (isLogin)
        copies.controller().syncIsAutolaunched();
    else
        copies.controller().syncIsInToolbar();
    copies.look(NSArray::array());
    return print(listing(copies.records(), line.form));
}

Status inform(CommandLine const& line) {
    Copies const copies;
    copies.readSources();
    NSMutableArray const paths = NSMutableArray::array();
    for (std::string const& path : line.paths)
        if (isCopyAt(absolutePath(path))) paths.addObject_(absolutePath(path));
    copies.look(paths);
    NSMutableArray const records = NSMutableArray::array();
    std::vector<Outcome> missing;
    for (std::string const& given : line.paths) {
        NSString const path = absolutePath(given);
        NSDictionary const record = copies.recordOf(path);
        if (record != nil)
            records.addObject_(record);
        else
            missing.push_back({path, Status::NoSuchCopy, nil, "no copy of Mirror Frame is there"});
    }
    tellPeople(complaints(missing));
    Status const status = missing.empty() ? Status::Done : Status::NoSuchCopy;
    return worse(status, records.count() == 0 ? Status::Done : print(details(records, line.form)));
}

// Deleting cannot be taken back: it wants --yes, or an answer from a terminal.
bool isConfirmed(CommandLine const& line) {
    if (line.verb != Verb::Delete || line.confirmation == Confirmation::IsGiven) return true;
    if (!isTerminal(StandardStream::Input) || !isTerminal(StandardStream::Errors)) {
        tellPeople("framekeeper-cli: delete without a terminal needs --yes\n");
        return false;
    }
    for (std::string const& path : line.paths)
        tellPeople("  " + visibleLine(absolutePath(path).codeUnits()) + "\n");
    tellPeople("Delete for good? [y/N] ");
    int const answer = std::getchar();
    return answer == 'y' || answer == 'Y';
}

Status change(CommandLine const& line) {
    if (!isConfirmed(line)) return Status::NotConfirmed;
    // What these two do ends well at any moment, and asking a copy to quit may take a minute.
    bool const changesDisk = line.verb != Verb::Quit && line.verb != Verb::Reveal;
    if (changesDisk) holdInterruptions();
    std::vector<Outcome> const outcomes = act(line, Copies());
    tellPeople(complaints(outcomes));
    Status status = Status::Done;
    for (Outcome const& outcome : outcomes)
        status = worse(status, outcome.status);
    return worse(status, print(results(outcomes, line.form)));
}

std::string versionText() { return std::string("framekeeper-cli ") + FRAMEKEEPER_VERSION + "\n"; }

Status carryOut(CommandLine const& line) {
    if (line.verb == Verb::Help) return print(std::string(usageText()));
    if (line.verb == Verb::Version) return print(versionText());
    if (line.verb == Verb::List) return list(line);
    if (line.verb == Verb::Info) return inform(line);
    return isAction(line) ? change(line) : listSource(line);
}

} // namespace

int runCommand(std::vector<std::string> const& words) {
    prepareStandardStreams();
    setBeepSound([] {});
    Result<CommandLine, Failure> const line = readCommandLine(words);
    if (line.hasValue()) return exitStatusOf(carryOut(line.value()));
    NSString const reason = NSString::stringWithFileSystemRepresentation_(line.problem().reason);
    tellPeople("framekeeper-cli: " + visibleLine(reason.codeUnits()) + "\n" + std::string(usageText()));
    return 2;
}

} // namespace framekeeper
