#include "platform/files/references/HFSPaths.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/TextFolding.h"
#include <algorithm>

namespace mac {

namespace {

std::u16string exchanged(std::u16string_view text) {
    std::u16string result(text);
    std::ranges::transform(result, result.begin(), slashAndColonExchanged);
    return result;
}

bool isSameName(std::u16string_view one, std::u16string_view other) {
    TextFolding const folding{.isCaseInsensitive = true};
    return std::ranges::equal(foldedText(one, folding), foldedText(other, folding), {}, &FoldedCharacter::codePoint,
                              &FoldedCharacter::codePoint);
}

// The volume's mount point without a slash at its end; empty for the root.
std::u16string pointOf(MountedVolume const& volume) {
    return volume.isStartup() ? std::u16string() : unitsFromFileSystemBytes(volume.mountPoint);
}

bool isBelow(std::u16string_view path, std::u16string_view point) {
    return path.starts_with(point) && (path.size() == point.size() || path[point.size()] == u'/');
}

struct PlaceOnVolume {
    std::u16string_view name{UnlabeledStartupVolumeName};
    std::u16string_view rest{}; // empty, or with the slash
};

PlaceOnVolume placeOf(std::u16string_view path, std::vector<MountedVolume> const& volumes) {
    PlaceOnVolume place{.rest = path};
    for (MountedVolume const& volume : volumes) {
        std::u16string const point = pointOf(volume);
        // The startup volume, whose point is empty, is the first of them.
        bool const isDeeper = volume.isStartup() || point.size() > path.size() - place.rest.size();
        if (volume.isBrowsable && isDeeper && isBelow(path, point)) place = {volume.name, path.substr(point.size())};
    }
    return place;
}

} // namespace

std::u16string hfsPathFromPOSIXPath(std::u16string_view path, bool isFolder) {
    if (!path.starts_with(u'/')) return hfsPathFromPOSIXPath(path, isFolder, {});
    return hfsPathFromPOSIXPath(path, isFolder, mountedVolumes());
}

std::u16string posixPathFromHFSPath(std::u16string_view path) {
    if (path.starts_with(u'/') || path.starts_with(u':')) return posixPathFromHFSPath(path, {});
    return posixPathFromHFSPath(path, mountedVolumes());
}

std::u16string hfsPathFromPOSIXPath(std::u16string_view path, bool isFolder,
                                    std::vector<MountedVolume> const& volumes) {
    std::u16string result;
    if (path.starts_with(u'/')) {
        PlaceOnVolume const place = placeOf(path, volumes);
        result = exchanged(place.name) + exchanged(place.rest);
        isFolder = isFolder || place.rest.empty();
    } else {
        result = u":" + exchanged(path);
    }
    if (isFolder && !result.ends_with(u':')) result += u':';
    return result;
}

std::u16string posixPathFromHFSPath(std::u16string_view path, std::vector<MountedVolume> const& volumes) {
    if (path.starts_with(u'/')) return std::u16string(path);
    if (path.starts_with(u':')) return exchanged(path.substr(1));
    std::size_t const colon = std::min(path.find(u':'), path.size());
    std::u16string const name = exchanged(path.substr(0, colon));
    std::u16string const rest = exchanged(path.substr(colon));
    auto const volume = std::ranges::find_if(volumes, [&](MountedVolume const& candidate) {
        return candidate.isBrowsable && isSameName(candidate.name, name);
    });
    if (volume != volumes.end()) {
        std::u16string const result = pointOf(*volume) + rest;
        return result.empty() ? std::u16string(u"/") : result;
    }
    if (isSameName(name, UnlabeledStartupVolumeName)) return rest.empty() ? std::u16string(u"/") : rest;
    return rest.empty() ? u"/" + name : u"/Volumes/" + name + rest;
}

std::optional<std::string> fileNameOfHFSName(std::u16string_view name) {
    std::u16string shown(name);
    for (char16_t& unit : shown) {
        if (unit == u':') return std::nullopt;
        if (unit == u'/') unit = u':';
    }
    if (shown == u"." || shown == u"..") return std::nullopt;
    return NSString::stringWithCodeUnits(shown).fileSystemRepresentation();
}

} // namespace mac
