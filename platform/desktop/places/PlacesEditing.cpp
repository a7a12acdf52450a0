#include "platform/desktop/places/PlacesFormat.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <algorithm>
#include <optional>

namespace mac {

namespace {

using EntryNames = std::vector<std::pair<std::string, std::string>>;

EntryNames namesOf(std::vector<PlaceEntry> const& entries) {
    EntryNames names;
    for (PlaceEntry const& entry : entries)
        names.emplace_back(entry.uri, entry.label);
    return names;
}

// Whether the text reads as these entries and no others.
bool readsAs(PlacesFormat const& format, std::string_view text, EntryNames const& names) {
    Result<PlaceEntries, Failure> const read = format.read(text);
    return read.hasValue() && namesOf(read.value().entries) == names;
}

// The text with the entry between its two parts; nullopt if that does not add just this entry, as inside a comment.
std::optional<std::string> textAround(PlacesFormat const& format, std::string_view before, std::string_view after,
                                      PlaceEntries const& old, RemovedEntry const& entry) {
    EntryNames names = namesOf(old.entries);
    auto const isBefore = [&](PlaceEntry const& each) { return each.end <= before.size(); };
    auto const count = std::ranges::count_if(old.entries, isBefore);
    names.emplace(names.begin() + count, entry.uri, entry.label);
    std::string result = format.joined(before, entry.text, after);
    return readsAs(format, result, names) ? std::optional(std::move(result)) : std::nullopt;
}

std::optional<std::string> textWith(PlacesFormat const& format, std::string_view text, PlaceEntries const& old,
                                    std::size_t position, RemovedEntry const& entry) {
    if (position > text.size()) return std::nullopt;
    return textAround(format, text.substr(0, position), text.substr(position), old, entry);
}

PlaceEntry const* nearestOf(EntryNames const& names, PlaceEntries const& entries) {
    for (auto const& [uri, label] : names) {
        for (PlaceEntry const& entry : entries.entries) {
            if (entry.uri == uri && entry.label == label) return &entry;
        }
    }
    return nullptr;
}

// Where the entry may go, the best position first.
std::vector<std::size_t> positionsFor(RemovedEntry const& entry, std::string_view text, PlaceEntries const& old) {
    std::vector<std::size_t> positions;
    if (text.starts_with(entry.before)) positions.push_back(entry.before.size());
    if (text.ends_with(entry.after)) positions.push_back(text.size() - entry.after.size());
    PlaceEntry const* const before = nearestOf(entry.entriesBefore, old);
    if (before) positions.push_back(before->end);
    PlaceEntry const* const after = nearestOf(entry.entriesAfter, old);
    if (after) positions.push_back(after->begin);
    positions.push_back(old.endOfList);
    return positions;
}

} // namespace

Result<RemovedEntry, Failure> removeEntry(PlacesFormat const& format, std::string& text, std::size_t index) {
    Result<PlaceEntries, Failure> const read = format.read(text);
    if (!read.hasValue()) return read.problem();
    std::vector<PlaceEntry> const& entries = read.value().entries;
    if (index >= entries.size()) return Failure{localizable("there is no such entry")};
    PlaceEntry const& entry = entries[index];
    EntryNames names = namesOf(entries);
    auto const position = names.begin() + static_cast<std::ptrdiff_t>(index);
    RemovedEntry removed{.uri = entry.uri,
                         .label = entry.label,
                         .text = text.substr(entry.begin, entry.end - entry.begin),
                         .before = text.substr(0, entry.begin),
                         .after = text.substr(entry.end),
                         .entriesBefore = EntryNames(names.begin(), position),
                         .entriesAfter = EntryNames(position + 1, names.end())};
    std::ranges::reverse(removed.entriesBefore);
    names.erase(position);
    std::string rest = format.joined(removed.before, "", removed.after);
    if (!readsAs(format, rest, names)) return Failure{localizable("the entry cannot be taken out")};
    text = std::move(rest);
    return removed;
}

Result<void, Failure> restoreEntry(PlacesFormat const& format, std::string& text, RemovedEntry const& entry) {
    Result<PlaceEntries, Failure> const read = format.read(text);
    if (!read.hasValue()) return read.problem();
    std::optional<std::string> whole;
    bool const isUnchanged = text == format.joined(entry.before, "", entry.after);
    if (isUnchanged) whole = textAround(format, entry.before, entry.after, read.value(), entry);
    for (std::size_t const position : positionsFor(entry, text, read.value())) {
        if (!whole) whole = textWith(format, text, read.value(), position, entry);
    }
    if (!whole) return Failure{localizable("the entry cannot be put back")};
    text = std::move(*whole);
    return {};
}

Result<void, Failure> addEntry(PlacesFormat const& format, std::string& text, std::string_view uri,
                               std::string_view label) {
    std::string const entry = format.textOfEntry(uri, label);
    // The label as it will be read.
    Result<PlaceEntries, Failure> const alone = format.read(format.emptyFile);
    if (!alone.hasValue()) return alone.problem();
    std::string_view const frame = format.emptyFile;
    std::size_t const end = alone.value().endOfList;
    Result<PlaceEntries, Failure> const written =
        format.read(format.joined(frame.substr(0, end), entry, frame.substr(end)));
    if (!written.hasValue()) return written.problem();
    if (written.value().entries.size() != 1) return Failure{localizable("there is no such place")};

    Result<PlaceEntries, Failure> const read = format.read(text);
    if (!read.hasValue()) return read.problem();
    PlaceEntry const& added = written.value().entries.front();
    RemovedEntry const last{.uri = added.uri,
                            .label = added.label,
                            .text = entry,
                            .before = text.substr(0, std::min(read.value().endOfList, text.size())),
                            .after = {},
                            .entriesBefore = {},
                            .entriesAfter = {}};
    return restoreEntry(format, text, last);
}

} // namespace mac
