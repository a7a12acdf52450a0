#pragma once

#include "platform/icons/IconSource.h"

namespace mac {

// Drawn by this program, in a square of so many pixels: what stands for an item without a picture. Any thread.
Picture drawGenericPicture(IconSource::Generic generic, int side);

} // namespace mac
