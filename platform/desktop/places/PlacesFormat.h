#pragma once

#include "platform/system/Result.h"
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The text of the files in which file browsers keep the user's places: what is an entry, and entries taken out and put
// back while every other byte stays. For implementations; any thread.

namespace mac {

// An entry and the stretch of the file's text that holds it.
struct PlaceEntry {
    // The address in UTF-8, with XML's references resolved; mostly percent-escaped, never empty.
    std::string uri;
    // The name for people; empty if the entry has none.
    std::string label;
    // The blanks before an element, or the end of a line, belong to the entry.
    std::size_t begin;
    std::size_t end;

    bool isNamed(PlaceEntry const& other) const { return uri == other.uri && label == other.label; }
};

// The entries of a file in its order.
struct PlaceEntries {
    std::vector<PlaceEntry> entries;
    // Where the text of another entry goes.
    std::size_t endOfList;
};

// The two forms of such a file.
struct PlacesFormat {
    // Fails for a text that is not in the form, which must not be changed then, and for one with too many entries.
    Result<PlaceEntries, Failure> (*read)(std::string_view text);
    // A new entry; line ends and NUL in the label become blanks. REQUIRES: the URI is in UTF-8, without blanks.
    std::string (*textOfEntry)(std::string_view uri, std::string_view label);
    // Three parts as one text, with a line feed or a blank between them only where they would read as something else.
    std::string (*joined)(std::string_view before, std::string_view entry, std::string_view after);
    // A file without entries.
    std::string_view emptyFile;
};

inline constexpr std::size_t MostPlaces = 10'000;

// Lines of a URI and, behind a blank, a label: the bookmarks of GTK. Lines that are not in UTF-8, hold a NUL or begin
// with no URI are no entries.
extern PlacesFormat const BookmarksFormat;
// XBEL, as KDE writes it: the "bookmark" elements right below the root, but for those that the user has hidden. Refused
// are other encodings than UTF-8, definitions of entities, elements nested more than 64 deep, and tags with more than
// 100 attributes.
extern PlacesFormat const XBELFormat;

// An entry that was taken out of a file, and what stood around it.
struct RemovedEntry {
    std::string uri;
    std::string label;
    // The very text of the entry, and all of the text before and after it.
    std::string text;
    std::string before;
    std::string after;
    // URI and label of the entries before it and after it, the nearest first.
    std::vector<std::pair<std::string, std::string>> entriesBefore;
    std::vector<std::pair<std::string, std::string>> entriesAfter;
};

// Takes the entry out of the text; the rest of the text stays as it is, with a blank in place of the entry if the rest
// were no text of the form without it. Fails if the rest does not read as the other entries.
Result<RemovedEntry, Failure> removeEntry(PlacesFormat const& format, std::string& text, std::size_t index);

// Puts an entry back as it was: the text is as before if it did not change meanwhile; else it goes beside the nearest
// of the entries that stood around it, or to the end of the list. Fails if the text is not in the form.
Result<void, Failure> restoreEntry(PlacesFormat const& format, std::string& text, RemovedEntry const& entry);

// Adds an entry at the end of the list. Fails if the text is not in the form.
Result<void, Failure> addEntry(PlacesFormat const& format, std::string& text, std::string_view uri,
                               std::string_view label);

} // namespace mac
