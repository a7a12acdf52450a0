#pragma once

#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/text/NSString.h"
#include <cstdint>
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

// Values as people of the user's locale write them. For implementations; any thread.

// Day and time, local: "22/11/2026 14:05" in the locale's short form. Nil for nil.
NSString localizedDate(NSDate const& date);
// With a unit of powers of 1000: "12.3 MB".
NSString localizedSize(std::uint64_t bytes);

} // namespace mac
