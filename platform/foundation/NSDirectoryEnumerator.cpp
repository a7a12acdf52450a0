#include "platform/foundation/NSDirectoryEnumerator.h"
#include "platform/foundation/EnumeratorBody.h"
#include "platform/foundation/FolderContents.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSFileManager.h"
#include <algorithm>

namespace mac {

class NSDirectoryEnumerator::Body : public NSEnumerator::Body {
public:
    Body(std::string path, std::vector<std::string> names) : m_path(std::move(path)) { enter({}, std::move(names)); }

    id next() override {
        descend();
        while (!m_folders.empty() && m_folders.back().names.empty())
            m_folders.pop_back();
        if (m_folders.empty()) {
            m_last.clear();
            return nil;
        }
        Folder& folder = m_folders.back();
        m_last = folder.relativePath + folder.names.back();
        folder.names.pop_back();
        m_isEntered = false;
        return NSString::stringWithFileSystemRepresentation_(m_last);
    }

    void skip() { m_isEntered = true; }
    NSDictionary attributesOf(std::string const& relativePath) const {
        NSString const path = NSString::stringWithFileSystemRepresentation_(m_path + "/" + relativePath);
        return NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(path, NO);
    }
    NSDictionary lastAttributes() const { return m_last.empty() ? NSDictionary(nil) : attributesOf(m_last); }

private:
    // Its names that are not given yet, the next one last.
    struct Folder {
        std::string relativePath;
        std::vector<std::string> names;
    };

    void enter(std::string relativePath, std::vector<std::string> names) {
        std::ranges::reverse(names);
        m_folders.push_back({std::move(relativePath), std::move(names)});
    }

    // Into the item given last, if it is a folder.
    void descend() {
        if (m_isEntered) return;
        m_isEntered = true;
        std::optional<std::vector<std::string>> names = namesInFolder(m_path + "/" + m_last, LinkAtEnd::IsNotFollowed);
        if (names) enter(m_last + "/", std::move(*names));
    }

    std::string m_path;
    std::vector<Folder> m_folders{};
    std::string m_last{};
    bool m_isEntered{true};
};

ClassDescription NSDirectoryEnumerator::describeClass() {
    return {
        .name = "NSDirectoryEnumerator",
        .superclass = classOf<NSEnumerator>(),
        .methods =
            {
                method<&NSDirectoryEnumerator::fileAttributes>("fileAttributes"),
                method<&NSDirectoryEnumerator::directoryAttributes>("directoryAttributes"),
                method<&NSDirectoryEnumerator::skipDescendents>("skipDescendents"),
            },
    };
}

NSDictionary NSDirectoryEnumerator::fileAttributes() const {
    return *this == nil ? NSDictionary(nil) : bodyOf(*this)->lastAttributes();
}

NSDictionary NSDirectoryEnumerator::directoryAttributes() const {
    return *this == nil ? NSDictionary(nil) : bodyOf(*this)->attributesOf("");
}

void NSDirectoryEnumerator::skipDescendents() const {
    if (!(*this == nil)) bodyOf(*this)->skip();
}

NSDirectoryEnumerator directoryEnumerator(std::string const& path, std::vector<std::string> names) {
    return adopt<NSDirectoryEnumerator>(path, std::move(names));
}

} // namespace mac
