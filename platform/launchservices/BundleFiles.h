#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include <string>
#include <vector>

namespace mac {

// What the files in a bundle say, read anew each time. Paths are the file system's bytes. For implementations; any
// thread.

// Contents/Info.plist; nil where it is not there or is no dictionary.
NSDictionary bundleInformation(std::string const& bundlePath);
// InfoPlist.strings in the first of the languages that the bundle has it in; nil where it has none.
NSDictionary localizedBundleInformation(std::string const& bundlePath, std::vector<std::string> const& languages);
// A property list in a file of at most 4 MiB; nil for what is no dictionary.
NSDictionary dictionaryInFile(std::string const& path);

} // namespace mac
