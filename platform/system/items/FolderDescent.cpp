#include "platform/system/items/FolderDescent.h"
#include "platform/system/FolderContents.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr int ListFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

void letOwnerIn(FileDescriptor const& folder, std::string const& name, ItemPlace const& place) {
    FileDescriptor const item(::openat(folder.number(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    std::optional<ItemPlace> const found = item.isOpen() ? placeOf(item) : std::nullopt;
    if (!found || !(found->identity == place.identity) || found->owner != ::geteuid()) return;
    ::chmod(descriptorPath(item).c_str(), (found->mode & 07777) | S_IRWXU);
}

class Descent {
public:
    Descent(DescentRules const& rules, DescentVisit const& visit) : m_rules(rules), m_visit(visit) {}

    bool run(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected);

private:
    struct Level {
        std::string name;
        ItemPlace place;
        // Of what is still to be visited in it.
        std::vector<std::string> names;
    };

    void meet(std::string const& name, ItemPlace const& place);
    void enter(std::string const& name, ItemPlace const& place);
    void visitNext();
    bool leave();
    void visit(std::string const& name, ItemPlace const& place);
    void fail(int errorNumber);

    DescentRules const& m_rules;
    DescentVisit const& m_visit;
    // However deep it goes, one folder is open.
    FileDescriptor m_folder{};
    ItemPlace m_start{};
    std::vector<Level> m_levels{};
    std::size_t m_count{0};
    int m_firstError{0};
    bool m_isCancelled{false};
};

bool Descent::run(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected) {
    m_folder = FileDescriptor(::openat(folder.number(), ".", ListFlags));
    std::optional<ItemPlace> const start = m_folder.isOpen() ? placeOf(m_folder) : std::nullopt;
    std::optional<ItemPlace> const place = start ? placeOf(m_folder, name) : std::nullopt;
    if (!place) return false;
    if (!(place->identity == expected)) {
        errno = ESTALE;
        return false;
    }
    m_start = *start;
    meet(name, *place);
    while (!m_levels.empty() && !m_isCancelled) {
        if (m_count > m_rules.mostItems) {
            fail(E2BIG);
            break;
        }
        if (!m_levels.back().names.empty())
            visitNext();
        else if (!leave())
            break;
    }
    errno = m_firstError;
    return m_firstError == 0;
}

void Descent::meet(std::string const& name, ItemPlace const& place) {
    ++m_count;
    if (place.isFolder)
        enter(name, place);
    else
        visit(name, place);
}

void Descent::enter(std::string const& name, ItemPlace const& place) {
    if (place.mount != m_start.mount) return fail(EBUSY);
    if (m_rules.makesAccessible && (place.mode & S_IRWXU) != S_IRWXU) letOwnerIn(m_folder, name, place);
    FileDescriptor folder(::openat(m_folder.number(), name.c_str(), ListFlags));
    if (!folder.isOpen()) return fail(errno);
    std::optional<ItemPlace> const found = placeOf(folder);
    if (!found || !(found->identity == place.identity)) return fail(ESTALE);
    std::optional<std::vector<std::string>> names = namesInOpenFolder(folder);
    if (!names) return fail(errno);
    m_levels.push_back({name, place, std::move(*names)});
    m_folder = std::move(folder);
}

void Descent::visitNext() {
    std::string const name = std::move(m_levels.back().names.back());
    m_levels.back().names.pop_back();
    std::optional<ItemPlace> const place = placeOf(m_folder, name);
    if (place) return meet(name, *place);
    // Otherwise somebody was quicker.
    if (errno != ENOENT) fail(errno);
}

// Only into the very folder that it came from.
bool Descent::leave() {
    Level const level = std::move(m_levels.back());
    m_levels.pop_back();
    ItemPlace const& above = m_levels.empty() ? m_start : m_levels.back().place;
    FileDescriptor folder(::openat(m_folder.number(), "..", ListFlags));
    std::optional<ItemPlace> const place = folder.isOpen() ? placeOf(folder) : std::nullopt;
    if (!place || !(place->identity == above.identity)) {
        fail(place ? ESTALE : errno);
        return false;
    }
    m_folder = std::move(folder);
    visit(level.name, level.place);
    return true;
}

void Descent::visit(std::string const& name, ItemPlace const& place) {
    if (!m_visit(m_folder, name, place)) fail(errno);
}

void Descent::fail(int errorNumber) {
    if (m_firstError == 0) m_firstError = errorNumber;
    m_isCancelled = m_isCancelled || errorNumber == ECANCELED;
}

} // namespace

bool descend(FileDescriptor const& folder, std::string const& name, ItemIdentity const& expected,
             DescentRules const& rules, DescentVisit const& visit) {
    return Descent(rules, visit).run(folder, name, expected);
}

} // namespace mac
