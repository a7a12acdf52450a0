#pragma once

#include "platform/files/CatalogInformation.h"
#include <optional>

namespace mac {

class FileDescriptor;
struct MountedVolume;

// The numbers by which volumes are referred to: one for each as long as it is mounted, and not given to another one
// before there were 32,000. For implementations; any thread.

FSVolumeRefNum numberOfVolume(MountedVolume const& volume);
// Nothing for what lies on none; errno says why.
std::optional<FSVolumeRefNum> numberOfVolumeOf(FileDescriptor const& item);

} // namespace mac
