#pragma once

#include "platform/foundation/text/NSString.h"
#include <QIcon>
#include <cstdint>
#include <string>
#include <unordered_map>

namespace mac {

// The icons of application bundles as a table shows them: the picture that the bundle's CFBundleIconFile names, an
// application's in general where there is none or it cannot be read. Pictures are remembered by the bundle's path until
// its time of modification changes. Main thread.
class BundleIcons {
public:
    // An empty icon for nil, where no bundle is and on a volume that is known not to answer.
    QIcon iconOfBundle(NSString const& path);

private:
    struct Known {
        // Nanoseconds since 1970.
        std::int64_t modified;
        QIcon icon;
    };
    std::unordered_map<std::string, Known> m_known;
};

} // namespace mac
