#include "platform/system/items/FolderDescent.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr int ListFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

// Opens a folder for listing.
Result<FileDescriptor> openToList(FileDescriptor const& folder, std::string const& name) {
    FileDescriptor opened(::openat(folder.number(), name.c_str(), ListFlags));
    if (!opened.isOpen()) return lastSystemError("open", name);
    return opened;
}

SystemError anotherItem(std::string const& name) { return {.code = ESTALE, .operation = "open", .item = name}; }

class Descent {
public:
    Descent(DescentRules const& rules, DescentVisit const& visit) : m_rules(rules), m_visit(visit) {}

    Result<void> run(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected);

private:
    struct Level {
        std::string name;
        ItemPlace place;
        // Items in the folder that are still to be visited.
        std::vector<std::string> names;
    };

    void meet(std::string const& name, ItemPlace const& place);
    void enter(std::string const& name, ItemPlace const& place);
    void visitNext();
    bool leave();
    void visit(std::string const& name, ItemPlace const& place);
    void fail(std::string const& name, SystemError const& error);
    // The path of an item in the current folder from the folder that the descent started in.
    std::string pathOf(std::string const& name) const;

    DescentRules const& m_rules;
    DescentVisit const& m_visit;
    // The only folder that is open, however deep the descent goes.
    FileDescriptor m_folder{};
    ItemPlace m_start{};
    std::vector<Level> m_levels{};
    std::size_t m_count{0};
    std::optional<SystemError> m_firstError{};
    bool m_isCancelled{false};
};

Result<void> Descent::run(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected) {
    Result<FileDescriptor> opened = openToList(folder, ".");
    if (!opened.hasValue()) return opened.problem();
    m_folder = opened.takeValue();
    Result<ItemPlace> const start = placeOf(m_folder);
    if (!start.hasValue()) return start.problem();
    Result<ItemPlace> const place = placeOf(m_folder, name);
    if (!place.hasValue()) return place.problem();
    if (!(place.value().identity == expected)) return anotherItem(name);
    m_start = start.value();
    meet(name, place.value());
    while (!m_levels.empty() && !m_isCancelled) {
        if (m_count > m_rules.mostItems) {
            fail("", {.code = E2BIG, .operation = "readdir", .item = name});
            break;
        }
        if (!m_levels.back().names.empty())
            visitNext();
        else if (!leave())
            break;
    }
    if (m_firstError) return *m_firstError;
    return {};
}

void Descent::meet(std::string const& name, ItemPlace const& place) {
    ++m_count;
    if (place.isFolder)
        enter(name, place);
    else
        visit(name, place);
}

void Descent::enter(std::string const& name, ItemPlace const& place) {
    if (place.mount != m_start.mount) return fail(name, {.code = EBUSY, .operation = "open", .item = name});
    if (m_rules.makesAccessible) letOwnerIn(m_folder, name);
    Result<FileDescriptor> folder = openToList(m_folder, name);
    if (!folder.hasValue()) return fail(name, folder.problem());
    Result<ItemPlace> const found = placeOf(folder.value());
    if (!found.hasValue() || !(found.value().identity == place.identity)) return fail(name, anotherItem(name));
    Result<std::vector<std::string>> names = namesInOpenFolder(folder.value());
    if (!names.hasValue()) return fail(name, names.problem());
    m_levels.push_back({name, place, names.takeValue()});
    m_folder = folder.takeValue();
}

void Descent::visitNext() {
    std::string const name = std::move(m_levels.back().names.back());
    m_levels.back().names.pop_back();
    Result<ItemPlace> const place = placeOf(m_folder, name);
    if (place.hasValue()) return meet(name, place.value());
    // An item that another process has removed meanwhile is no failure.
    if (!place.problem().is(ENOENT)) fail(name, place.problem());
}

// Goes back into the very folder that the descent came from, and no other.
bool Descent::leave() {
    Level const level = std::move(m_levels.back());
    m_levels.pop_back();
    ItemPlace const& above = m_levels.empty() ? m_start : m_levels.back().place;
    Result<FileDescriptor> folder = openToList(m_folder, "..");
    if (!folder.hasValue()) {
        fail(level.name, folder.problem());
        return false;
    }
    Result<ItemPlace> const place = placeOf(folder.value());
    if (!place.hasValue() || !(place.value().identity == above.identity)) {
        fail(level.name, place.hasValue() ? anotherItem("..") : place.problem());
        return false;
    }
    m_folder = folder.takeValue();
    visit(level.name, level.place);
    return true;
}

void Descent::visit(std::string const& name, ItemPlace const& place) {
    Result<void> const visited = m_visit(m_folder, name, place);
    if (!visited.isDone()) fail(name, visited.problem());
}

void Descent::fail(std::string const& name, SystemError const& error) {
    if (!m_firstError) m_firstError = error;
    bool const shouldContinue = !m_rules.shouldContinueAfter || m_rules.shouldContinueAfter(pathOf(name), error);
    m_isCancelled = m_isCancelled || !shouldContinue || error.is(ECANCELED);
}

std::string Descent::pathOf(std::string const& name) const {
    std::string path;
    for (Level const& level : m_levels)
        appendComponent(path, level.name);
    appendComponent(path, name);
    return path;
}

} // namespace

void letOwnerIn(FileDescriptor const& folder, std::string const& name) {
    FileDescriptor const item(::openat(folder.number(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!item.isOpen()) return;
    Result<ItemPlace> const found = placeOf(item);
    bool const isOpen = !found.hasValue() || (found.value().mode & S_IRWXU) == S_IRWXU;
    if (isOpen || found.value().owner != ::geteuid()) return;
    ::chmod(descriptorPath(item).c_str(), (found.value().mode & 07777) | S_IRWXU);
}

Result<void> descend(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected,
                     DescentRules const& rules, DescentVisit const& visit) {
    return Descent(rules, visit).run(folder, name, expected);
}

} // namespace mac
