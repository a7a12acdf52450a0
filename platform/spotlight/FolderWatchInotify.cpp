#include "platform/foundation/running/EventLoop.h"
#include "platform/spotlight/FolderWatch.h"
#include "platform/system/BytePath.h"
#include <QSocketNotifier>
#include <array>
#include <set>
#include <sys/inotify.h>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>

namespace mac {

namespace {

// The most folders watched at once: a watch takes about a kilobyte of kernel memory, and the number for each user is
// limited, so other programs need some.
constexpr std::size_t MostFolders = 4096;

constexpr std::uint32_t Events = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF |
                                 IN_UNMOUNT | IN_ONLYDIR | IN_EXCL_UNLINK;
// The events of folders above a watched one: changes within them are ignored, unless such a folder is watched itself.
constexpr std::uint32_t EventsAbove = IN_MOVE_SELF | IN_UNMOUNT | IN_ONLYDIR | IN_MASK_ADD;

} // namespace

class FolderWatch::Implementation {
public:
    explicit Implementation(std::function<void(std::string const&)> onChange)
        : m_onChange(std::move(onChange)), m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        requireEventLoop();
        if (m_descriptor < 0) return;
        m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { guarded([this] { read(); }); });
    }
    ~Implementation() {
        m_notifier.reset();
        if (m_descriptor >= 0) ::close(m_descriptor);
    }
    Implementation(Implementation const&) = delete;
    Implementation& operator=(Implementation const&) = delete;

    bool add(std::string const& folder) {
        if (!watch(folder, Events)) return false;
        for (std::string above(BytePath(folder).parent()); above.size() > 1;
             above.resize(BytePath(above).parent().size())) {
            // The folders above one that is watched are watched, too.
            if (m_paths.contains(above) || !watch(above, EventsAbove)) break;
        }
        return true;
    }

private:
    bool watch(std::string const& folder, std::uint32_t events) {
        if (m_descriptor < 0 || m_folders.size() >= MostFolders) return false;
        int const watch = ::inotify_add_watch(m_descriptor, folder.c_str(), events);
        if (watch < 0) return false;
        m_folders.insert_or_assign(watch, folder);
        m_paths.insert(folder);
        return true;
    }

    void read() {
        alignas(inotify_event) std::array<char, 16384> buffer;
        std::set<std::string> changed;
        for (;;) {
            ssize_t const size = ::read(m_descriptor, buffer.data(), buffer.size());
            if (size <= 0) break;
            for (char const* place = buffer.data(); place < buffer.data() + size;) {
                auto const* const event = reinterpret_cast<inotify_event const*>(place);
                place += sizeof(inotify_event) + event->len;
                collect(*event, changed);
            }
        }
        for (std::string const& folder : changed)
            m_onChange(folder);
    }

    void collect(inotify_event const& event, std::set<std::string>& changed) {
        if (event.mask & IN_Q_OVERFLOW) {
            changed.insert(std::string());
            return;
        }
        auto const folder = m_folders.find(event.wd);
        if (folder == m_folders.end()) return;
        changed.insert(folder->second);
        if (!(event.mask & IN_IGNORED)) return;
        m_paths.erase(folder->second);
        m_folders.erase(folder);
    }

    std::function<void(std::string const&)> m_onChange;
    int m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unordered_map<int, std::string> m_folders;
    std::unordered_set<std::string> m_paths; // of them
};

FolderWatch::FolderWatch(std::function<void(std::string const&)> onChange)
    : m_implementation(std::make_unique<Implementation>(std::move(onChange))) {}

FolderWatch::~FolderWatch() = default;

bool FolderWatch::add(std::string const& folder) { return m_implementation->add(folder); }

} // namespace mac
