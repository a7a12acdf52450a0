#include "platform/icons/IconTheme.h"
#include <algorithm>

namespace mac {

namespace {

Picture squarePicture(Picture picture) {
    if (picture.width == picture.height) return picture;
    int const side = std::max(picture.width, picture.height);
    Picture square = emptyPicture(side, side);
    NSRect const place =
        NSMakeRect(static_cast<float>((side - picture.width) / 2), static_cast<float>((side - picture.height) / 2),
                   static_cast<float>(picture.width), static_cast<float>(picture.height));
    drawPicture(square, place, picture);
    return square;
}

SharedPicture shared(Picture picture) {
    picture.size = {static_cast<float>(picture.width), static_cast<float>(picture.height)};
    return std::make_shared<Picture const>(std::move(picture));
}

} // namespace

std::vector<SharedPicture> picturesInIconSides(std::vector<Picture> pictures) {
    if (pictures.empty()) return {};
    for (Picture& picture : pictures)
        picture = squarePicture(std::move(picture));
    std::ranges::stable_sort(pictures, {}, &Picture::width);
    auto const haveEqualSides = [](Picture const& one, Picture const& other) { return one.width == other.width; };
    pictures.erase(std::unique(pictures.begin(), pictures.end(), haveEqualSides), pictures.end());
    std::vector<SharedPicture> result;
    for (int const side : IconSides) {
        auto const larger = std::ranges::lower_bound(pictures, side, {}, &Picture::width);
        Picture const& source = larger == pictures.end() ? pictures.back() : *larger;
        result.push_back(shared(scaledPicture(source, side, side)));
    }
    for (Picture& picture : pictures) {
        if (picture.width > IconSides.back()) result.push_back(shared(std::move(picture)));
    }
    return result;
}

} // namespace mac
