#include "command/Command.h"
#include "command/Actions.h"
#include "command/HostReport.h"
#include "command/Report.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/Localization.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/SystemErrorTexts.h"
#include "platform/foundation/text/VisibleLine.h"
#include "platform/system/StandardStreams.h"
#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>

namespace framekeeper {

namespace {

void tellPeople(std::string_view text) {
    // Standard error has no other place to which its own failure could be told.
    [[maybe_unused]] Result<void> const written = writeTo(StandardStream::Errors, text);
}

void complain(std::string const& text) { tellPeople("framekeeper-cli: " + text + "\n"); }

Status print(std::string const& text) {
    Result<void> const written = writeTo(StandardStream::Output, text);
    if (written.isDone()) return Status::Done;
    complain(localizedSystemError(written.problem()).UTF8String());
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
        NSString const text =
            localizedCount(static_cast<NSUInteger>(found), "Searching: %n found", "Searching: %n found", nil);
        tellPeople("\r\x1b[K" + text.UTF8String());
        m_isShown = true;
    }

private:
    bool const m_isTerminal = isTerminal(StandardStream::Errors);
    bool m_isShown{false};
};

void tellUnreadable(Copies const& copies) {
    NSUInteger const folders = copies.controller().query().unreadableFolderCount();
    if (folders == 0) return;
    complain(localizedCount(folders, "%n folder could not be read", "%n folders could not be read", nil).UTF8String());
}

// Failed if something could not be read; what is known is still printed.
Status statusOfReading(int beeps, AppController const& controller) {
    if (beeps == 0) return Status::Done;
    complain(localized("the login items or the places could not be read, or not entirely"));
    for (NSString const& reason : {controller.loginItemsProblem(), controller.placesProblem()})
        if (reason != nil) complain(visibleLine(reason.codeUnits()));
    return Status::Failed;
}

// Copies that the process keeps to its end: to free very many of them one by one takes longer than to print them.
Copies const& keptCopies() {
    static std::vector<std::unique_ptr<Copies>>& kept =
        *std::make_unique<std::vector<std::unique_ptr<Copies>>>().release();
    return *kept.emplace_back(std::make_unique<Copies>());
}

Status list(CommandLine const& line) {
    Copies const& copies = keptCopies();
    bool isFinished = false;
    int const beeps = beepsDuring([&] {
        ProgressLine progress;
        isFinished = copies.search([&](std::size_t found) { progress.tell(found); });
    });
    if (!isFinished) {
        complain(localized("the search could not be started"));
        return Status::Failed;
    }
    tellUnreadable(copies);
    Status const status =
        worse(statusOfReading(beeps, copies.controller()), print(listing(copies.records(), line.form)));
    // By now whoever reads the list line by line has it.
    copies.finishSearch();
    return status;
}

// The paths that the source in question knows, without a search.
Status listSource(CommandLine const& line) {
    Copies const copies;
    bool const isLogin = line.verb == Verb::Login;
    int const beeps = beepsDuring([&] {
        if (isLogin)
            copies.controller().syncIsAutolaunched();
        else
            copies.controller().syncIsInToolbar();
    });
    copies.look(NSArray::array());
    return worse(statusOfReading(beeps, copies.controller()), print(listing(copies.records(), line.form)));
}

Status inform(CommandLine const& line) {
    Copies const copies;
    Status status = statusOfReading(beepsDuring([&] { copies.readSources(); }), copies.controller());
    std::vector<NSString> paths;
    NSMutableArray const present = NSMutableArray::array();
    for (std::string const& given : line.paths) {
        paths.push_back(absolutePath(given));
        if (isCopyAt(paths.back())) present.addObject_(paths.back());
    }
    copies.look(present);
    NSMutableArray const records = NSMutableArray::array();
    std::vector<Outcome> missing;
    for (NSString const& path : paths) {
        NSDictionary const record = copies.recordOf(path);
        if (record != nil)
            records.addObject_(record);
        else
            missing.push_back({path, Status::NoSuchCopy, nil, NSString("no copy of Mirror Frame is there")});
    }
    tellPeople(complaints(missing));
    if (!missing.empty()) status = worse(status, Status::NoSuchCopy);
    return worse(status, records.count() == 0 ? Status::Done : print(details(records, line.form)));
}

// Deleting cannot be taken back: it wants --yes, or an answer from a terminal.
bool isConfirmed(CommandLine const& line, std::vector<Target> const& targets) {
    if (line.verb != Verb::Delete || line.confirmation == Confirmation::IsGiven) return true;
    if (!isTerminal(StandardStream::Input) || !isTerminal(StandardStream::Errors)) {
        complain(localized("delete without a terminal needs --yes"));
        return false;
    }
    for (Target const& target : targets)
        tellPeople("  " + visibleLine(target.path.codeUnits()) + "\n");
    // The letter is y in every language, and the translations say so.
    tellPeople(localized("Delete for good? [y/N]") + " ");
    int const answer = std::getchar();
    return answer == 'y' || answer == 'Y';
}

Status change(CommandLine const& line) {
    std::vector<Target> const targets = targetsOf(line);
    if (!isConfirmed(line, targets)) return Status::NotConfirmed;
    // Quitting and revealing may be interrupted at any moment, and asking a copy to quit may take a minute.
    bool const changesDisk = line.verb != Verb::Quit && line.verb != Verb::Reveal;
    if (changesDisk) holdInterruptions();
    bool const isForPrograms = line.form == OutputForm::JSON;
    // Reasons that are put together while acting stay in English then.
    if (isForPrograms) loadLocalization("", {});
    std::vector<Outcome> const outcomes = act(line, targets, Copies());
    if (isForPrograms) loadLocalization();
    tellPeople(complaints(outcomes));
    Status status = Status::Done;
    for (Outcome const& outcome : outcomes)
        status = worse(status, outcome.status);
    return worse(status, print(results(outcomes, line.form)));
}

// Failed if a host gave no complete answer, or there is no host; all are in the report nevertheless.
Status report(CommandLine const& line) {
    Result<std::vector<HostFacts>> const hosts = readHosts(line.paths);
    if (!hosts.hasValue() || hosts.value().empty()) {
        std::string const reason = hosts.hasValue() ? "no files of facts are there" : hosts.problem().text();
        tellPeople("framekeeper-cli: " + reason + "\n");
        return Status::Failed;
    }
    std::string const complaints = hostComplaints(hosts.value());
    tellPeople(complaints);
    Status const status = complaints.empty() ? Status::Done : Status::Failed;
    bool const isForSpreadsheets = line.form == OutputForm::CSV;
    return worse(status, print(isForSpreadsheets ? hostRows(hosts.value()) : hostPage(hosts.value())));
}

std::string versionText() { return std::string("framekeeper-cli ") + FRAMEKEEPER_VERSION + "\n"; }

Status carryOut(CommandLine const& line) {
    if (line.verb == Verb::Help) return print(usageText());
    if (line.verb == Verb::Version) return print(versionText());
    if (line.verb == Verb::List) return list(line);
    if (line.verb == Verb::Info) return inform(line);
    if (line.verb == Verb::Report) return report(line);
    return isAction(line) ? change(line) : listSource(line);
}

} // namespace

int runCommand(std::vector<std::string> const& words) {
    prepareStandardStreams();
    setBeepSound([] {});
    loadLocalization();
    Result<CommandLine, Failure> const line = readCommandLine(words);
    if (line.hasValue()) return exitStatusOf(carryOut(line.value()));
    NSString const reason = NSString::stringWithFileSystemRepresentation_(line.problem().reason);
    complain(visibleLine(reason.codeUnits()));
    tellPeople(usageText());
    return 2;
}

} // namespace framekeeper
