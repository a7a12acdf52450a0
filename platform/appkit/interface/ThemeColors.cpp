#include "platform/appkit/interface/ThemeColors.h"
#include <algorithm>
#include <cmath>

namespace mac {

namespace {

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(QColor const& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(QColor const& first, QColor const& second, double part) {
    auto const mix = [part](float a, float b) { return static_cast<float>(a * part + b * (1 - part)); };
    return QColor::fromRgbF(mix(first.redF(), second.redF()), mix(first.greenF(), second.greenF()),
                            mix(first.blueF(), second.blueF()));
}

} // namespace

double contrast(QColor const& first, QColor const& second) {
    double const a = luminance(first);
    double const b = luminance(second);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor dimmedText(QPalette const& palette) {
    QColor const text = palette.color(QPalette::Active, QPalette::Text);
    QColor const base = palette.color(QPalette::Active, QPalette::Base);
    QColor const alternate = palette.color(QPalette::Active, QPalette::AlternateBase);
    for (int percent = 55; percent < 100; percent += 5) {
        QColor const dimmed = mixed(text, base, percent / 100.0);
        if (contrast(dimmed, base) >= LegibleContrast && contrast(dimmed, alternate) >= LegibleContrast) return dimmed;
    }
    return text;
}

QColor colorInTheme(NSColor const& color, QPalette const& palette) {
    if (color == nil) return {};
    if (color.isEqual_(NSColor::blackColor())) return palette.color(QPalette::Active, QPalette::Text);
    if (color.isEqual_(NSColor::darkGrayColor())) return dimmedText(palette);
    NSColor const rgb = color.colorUsingColorSpaceName_(NSCalibratedRGBColorSpace);
    return QColor::fromRgbF(static_cast<float>(rgb.redComponent()), static_cast<float>(rgb.greenComponent()),
                            static_cast<float>(rgb.blueComponent()), static_cast<float>(rgb.alphaComponent()));
}

} // namespace mac
