#include "platform/foundation/files/NSSearchPath.h"
#include "platform/foundation/text/NSString.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"

namespace mac {

namespace {

// The standard's own value for an environment that does not say.
constexpr std::string_view UsualDataFolders = "/usr/local/share/:/usr/share/";
constexpr std::string_view LocalTop = "/usr/local";

bool isLocalFolder(std::string_view folder) {
    return folder.starts_with(LocalTop) && (folder.size() == LocalTop.size() || folder[LocalTop.size()] == '/');
}

// The domain that shares a folder of data with all users.
NSUInteger domainOfSharedFolder(std::string_view folder) {
    return isLocalFolder(folder) ? NSLocalDomainMask : NSSystemDomainMask;
}

class SearchPath {
public:
    explicit SearchPath(bool expandsTilde) : m_expandsTilde(expandsTilde) {}

    void add(std::string_view folder) const {
        // A relative path is ignored, as the standard has it.
        if (!BytePath(folder).isAbsolute()) return;
        NSString const path = NSString::stringWithFileSystemRepresentation_(BytePath(folder).bytes());
        NSString const shown = m_expandsTilde ? path : path.stringByAbbreviatingWithTildeInPath();
        if (!m_folders.containsObject_(shown)) m_folders.addObject_(shown);
    }

    NSArray folders() const { return uncheckedCast<NSArray>(m_folders.copy()); }

private:
    bool m_expandsTilde;
    NSMutableArray m_folders{NSMutableArray::array()};
};

} // namespace

NSArray NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory, NSUInteger domainMask, BOOL expandTilde) {
    SearchPath const path(static_cast<bool>(expandTilde));
    if (directory != NSLibraryDirectory) return path.folders();
    if ((domainMask & NSUserDomainMask) != 0) path.add(dataHome());
    std::vector<std::string> const shared = listInEnvironment("XDG_DATA_DIRS", UsualDataFolders);
    for (NSUInteger const domain : {NSLocalDomainMask, NSSystemDomainMask}) {
        if ((domainMask & domain) == 0) continue;
        for (std::string const& folder : shared)
            if (domainOfSharedFolder(folder) == domain) path.add(folder);
    }
    return path.folders();
}

} // namespace mac
