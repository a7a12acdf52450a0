#include "platform/icons/Picture.h"
#include "platform/icons/PictureToolkit.h"

namespace mac {

Picture emptyPicture(int width, int height) {
    return {.width = width,
            .height = height,
            .pixels = std::vector<std::uint32_t>(std::size_t(width) * std::size_t(height)),
            .size = {static_cast<float>(width), static_cast<float>(height)}};
}

std::vector<Picture> picturesInImageFile(std::span<std::byte const> bytes) {
    return pictureToolkit().picturesInImageFile(bytes);
}

std::optional<Picture> pictureInPNG(std::span<std::byte const> bytes, int largestSide) {
    return pictureToolkit().pictureInPNG(bytes, largestSide);
}

std::optional<Picture> pictureOfDrawing(std::span<std::byte const> bytes, int side) {
    return pictureToolkit().pictureOfDrawing(bytes, side);
}

std::vector<std::byte> contentsOfPNG(Picture const& picture) { return pictureToolkit().contentsOfPNG(picture); }

Picture scaledPicture(Picture const& picture, int width, int height) {
    return pictureToolkit().scaledPicture(picture, width, height);
}

void drawPicture(Picture& onto, NSRect const& place, Picture const& picture) {
    pictureToolkit().drawPicture(onto, place, picture);
}

} // namespace mac
