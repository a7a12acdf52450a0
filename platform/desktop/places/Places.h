#pragma once

#include "platform/desktop/places/PlacesFormat.h"
#include "platform/system/SystemError.h"
#include <functional>
#include <optional>
#include <string>
#include <vector>

// The user's places, which the file browsers of the desktop show beside their folders, in the files that the browsers
// keep them in. Browsers watch these files and rewrite them whole, without a lock. For implementations; main thread.

namespace mac {

enum class PlacesList {
    // $XDG_CONFIG_HOME/gtk-3.0/bookmarks; ~/.gtk-bookmarks if that is missing or empty, as browsers do.
    GTK,
    // $XDG_DATA_HOME/user-places.xbel.
    KDE,
};

struct Place {
    PlacesList list;
    // The address as the list has it, mostly percent-escaped; UTF-8.
    std::string uri;
    // The name for people in UTF-8; empty if the browser makes one.
    std::string label;
    // The file and the very text of the entry in it; both empty for a new place.
    std::string file{};
    std::string text{};
};

struct PlacesProblem {
    enum class Kind {
        // The system refused to read or write the file.
        System,
        // The file is not in its form, so that it cannot be changed without loss.
        Form,
        // The place is not as it was read, or the file changes all the time.
        Changed,
    };

    Kind kind;
    std::string file;
    // Why the file is not in its form, in English and UTF-8, mostly a key of the catalogues; empty for the other kinds.
    std::string reason{};
    std::optional<SystemError> cause{};
};

struct KnownPlaces {
    // GTK's and then KDE's, in the order of their files.
    std::vector<Place> places;
    // Why a list could not be read; a file that does not exist is an empty list.
    std::vector<PlacesProblem> problems;
};

// Reads the files anew.
KnownPlaces readPlaces();

// A place that was removed, with all that it takes to put it back.
struct RemovedPlace {
    Place place;
    RemovedEntry entry;
};

struct PlacesChange {
    // The places to remove, as they were read. A place that is missing already counts as removed.
    std::vector<Place> removed{};
    // Places that were removed before; they get their old position back.
    std::vector<RemovedPlace> restored{};
    // At the end of their lists.
    std::vector<Place> added{};
};

struct PlacesOutcome {
    // In the order of their removal, what was removed and stays so.
    std::vector<RemovedPlace> removed{};
    // Empty if the whole change was made.
    std::vector<PlacesProblem> problems{};
};

struct PlacesSteps {
    // Called before a file is replaced, with its path.
    std::function<void(std::string const& file)> beforeReplacing{};
};

// Changes the lists, each by one rename; what is not part of the change stays byte for byte, and so do entries that
// others added meanwhile. The file is read again right before the rename, and the change is made anew if it differs.
// Only what a browser writes between that reading and the rename, a matter of microseconds, is lost; there is no lock
// that browsers know. All lists are changed or none: nothing is written if one of them cannot be changed, and if a
// later one cannot be written, the earlier ones get their texts back; a list that another program has written since
// stays changed, which is a problem of its own.
PlacesOutcome changePlaces(PlacesChange const& change, PlacesSteps const& steps = {});

} // namespace mac
