#include "platform/foundation/files/NSDirectoryEnumerator.h"
#include "platform/foundation/collections/EnumeratorBody.h"
#include "platform/foundation/files/FileAttributes.h"
#include "platform/foundation/objects/Method.h"
#include "platform/system/FolderContents.h"
#include "platform/system/OpenItems.h"

namespace mac {

class NSDirectoryEnumerator::Body : public NSEnumerator::Body {
public:
    Body(FileDescriptor root, std::vector<std::string> names) : m_descent(std::move(root)) {
        m_descent.enter(FileDescriptor(), std::move(names));
    }

    id next() override {
        descend();
        m_isEntered = !m_descent.next();
        return m_isEntered ? id(nil) : NSString::stringWithFileSystemRepresentation_(m_descent.path());
    }

    void skip() { m_isEntered = true; }
    NSDictionary rootAttributes() const { return attributesOf(openBelow(m_descent.root(), "")); }
    NSDictionary lastAttributes() {
        return m_descent.path().empty() ? NSDictionary(nil) : attributesOf(m_descent.item());
    }

private:
    static NSDictionary attributesOf(Result<FileDescriptor> const& item) {
        return item.hasValue() ? fileAttributesOf(item.value()) : NSDictionary(nil);
    }

    // Enters the item given last, if it is a folder.
    void descend() {
        if (m_isEntered) return;
        Result<FileDescriptor> folder = m_descent.item();
        if (!folder.hasValue()) return;
        Result<std::vector<std::string>> names = namesInOpenFolder(folder.value());
        if (names.hasValue()) m_descent.enter(folder.takeValue(), names.takeValue());
    }

    TreeDescent m_descent;
    bool m_isEntered{true}; // or is not to be
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
    Result<std::vector<std::string>> names = namesInOpenFolder(folder);
    if (!names.hasValue()) return nil;
    return adopt<NSDirectoryEnumerator>(std::move(folder), names.takeValue());
}

} // namespace mac
