#include "platform/desktop/places/Places.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileWriting.h"
#include "platform/system/LongPath.h"
#include "platform/system/Users.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/items/TreeRemoval.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <span>
#include <string_view>

namespace mac {

namespace {

// Longer files are left alone. A thousand places take about a tenth of it.
constexpr std::size_t LargestPlacesFile = std::size_t{4} << 20;
// How often a change is begun anew because the file changed meanwhile.
constexpr int MostAttempts = 10;

PlacesFormat const& formatOf(PlacesList list) { return list == PlacesList::GTK ? BookmarksFormat : XBELFormat; }

PlacesProblem systemProblem(SystemError const& error, std::string const& file) {
    return {.kind = PlacesProblem::Kind::System, .file = file, .cause = error};
}

PlacesProblem formProblem(std::string const& file, Failure const& failure) {
    return {.kind = PlacesProblem::Kind::Form, .file = file, .reason = failure.reason};
}

PlacesProblem changedProblem(std::string const& file) { return {.kind = PlacesProblem::Kind::Changed, .file = file}; }

// A file's text and state; the state is nullopt if there is no file.
struct PlacesText {
    std::string text{};
    std::optional<FileStatus> state{};
};

Result<PlacesText> readText(std::string const& file) {
    Result<FileContents> const contents = readFileAtPath(file, LargestPlacesFile);
    if (!contents.hasValue() && contents.problem().is(ENOENT)) return PlacesText();
    if (!contents.hasValue()) return contents.problem();
    std::vector<std::byte> const& bytes = contents.value().bytes;
    return PlacesText{.text = std::string(reinterpret_cast<char const*>(bytes.data()), bytes.size()),
                      .state = contents.value().status};
}

std::string bookmarksFile() { return BytePath(configHome()).joined("gtk-3.0/bookmarks"); }

std::string formerBookmarksFile() { return BytePath(ownHomeFolder()).joined(".gtk-bookmarks"); }

std::string fileOfList(PlacesList list) {
    return list == PlacesList::GTK ? bookmarksFile() : BytePath(dataHome()).joined("user-places.xbel");
}

bool isMissing(std::string const& file) {
    Result<FileStatus> const status = fileStatusAtPath(file);
    return !status.hasValue() && status.problem().is(ENOENT);
}

bool isMissingOrEmpty(std::string const& file) {
    Result<FileStatus> const status = fileStatusAtPath(file);
    return isMissing(file) || (status.hasValue() && status.value().size == 0);
}

// The file that a new entry goes to. A file of its own would hide the former one from browsers.
std::string fileForNew(PlacesList list) {
    std::string file = fileOfList(list);
    bool const isFormer = list == PlacesList::GTK && isMissing(file) && !isMissing(formerBookmarksFile());
    return isFormer ? formerBookmarksFile() : file;
}

std::string fileForRestored(Place const& place) { return isMissing(place.file) ? fileForNew(place.list) : place.file; }

void readList(PlacesList list, std::string const& file, KnownPlaces& known) {
    Result<PlacesText> const read = readText(file);
    if (!read.hasValue()) {
        known.problems.push_back(systemProblem(read.problem(), file));
        return;
    }
    if (!read.value().state) return;
    std::string const& text = read.value().text;
    Result<PlaceEntries, Failure> const entries = formatOf(list).read(text);
    if (!entries.hasValue()) {
        known.problems.push_back(formProblem(file, entries.problem()));
        return;
    }
    for (PlaceEntry const& entry : entries.value().entries)
        known.places.push_back({.list = list,
                                .uri = entry.uri,
                                .label = entry.label,
                                .file = file,
                                .text = text.substr(entry.begin, entry.end - entry.begin)});
}

// The part of a change that is made in one file.
struct FileChange {
    PlacesList list;
    std::string file;
    std::vector<Place const*> removed{};
    std::vector<RemovedPlace const*> restored{};
    std::vector<Place const*> added{};
};

std::vector<FileChange> byFile(PlacesChange const& change) {
    std::vector<FileChange> changes;
    auto const changeOf = [&](PlacesList list, std::string const& file) -> FileChange& {
        auto const found = std::ranges::find(changes, file, &FileChange::file);
        return found != changes.end() ? *found : changes.emplace_back(FileChange{.list = list, .file = file});
    };
    for (Place const& place : change.removed)
        changeOf(place.list, place.file).removed.push_back(&place);
    for (RemovedPlace const& restored : change.restored)
        changeOf(restored.place.list, fileForRestored(restored.place)).restored.push_back(&restored);
    for (Place const& place : change.added)
        changeOf(place.list, fileForNew(place.list)).added.push_back(&place);
    return changes;
}

// What has become of a place since it was read: its very entry is looked for first, then another one with its URI and
// label, since a browser may have written its whole list anew.
enum class Presence { Gone, Changed, There };
struct Found {
    Presence presence;
    std::size_t index{0};
};

Found find(Place const& place, std::string_view text, std::vector<PlaceEntry> const& entries) {
    Found found{Presence::Gone};
    for (std::size_t index = 0; index < entries.size(); ++index) {
        PlaceEntry const& entry = entries[index];
        if (entry.uri != place.uri) continue;
        if (text.substr(entry.begin, entry.end - entry.begin) == place.text) return {Presence::There, index};
        if (found.presence == Presence::There) continue;
        found = entry.label == place.label ? Found{Presence::There, index} : Found{Presence::Changed};
    }
    return found;
}

using Removals = Result<std::vector<RemovedPlace>, PlacesProblem>;

Result<void, PlacesProblem> remove(FileChange const& change, Place const& place, std::string& text,
                                   std::vector<RemovedPlace>& removed) {
    PlacesFormat const& format = formatOf(change.list);
    Result<PlaceEntries, Failure> const read = format.read(text);
    if (!read.hasValue()) return formProblem(change.file, read.problem());
    Found const found = find(place, text, read.value().entries);
    if (found.presence == Presence::Gone) return {};
    if (found.presence == Presence::Changed) return changedProblem(change.file);
    Result<RemovedEntry, Failure> entry = removeEntry(format, text, found.index);
    if (!entry.hasValue()) return formProblem(change.file, entry.problem());
    removed.push_back({.place = place, .entry = entry.takeValue()});
    return {};
}

// Makes the change in the text; answers what was removed.
Removals edit(FileChange const& change, std::string& text) {
    PlacesFormat const& format = formatOf(change.list);
    std::vector<RemovedPlace> removed;
    for (Place const* const place : change.removed) {
        Result<void, PlacesProblem> const outcome = remove(change, *place, text, removed);
        if (!outcome.isDone()) return outcome.problem();
    }
    // The last one removed stood where the others are gone.
    for (std::size_t count = change.restored.size(); count > 0; --count) {
        Result<void, Failure> const outcome = restoreEntry(format, text, change.restored[count - 1]->entry);
        if (!outcome.isDone()) return formProblem(change.file, outcome.problem());
    }
    for (Place const* const place : change.added) {
        Result<void, Failure> const outcome = addEntry(format, text, place->uri, place->label);
        if (!outcome.isDone()) return formProblem(change.file, outcome.problem());
    }
    return removed;
}

// Replaces the file unless it is no longer as it was read; EAGAIN or EEXIST then.
Result<void> replace(std::string const& file, PlacesText const& old, std::string const& text) {
    FileReplacement const how{
        .hasToBe = true, .state = old.state, .beforeRenaming = [&](FileDescriptor const&) -> Result<void> {
            Result<PlacesText> const now = readText(file);
            if (!now.hasValue()) return now.problem();
            bool const isSame = now.value().text == old.text && now.value().state.has_value() == old.state.has_value();
            if (isSame) return {};
            return SystemError{.code = EAGAIN, .operation = "replace", .item = file};
        }};
    return replaceFileAtPath(file, std::as_bytes(std::span(text)), how);
}

// A file that was replaced, with what takes that back.
struct ChangedFile {
    std::string file{};
    PlacesText before{};
    // Empty if there was nothing to write.
    std::optional<std::string> written{};
    std::vector<RemovedPlace> removed{};
};

std::string textToChange(PlacesText const& text, PlacesList list) {
    return text.state ? text.text : std::string(formatOf(list).emptyFile);
}

Result<ChangedFile, PlacesProblem> changeFile(FileChange const& change, PlacesSteps const& steps) {
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        Result<PlacesText> const old = readText(change.file);
        if (!old.hasValue()) return systemProblem(old.problem(), change.file);
        std::string text = textToChange(old.value(), change.list);
        std::string const before = text;
        Removals removed = edit(change, text);
        if (!removed.hasValue()) return removed.problem();
        ChangedFile changed{.file = change.file, .before = old.value(), .removed = removed.takeValue()};
        if (text == before) return changed;
        if (steps.beforeReplacing) steps.beforeReplacing(change.file);
        Result<void> const folder =
            old.value().state ? Result<void>() : makeFolderAtPath(BytePath(change.file).parent());
        if (!folder.isDone()) return systemProblem(folder.problem(), change.file);
        Result<void> const replaced = replace(change.file, old.value(), text);
        if (replaced.isDone()) {
            changed.written = std::move(text);
            return changed;
        }
        bool const isOvertaken = replaced.problem().is(EAGAIN) || replaced.problem().is(EEXIST);
        if (!isOvertaken) return systemProblem(replaced.problem(), change.file);
    }
    return changedProblem(change.file);
}

// Why the change cannot be made in the file as it is now.
std::optional<PlacesProblem> obstacle(FileChange const& change) {
    Result<PlacesText> const now = readText(change.file);
    if (!now.hasValue()) return systemProblem(now.problem(), change.file);
    std::string text = textToChange(now.value(), change.list);
    Removals const edited = edit(change, text);
    return edited.hasValue() ? std::nullopt : std::optional(edited.problem());
}

// Removes the file if it is still the one that was read.
Result<void> removeFile(std::string const& file, FileStatus const& expected) {
    Result<FileDescriptor> const folder = openPath(BytePath(file).parent(), O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) return folder.problem();
    std::string const name(BytePath(file).leaf());
    Result<ItemStatus> const status = statusOf(folder.value(), name);
    if (!status.hasValue()) return status.problem();
    Result<FileStatus> const now = fileStatusInFolder(folder.value(), name);
    if (!now.hasValue()) return now.problem();
    if (now.value() != expected) return SystemError{.code = ESTALE, .operation = "remove", .item = file};
    return removeExactly(folder.value(), name, status.value());
}

// Gives the file its text from before the change, unless another program has written it since.
Result<void, PlacesProblem> takeBack(ChangedFile const& changed) {
    if (!changed.written) return {};
    Result<PlacesText> const now = readText(changed.file);
    if (!now.hasValue()) return systemProblem(now.problem(), changed.file);
    if (!now.value().state || now.value().text != *changed.written) return changedProblem(changed.file);
    Result<void> const back = changed.before.state ? replace(changed.file, now.value(), changed.before.text)
                                                   : removeFile(changed.file, *now.value().state);
    return back.isDone() ? Result<void, PlacesProblem>() : systemProblem(back.problem(), changed.file);
}

} // namespace

KnownPlaces readPlaces() {
    KnownPlaces known;
    readList(PlacesList::GTK, bookmarksFile(), known);
    if (isMissingOrEmpty(bookmarksFile())) readList(PlacesList::GTK, formerBookmarksFile(), known);
    readList(PlacesList::KDE, fileOfList(PlacesList::KDE), known);
    return known;
}

PlacesOutcome changePlaces(PlacesChange const& change, PlacesSteps const& steps) {
    PlacesOutcome outcome;
    std::vector<FileChange> const files = byFile(change);
    for (FileChange const& each : files) {
        if (std::optional<PlacesProblem> problem = obstacle(each)) outcome.problems.push_back(*std::move(problem));
    }
    if (!outcome.problems.empty()) return outcome;
    std::vector<ChangedFile> changed;
    for (FileChange const& each : files) {
        Result<ChangedFile, PlacesProblem> made = changeFile(each, steps);
        if (!made.hasValue()) {
            outcome.problems.push_back(made.problem());
            break;
        }
        changed.push_back(made.takeValue());
    }
    bool const isDone = outcome.problems.empty();
    for (ChangedFile& each : changed) {
        Result<void, PlacesProblem> const back = isDone ? Result<void, PlacesProblem>() : takeBack(each);
        if (!isDone && back.isDone()) continue;
        if (!back.isDone()) outcome.problems.push_back(back.problem());
        std::ranges::move(each.removed, std::back_inserter(outcome.removed));
    }
    return outcome;
}

} // namespace mac
