#pragma once

#include <string>
#include <vector>

namespace mac {

// Loads the catalogue from which NSLocalizedString and the toolkit's interface files take their texts, in place of the
// one loaded before: that of the first of the languages for which the folder has one. English needs none. Answers the
// language ("de"), empty for English. An application object that exists by then takes the catalogue of the toolkit's
// own texts as well. Main thread, before other threads ask for texts.
std::string loadLocalization(std::string const& folder, std::vector<std::string> const& languages);

// For the user's languages (UserLanguages.h), from the program's catalogues.
std::string loadLocalization();

// Where the program's catalogues lie: share/framekeeper/translations in one of the folders above the program, which
// finds the folder of an installed program as that of a build tree. Empty if there is none.
std::string localizationFolder(std::string const& program);

} // namespace mac
