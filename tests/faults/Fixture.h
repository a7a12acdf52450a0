#pragma once

#include "tests/faults/Snapshot.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac::faults {

// The folders in which operations run: "w" and "o" on one volume, "data" with the trash, and, if there is one, a folder
// on a second volume, "2". The environment names them as the user's home for as long as the object lives.
class Fixture {
public:
    // Both folders exist and are empty; the second may be missing.
    Fixture(std::string volume, std::optional<std::string> secondVolume);
    ~Fixture();
    Fixture(Fixture const&) = delete;
    Fixture& operator=(Fixture const&) = delete;

    bool hasSecondVolume() const { return m_second.has_value(); }
    // Whether the file system exchanges two names in one step.
    bool canExchangeNames() const;
    bool canKeepAttributes() const;
    // The absolute path of "w/x", "2/x" and so on.
    std::string path(std::string_view relative) const;

    // Removes all, and makes the folders and the canary.
    void reset() const;
    Snapshot snapshot() const;

    // These end the program with a reason if the item cannot be made: a campaign on half a fixture tells nothing. Makes
    // a file with the date of all fixtures whose text holds a secret of its path, readable by its owner alone.
    void makeFile(std::string_view relative, std::string_view text = {}, unsigned mode = 0600) const;
    // Makes a file of exactly that text.
    void makeText(std::string_view relative, std::string_view contents, unsigned mode) const;
    void makeFolder(std::string_view relative, unsigned mode = 0755) const;
    void makeLink(std::string_view relative, std::string const& target) const;
    // False if the volume has no attributes.
    bool setAttribute(std::string_view relative, char const* name, std::string const& value) const;
    // Makes the item another user's and another group's, as root; other users cannot.
    void giveAway(std::string_view relative) const;
    // What is made in the folder from now on may be read by another user, too, where the volume knows access lists.
    void shareByDefault(std::string_view folder) const;
    // Makes a trash, for operations that find one.
    void makeTrash() const;
    // Puts the item of the trash's folder "files" on record as one that came from "w".
    void recordTrashed(std::string_view name) const;
    // Makes an AppleDouble sidecar beside the item, with an attribute that holds a secret.
    void makeSidecar(std::string_view folder, std::string_view item) const;

private:
    void remove(std::string const& folder) const;

    std::string m_volume;
    std::optional<std::string> m_second;
};

} // namespace mac::faults
