#include "platform/icons/IconPictures.h"

namespace mac {

namespace {

constexpr std::uint32_t OpaqueBits = 0xFF000000;

// 215 colours of six levels each, white first and black left out; then ten levels each of red, green, blue and grey,
// and black.
constexpr std::array<std::uint32_t, 256> colorsOf8Bits() {
    std::array<std::uint32_t, 256> colors{};
    std::size_t place = 0;
    constexpr std::uint32_t step = 0x33;
    for (std::uint32_t cell = 0; cell < 215; ++cell) {
        std::uint32_t const red = 0xFF - step * (cell / 36);
        std::uint32_t const green = 0xFF - step * (cell / 6 % 6);
        std::uint32_t const blue = 0xFF - step * (cell % 6);
        colors[place++] = OpaqueBits | red << 16 | green << 8 | blue;
    }
    // The levels of the cube are left out.
    constexpr std::array<std::uint32_t, 10> levels{0xEE, 0xDD, 0xBB, 0xAA, 0x88, 0x77, 0x55, 0x44, 0x22, 0x11};
    for (std::uint32_t const channels : {0x010000U, 0x000100U, 0x000001U, 0x010101U}) {
        for (std::uint32_t const level : levels)
            colors[place++] = OpaqueBits | channels * level;
    }
    colors[place] = OpaqueBits;
    return colors;
}

constexpr std::array<std::uint32_t, 256> Colors8 = colorsOf8Bits();
// White, yellow, orange, red, magenta, purple, blue, cyan, green, dark green, brown, tan, three greys and black.
constexpr std::array<std::uint32_t, 16> Colors4{0xFFFFFFFF, 0xFFFCF305, 0xFFFF6402, 0xFFDD0806, 0xFFF20884, 0xFF4600A5,
                                                0xFF0000D4, 0xFF02ABEA, 0xFF1FB714, 0xFF006411, 0xFF562C05, 0xFF90713A,
                                                0xFFC0C0C0, 0xFF808080, 0xFF404040, 0xFF000000};

} // namespace

std::array<std::uint32_t, 256> const& iconColors8() { return Colors8; }

std::array<std::uint32_t, 16> const& iconColors4() { return Colors4; }

} // namespace mac
