#include "platform/system/items/TreeSize.h"
#include "platform/system/FolderContents.h"
#include "platform/system/items/ItemStatus.h"
#include "platform/system/items/OpenItem.h"
#include <cerrno>
#include <unordered_set>

namespace mac {

namespace {

class Adding {
public:
    explicit Adding(FileDescriptor root) : m_descent(std::move(root)) {}

    Result<TreeSize> all(std::stop_token const& stop) {
        do {
            if (stop.stop_requested()) return SystemError{.code = ECANCELED, .operation = "size"};
            if (Result<void> const added = addCurrent(); !added.isDone() && m_descent.path().empty())
                return added.problem();
        } while (m_descent.next());
        return m_size;
    }

private:
    Result<void> addCurrent() {
        bool const isRoot = m_descent.path().empty();
        Result<FileDescriptor> item = m_descent.item();
        if (!item.hasValue()) return skipped(item.problem());
        Result<ItemStatus> const status = statusOf(item.value());
        if (!status.hasValue()) return skipped(status.problem());
        ItemPlace const& place = status.value().place;
        if (!isRoot && place.isMountPoint) return {};
        add(status.value());
        if (!place.isFolder) return {};
        Result<std::vector<std::string>> names = namesInOpenFolder(item.value());
        if (!names.hasValue()) {
            ++m_size.unreadable;
            return {};
        }
        m_descent.enter(item.takeValue(), names.takeValue());
        return {};
    }

    Result<void> skipped(SystemError const& problem) {
        // An item that was removed meanwhile takes no space.
        if (!problem.is(ENOENT)) ++m_size.unreadable;
        return problem;
    }

    void add(ItemStatus const& status) {
        ++m_size.items;
        bool const isCounted =
            !status.place.isFolder && status.links > 1 && !m_linked.insert(status.place.identity).second;
        if (isCounted) return;
        m_size.allocated += status.allocated;
        if (status.isFile()) m_size.contents += status.size;
    }

    TreeDescent m_descent;
    TreeSize m_size;
    // The files of several names that were counted already.
    std::unordered_set<ItemIdentity, ItemIdentityHash> m_linked;
};

} // namespace

Result<TreeSize> sizeOfTree(std::string const& path, std::stop_token const& stop) {
    Result<OpenItem> item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return item.problem();
    Result<ItemStatus> const status = statusOf(item.value().item);
    if (!status.hasValue()) return status.problem();
    if (!status.value().place.isFolder)
        return TreeSize{.allocated = status.value().allocated,
                        .contents = status.value().isFile() ? status.value().size : 0,
                        .items = 1};
    return Adding(std::move(item.value().item)).all(stop);
}

} // namespace mac
