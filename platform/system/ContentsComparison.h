#pragma once

#include <stop_token>
#include <string>

namespace mac {

// haveEqualContents of FolderContents.h, which answers false also if it was asked to stop before the end. Any thread.
bool haveEqualContents(std::string const& path, std::string const& otherPath, std::stop_token const& stop);

} // namespace mac
