#include "platform/foundation/running/NSTask.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/system/SystemError.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

// The status of a child that has ended; nothing while it runs, where it is not to be waited for.
std::optional<int> statusOf(pid_t child, bool isWaitedFor) {
    int status = 0;
    pid_t ended = -1;
    do
        ended = ::waitpid(child, &status, isWaitedFor ? 0 : WNOHANG);
    while (ended < 0 && errno == EINTR);
    if (ended == 0) return std::nullopt;
    // Other code waited for the child, so its exit status is unknown.
    if (ended < 0) return 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
}

// Children whose tasks have gone: what is left of them is cleared away when the next child is started.
std::vector<pid_t>& orphans() {
    static std::vector<pid_t> orphans;
    return orphans;
}

std::string bytesOf(NSString const& text, char const* what) {
    std::optional<std::string> const bytes = text.fileSystemRepresentation();
    if (!bytes || bytes->find('\0') != std::string::npos)
        throw NSInvalidArgumentException(std::string(what) + " has no form as bytes");
    return *bytes;
}

pid_t spawned(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = -1;
    int const error = ::posix_spawn(&child, pointers[0], nullptr, nullptr, pointers.data(), environ);
    if (error != 0) throw NSInvalidArgumentException("The launch path cannot be started: " + textOfSystemError(error));
    return child;
}

} // namespace

class NSTask::Body : public ObjectBody {
public:
    ~Body() override {
        if (isRunning()) orphans().push_back(m_child);
    }

    void launch() {
        if (m_child > 0) throw NSInvalidArgumentException("A task is launched once");
        std::erase_if(orphans(), [](pid_t child) { return statusOf(child, false).has_value(); });
        std::vector<std::string> words{bytesOf(launchPath, "The launch path")};
        for (NSUInteger index = 0; index < arguments.count(); ++index)
            words.push_back(bytesOf(as<NSString>(arguments.objectAtIndex_(index)), "An argument"));
        m_child = spawned(words);
    }

    bool isRunning() {
        if (m_child > 0 && !m_status) m_status = statusOf(m_child, false);
        return m_child > 0 && !m_status;
    }

    void terminate() {
        if (m_child <= 0) throw NSInvalidArgumentException("The task was not launched");
        // Until the child is waited for, its process ID is not reused.
        if (isRunning()) ::kill(m_child, SIGTERM);
    }

    void waitUntilExit() {
        if (isRunning()) m_status = statusOf(m_child, true);
    }

    int terminationStatus() {
        if (m_child <= 0) throw NSInvalidArgumentException("The task was not launched");
        if (isRunning()) throw NSInvalidArgumentException("The task is still running");
        return *m_status;
    }

    pid_t child() const { return m_child; }

    NSString launchPath;
    NSArray arguments;

private:
    pid_t m_child{0};
    std::optional<int> m_status;
};

ClassDescription NSTask::describeClass() {
    return {
        .name = "NSTask",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSTask>,
        .methods =
            {
                method<&NSTask::init>("init"),
                method<&NSTask::launch>("launch"),
                method<&NSTask::isRunning>("isRunning"),
                method<&NSTask::terminate>("terminate"),
                method<&NSTask::waitUntilExit>("waitUntilExit"),
                method<&NSTask::terminationStatus>("terminationStatus"),
                method<&NSTask::processIdentifier>("processIdentifier"),
            },
        .properties =
            {
                property<&NSTask::launchPath, &NSTask::setLaunchPath_>("launchPath"),
                property<&NSTask::arguments, &NSTask::setArguments_>("arguments"),
            },
    };
}

NSTask NSTask::launchedTaskWithLaunchPath_arguments_(NSString const& path, NSArray const& arguments) {
    NSTask const task = adopt<NSTask>();
    task.setLaunchPath_(path);
    task.setArguments_(arguments);
    task.launch();
    return task;
}

NSTask NSTask::init() const { return *this; }

NSString NSTask::launchPath() const { return *this == nil ? NSString() : bodyOf(*this)->launchPath; }

void NSTask::setLaunchPath_(NSString const& path) const {
    if (*this != nil) bodyOf(*this)->launchPath = path;
}

NSArray NSTask::arguments() const { return *this == nil ? NSArray() : bodyOf(*this)->arguments; }

void NSTask::setArguments_(NSArray const& arguments) const {
    if (*this != nil) bodyOf(*this)->arguments = arguments;
}

void NSTask::launch() const {
    if (*this != nil) bodyOf(*this)->launch();
}

bool NSTask::isRunning() const { return *this != nil && bodyOf(*this)->isRunning(); }

void NSTask::terminate() const {
    if (*this != nil) bodyOf(*this)->terminate();
}

void NSTask::waitUntilExit() const {
    if (*this != nil) bodyOf(*this)->waitUntilExit();
}

NSInteger NSTask::terminationStatus() const { return *this == nil ? 0 : bodyOf(*this)->terminationStatus(); }

NSInteger NSTask::processIdentifier() const { return *this == nil ? 0 : bodyOf(*this)->child(); }

} // namespace mac
