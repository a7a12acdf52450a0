#pragma once

#include "platform/foundation/text/NSString.h"
#include <QIcon>
#include <QPainterPath>
#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace mac {

// A path in the notation of SVG: M L H V C Q Z, absolute or relative. nullopt if the text is not such a path.
std::optional<QPainterPath> pathFromText(QString const& text);

// An icon of one line, drawn in a box of 16 units in the colour of the theme's text at any size: for desktops whose
// icon theme lacks what the window shows. An empty icon when the text is no path.
QIcon drawnIcon(QString const& pathText);

// The line of drawnIcon in white on a coloured tile, visible on any background: for windows. An empty icon when the
// text is no path.
QIcon tileIcon(QString const& pathText);

// The icons of application bundles as a table shows them: the picture that the bundle's CFBundleIconFile names, an
// application's in general where there is none or it cannot be read. Pictures are remembered by the bundle's path until
// its time of modification changes. Main thread.
class BundleIcons {
public:
    // An empty icon for nil and for a path without a bundle. For one on a volume that is known not to answer: the
    // remembered icon, or an empty one.
    QIcon iconOfBundle(NSString const& path);

private:
    struct Known {
        // Nanoseconds since 1970.
        std::int64_t modified;
        QIcon icon;
    };
    std::unordered_map<std::string, Known> m_known;
    // An application's in general, shared by all that show it: what the toolkit keeps for drawing a line takes 1 to 2
    // KiB. An empty icon until it is needed.
    QIcon m_general;
};

} // namespace mac
