#include "platform/icons/PictureToolkit.h"
#include "platform/foundation/running/Log.h"
#include <dlfcn.h>

namespace mac {

namespace {

// In the folder of the library that this source is part of.
constexpr char ModulePath[] = "framekeeper/framekeeper-pictures.so";

constexpr PictureToolkit NoToolkit{
    .picturesInImageFile = [](std::span<std::byte const>) { return std::vector<Picture>(); },
    .pictureInPNG = [](std::span<std::byte const>, int) { return std::optional<Picture>(); },
    .pictureOfDrawing = [](std::span<std::byte const>, int) { return std::optional<Picture>(); },
    .contentsOfPNG = [](Picture const&) { return std::vector<std::byte>(); },
    .scaledPicture = [](Picture const&, int width, int height) { return emptyPicture(width, height); },
    .drawPicture = [](Picture&, NSRect const&, Picture const&) {},
    .genericPicture = [](IconSource::Generic, int side) { return emptyPicture(side, side); },
    .readableMIMETypes = [] { return std::vector<std::string>(); },
    .iconThemeName = [] { return std::string(); },
};

PictureToolkit const* registeredToolkit = nullptr;

std::string modulePath() {
    Dl_info library{};
    if (::dladdr(&NoToolkit, &library) == 0 || !library.dli_fname) return ModulePath;
    std::string const path = library.dli_fname;
    return path.substr(0, path.rfind('/') + 1) + ModulePath;
}

// The module registers its functions while it is loaded. It stays: what it made is in use until the program ends.
PictureToolkit const& findToolkit() {
    if (!registeredToolkit && !::dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL))
        NSLog("no picture can be read or drawn: %s", ::dlerror());
    return registeredToolkit ? *registeredToolkit : NoToolkit;
}

} // namespace

void setPictureToolkit(PictureToolkit const& toolkit) { registeredToolkit = &toolkit; }

PictureToolkit const& pictureToolkit() {
    static PictureToolkit const& toolkit = findToolkit();
    return toolkit;
}

} // namespace mac
