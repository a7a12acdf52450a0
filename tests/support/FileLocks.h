#pragma once

#include <string>

namespace mac::test {

class TemporaryFolder;

// Whether files in the folder can be made immutable: only root may, and not every file system keeps that of a file.
bool canLockFilesIn(TemporaryFolder const& folder);

// Makes the file immutable, or ends that; answers whether the system did.
bool setLocked(std::string const& file, bool isLocked);

} // namespace mac::test
