#include "platform/foundation/NSDirectoryEnumerator.h"
#include "platform/foundation/EnumeratorBody.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/FolderContents.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/OpenItems.h"
#include <algorithm>

namespace mac {

class NSDirectoryEnumerator::Body : public NSEnumerator::Body {
public:
    Body(FileDescriptor root, std::vector<std::string> names) : m_root(std::move(root)) { enter({}, std::move(names)); }

    id next() override {
        descend();
        while (!m_folders.empty() && m_folders.back().names.empty())
            leave();
        m_last.clear();
        if (m_folders.empty()) return nil;
        std::vector<std::string>& names = m_folders.back().names;
        m_last = m_path + names.back();
        names.pop_back();
        m_isEntered = false;
        return NSString::stringWithFileSystemRepresentation_(m_last);
    }

    void skip() { m_isEntered = true; }
    NSDictionary rootAttributes() const { return attributesOf(openBelow(m_root, "")); }
    NSDictionary lastAttributes() const { return m_last.empty() ? NSDictionary(nil) : attributesOf(last()); }

private:
    // Its names that are not given yet, the next one last.
    struct Folder {
        std::size_t pathLength; // of the folder above
        std::vector<std::string> names;
    };

    static NSDictionary attributesOf(FileDescriptor const& item) {
        return item.isOpen() ? fileAttributesOf(item) : NSDictionary(nil);
    }

    void enter(FileDescriptor folder, std::vector<std::string> names) {
        std::ranges::reverse(names);
        m_folders.push_back({m_path.size(), std::move(names)});
        if (!m_last.empty()) m_path = m_last + "/";
        m_folder = std::move(folder);
    }

    void leave() {
        m_path.resize(m_folders.back().pathLength);
        m_folders.pop_back();
        m_folder = FileDescriptor();
    }

    // The item given last. The way back to a folder above is from the root again.
    FileDescriptor last() const {
        if (!m_folder.isOpen()) m_folder = openBelow(m_root, m_path);
        return openBelow(m_folder, std::string_view(m_last).substr(m_path.size()));
    }

    // Into the item given last, if it is a folder.
    void descend() {
        if (m_isEntered) return;
        m_isEntered = true;
        FileDescriptor folder = last();
        std::optional<std::vector<std::string>> names = folder.isOpen() ? namesInOpenFolder(folder) : std::nullopt;
        if (names) enter(std::move(folder), std::move(*names));
    }

    FileDescriptor m_root;             // is found wherever it is moved to
    mutable FileDescriptor m_folder{}; // that is listed, once it was needed
    std::string m_path{};              // from the root to that folder, with a slash at the end
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
    return *this == nil ? NSDictionary(nil) : bodyOf(*this)->rootAttributes();
}

void NSDirectoryEnumerator::skipDescendents() const {
    if (!(*this == nil)) bodyOf(*this)->skip();
}

NSDirectoryEnumerator directoryEnumerator(FileDescriptor folder) {
    std::optional<std::vector<std::string>> names = folder.isOpen() ? namesInOpenFolder(folder) : std::nullopt;
    return names ? adopt<NSDirectoryEnumerator>(std::move(folder), std::move(*names)) : NSDirectoryEnumerator(nil);
}

} // namespace mac
