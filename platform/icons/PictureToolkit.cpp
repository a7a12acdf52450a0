#include "platform/icons/PictureToolkit.h"
#include "platform/foundation/running/Log.h"
#include <atomic>
#include <dlfcn.h>
#include <mutex>
#include <utility>

namespace mac {

namespace {

// In the folder of the library that this source is part of. Named after its version, since the functions between the
// two are of one version: while a newer one is being installed, a program that runs finds none.
constexpr char ModulePath[] = "framekeeper/framekeeper-pictures-" FRAMEKEEPER_VERSION ".so";

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

std::atomic<PictureToolkit const*> registeredToolkit = nullptr;

std::string modulePath() {
    Dl_info library{};
    if (::dladdr(&NoToolkit, &library) == 0 || !library.dli_fname) return ModulePath;
    std::string const path = library.dli_fname;
    return path.substr(0, path.rfind('/') + 1) + ModulePath;
}

// The module registers its functions while it is loaded. It stays: what it made is in use until the program ends.
// Answers why it cannot be loaded if that is new: it may be there the next time, since perhaps no file could be opened.
std::string loadToolkit() {
    static std::mutex mutex;
    static bool isLossKnown = false;
    std::lock_guard const lock(mutex);
    if (registeredToolkit || ::dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL)) return {};
    std::string const reason = ::dlerror();
    return std::exchange(isLossKnown, true) ? std::string() : reason;
}

} // namespace

void setPictureToolkit(PictureToolkit const& toolkit) { registeredToolkit = &toolkit; }

PictureToolkit const& pictureToolkit() {
    std::string const loss = registeredToolkit ? std::string() : loadToolkit();
    if (!loss.empty()) NSLog("no picture can be read or drawn: %s", loss.c_str());
    PictureToolkit const* const toolkit = registeredToolkit;
    return toolkit ? *toolkit : NoToolkit;
}

} // namespace mac
