#include "fuzz/Trials.h"
#include "platform/desktop/places/PlacesFormat.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

// Each entry costs a few readings of the whole text.
constexpr std::size_t MostEntriesTried = 8;

// The text without the entry: no other byte changes, but a blank parts "]]" and ">" in XML, which forbids them
// together.
std::string restAround(RemovedEntry const& entry, bool isXML) {
    std::size_t const seam = entry.before.size();
    std::string const rest = entry.before + entry.after;
    std::size_t const end = isXML ? rest.find("]]>", seam < 2 ? 0 : seam - 2) : std::string::npos;
    return end < seam && seam < end + 3 ? entry.before + " " + entry.after : rest;
}

std::string complaintAboutEntry(PlacesFormat const& format, std::string_view text, std::size_t index) {
    std::string changed(text);
    Result<RemovedEntry, Failure> const removed = removeEntry(format, changed, index);
    if (!removed.hasValue()) return "an entry cannot be taken out: " + removed.problem().reason;
    RemovedEntry const& entry = removed.value();
    if (changed != restAround(entry, &format == &XBELFormat)) return "the rest is changed";
    if (entry.before + entry.text + entry.after != text) return "the entry is changed";
    if (!restoreEntry(format, changed, entry).isDone()) return "an entry cannot be put back";
    if (changed != text) return "an entry put back is not where it was";
    return "";
}

std::string complaintAboutNewEntry(PlacesFormat const& format, std::string_view text, PlaceEntries const& old) {
    std::string changed(text);
    bool const hasRoom = old.endOfList <= text.size() && old.entries.size() < MostPlaces;
    bool const isAdded = addEntry(format, changed, "file:///a%20b&c", "a <label>").isDone();
    if (isAdded != hasRoom) return "whether a place can be added is wrong";
    if (!isAdded) return changed == text ? "" : "a text that cannot be changed is changed";
    Result<PlaceEntries, Failure> const read = format.read(changed);
    if (!read.hasValue() || read.value().entries.size() != old.entries.size() + 1) return "the new place is lost";
    PlaceEntry const& added = read.value().entries.back();
    if (added.uri != "file:///a%20b&c" || added.label != "a <label>") return "the new place is another";
    return "";
}

std::string complaintAboutPlaces(PlacesFormat const& format, std::string_view text) {
    Result<PlaceEntries, Failure> const read = format.read(text);
    if (!read.hasValue()) return read.problem().reason.empty() ? "a refusal without reason" : "";
    std::size_t end = 0;
    for (PlaceEntry const& entry : read.value().entries) {
        if (entry.begin < end || entry.end <= entry.begin || entry.end > text.size())
            return "an entry overlaps another one or the end of the text";
        if (entry.uri.empty()) return "an entry has no URI";
        end = entry.end;
    }
    std::size_t const count = std::min(read.value().entries.size(), MostEntriesTried);
    for (std::size_t index = 0; index < count; ++index) {
        std::string const complaint = complaintAboutEntry(format, text, index);
        if (!complaint.empty()) return complaint;
    }
    return complaintAboutNewEntry(format, text, read.value());
}

} // namespace

std::string complaintAboutBookmarks(std::string_view bytes) { return complaintAboutPlaces(BookmarksFormat, bytes); }

std::string complaintAboutXBEL(std::string_view bytes) { return complaintAboutPlaces(XBELFormat, bytes); }

} // namespace mac::fuzz
