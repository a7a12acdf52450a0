#pragma once

#include "platform/icons/IconSource.h"
#include "platform/icons/Picture.h"
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace mac {

// What the toolkit does for pictures: it reads, draws, scales and writes them. Its library brings in those of displays
// and fonts, which take longer to load than a list of copies takes to make. So the installed library has these
// functions in a module of its own and loads it when the first of them is called; what is linked with the rooms has
// them linked, too. Each is as the function of its name says (Picture.h). For implementations; any thread.
struct PictureToolkit {
    std::vector<Picture> (*picturesInImageFile)(std::span<std::byte const> bytes);
    std::optional<Picture> (*pictureInPNG)(std::span<std::byte const> bytes, int largestSide);
    std::optional<Picture> (*pictureOfDrawing)(std::span<std::byte const> bytes, int side);
    std::vector<std::byte> (*contentsOfPNG)(Picture const& picture);
    Picture (*scaledPicture)(Picture const& picture, int width, int height);
    void (*drawPicture)(Picture& onto, NSRect const& place, Picture const& picture);
    // Drawn by this program, in a square of so many pixels.
    Picture (*genericPicture)(IconSource::Generic generic, int side);
    // The MIME types of images for which a reader is installed.
    std::vector<std::string> (*readableMIMETypes)();
    // The icon theme that the desktop tells the toolkit; empty without an application object.
    std::string (*iconThemeName)();
};

// For registerPictures.
void setPictureToolkit(PictureToolkit const& toolkit);

// Where the module cannot be loaded, which is logged once, one that knows no formats and draws transparent pictures.
PictureToolkit const& pictureToolkit();

} // namespace mac
