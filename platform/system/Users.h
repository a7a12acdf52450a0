#pragma once

#include <optional>
#include <string>

namespace mac {

// The databases of users and groups, and who runs this program. Names and paths are bytes. For implementations; any
// thread.

// nullopt for a number or name that the system does not know.
std::optional<std::string> nameOfUser(unsigned number);
std::optional<std::string> nameOfGroup(unsigned number);
std::optional<unsigned> numberOfUser(std::string const& name);
std::optional<unsigned> numberOfGroup(std::string const& name);

// The home folder that the user database has for a user of that name, without slashes at its end; nullopt for an
// unknown user, and where the database has no absolute path.
std::optional<std::string> homeFolderOfUser(std::string const& name);

// The home folder of this program's user: HOME if that is absolute, else the user database's, else "/". No slashes at
// its end.
std::string ownHomeFolder();

// The name of this program's effective user; the number in decimal digits if the database has none.
std::string ownUserName();

} // namespace mac
