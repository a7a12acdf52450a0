#pragma once

#include <QPalette>
#include <vector>

namespace mac {

// A colour of text and the one that it stands on.
struct TextOnColor {
    QPalette::ColorRole text;
    QPalette::ColorRole ground;
};

// The contrast of text that is disabled: paler than other text, and still seen.
inline constexpr double DisabledContrast = 2.0;

// All pairs in which a window shows text.
std::vector<TextOnColor> const& textsOnColors();

// The contrast of the pair, of what is seen where the text is translucent.
double contrastIn(QPalette const& palette, QPalette::ColorGroup group, TextOnColor const& pair);

// The palette with every text at least LegibleContrast from its ground, DisabledContrast if it is disabled: text is
// taken towards black or white, or its ground where that has the text of another ground or is that of selections. The
// result stays as it is when asked again. Colours that are far enough apart stay as they are.
QPalette legiblePalette(QPalette palette);

// Keeps the application's palette legible from now on, whatever theme comes. Needs the application; once is enough.
void keepPaletteLegible();

} // namespace mac
