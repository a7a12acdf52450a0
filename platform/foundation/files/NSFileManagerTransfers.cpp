#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/ItemTransfer.h"
#include <cerrno>
#include <fcntl.h>

// Deleting, moving and copying whole items, with the handler that is asked about failures.

namespace mac {

namespace {

constexpr char PathKey[] = "Path";
constexpr char ToPathKey[] = "ToPath";
constexpr char ErrorKey[] = "Error";

NSString messageText(std::string const& text) { return NSString::stringWithCodeUnits(unitsFromFileSystemBytes(text)); }

NSString pathOfBytes(std::string const& path) { return NSString::stringWithFileSystemRepresentation_(path); }

// Which item cannot be taken, and why; not the step that failed, which says nothing to people.
std::string reasonOf(SystemError const& error) {
    std::string const reason = textOfSystemError(error.code);
    return error.item.empty() ? reason : "\"" + std::string(BytePath(error.item).leaf()) + "\": " + reason;
}

// Asks the handler of one operation.
class HandledOperation {
public:
    // `toPath` is empty for an operation on one path.
    HandledOperation(NSFileManager const& manager, id const& handler, std::string path, std::string toPath = {})
        : m_manager(manager), m_handler(handler), m_path(std::move(path)), m_toPath(std::move(toPath)) {}

    std::string const& path() const { return m_path; }
    std::string const& toPath() const { return m_toPath; }

    void willProcess(std::string const& path) const {
        constexpr char selector[] = "fileManager:willProcessPath:";
        if (m_handler.respondsToSelector_(selector))
            m_handler.performSelector_withObject_withObject_(selector, m_manager, pathOfBytes(path));
    }

    bool shouldProceedAfterError(std::string const& path, std::string const& error) {
        constexpr char selector[] = "fileManager:shouldProceedAfterError:";
        m_wasAsked = true;
        m_hasEnded = true;
        if (!m_handler.respondsToSelector_(selector)) return false;
        NSMutableDictionary const information = NSMutableDictionary::dictionary();
        information.setObject_forKey_(pathOfBytes(path), PathKey);
        if (!m_toPath.empty()) information.setObject_forKey_(pathOfBytes(m_toPath), ToPathKey);
        information.setObject_forKey_(messageText(error), ErrorKey);
        id const answer = m_handler.performSelector_withObject_withObject_(selector, m_manager, information);
        m_hasEnded = !as<NSNumber>(answer).boolValue();
        return !m_hasEnded;
    }
    bool shouldProceedAfterError(SystemError const& error) { return shouldProceedAfterError(m_path, reasonOf(error)); }

    bool wasAsked() const { return m_wasAsked; }
    // Whether the last failure that was asked about has ended the operation.
    bool hasEnded() const { return m_hasEnded; }

private:
    NSFileManager const& m_manager;
    id const& m_handler;
    std::string m_path;
    std::string m_toPath;
    bool m_wasAsked{false};
    bool m_hasEnded{false};
};

// Without slashes at the end; nullopt for a path that can name no item.
std::optional<std::string> bytesOf(NSString const& path) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    return bytes && !bytes->empty() ? std::optional(std::string(BytePath(*bytes).bytes())) : std::nullopt;
}

// EINVAL for the current folder and the one above it, whatever they are.
Result<OpenItem> openNamedItem(std::string const& path) {
    std::string_view const leaf = BytePath(path).leaf();
    if (leaf == "." || leaf == "..") return SystemError{.code = EINVAL, .operation = "open", .item = path};
    return openItemAtPath(path, LinkAtEnd::IsNotFollowed);
}

// What a failed transfer means, for people.
std::string reasonOf(TransferProblem const& problem) {
    std::string const text = reasonOf(problem.error);
    switch (problem.kind) {
    case TransferProblem::Kind::OriginalStays:
        return "The copy is complete, but the original could not be removed: " + text;
    case TransferProblem::Kind::MovedWrongItem:
        return "Another item was moved in its stead, and is now at the new path: " + text;
    default:
        return text;
    }
}

using Transfer = Result<void, TransferProblem> (*)(ItemTransfer const& transfer);

bool run(Transfer transfer, HandledOperation& operation) {
    Result<OpenItem> const item = openNamedItem(operation.path());
    if (!item.hasValue()) return operation.shouldProceedAfterError(item.problem());
    BytePath const target(operation.toPath());
    std::string_view const parent = target.parent();
    Result<FileDescriptor> const folder = openPath(parent.empty() ? "." : parent, O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return operation.shouldProceedAfterError(folder.problem());
    bool const isNamed = !target.leaf().empty() && target.leaf() != "." && target.leaf() != "..";
    if (!isNamed || item.value().name.empty())
        return operation.shouldProceedAfterError({.code = EINVAL, .operation = "rename", .item = operation.path()});
    operation.willProcess(operation.path());
    Result<void, TransferProblem> const done =
        transfer({.item = item.value(), .folder = folder.value(), .name = std::string(target.leaf())});
    return done.isDone() || operation.shouldProceedAfterError(operation.path(), reasonOf(done.problem()));
}

bool transferItem(Transfer transfer, HandledOperation operation) { return run(transfer, operation); }

} // namespace

bool NSFileManager::removeFileAtPath_handler_(NSString const& path, id const& handler) const {
    std::optional<std::string> const bytes = *this == nil ? std::nullopt : bytesOf(path);
    if (!bytes) return false;
    HandledOperation operation(*this, handler, *bytes);
    Result<OpenItem> const item = openNamedItem(*bytes);
    if (!item.hasValue()) return operation.shouldProceedAfterError(item.problem());
    // The questions name the item by its name alone.
    std::string const folder(BytePath(*bytes).parent());
    RemovalQuestions const questions{
        .willRemove = [&](std::string const& inner) { operation.willProcess(BytePath(folder).joined(inner)); },
        .shouldContinueAfter =
            [&](std::string const& inner, SystemError const& error) {
                return operation.shouldProceedAfterError(BytePath(folder).joined(inner), reasonOf(error));
            },
    };
    Result<void> const removed = removeItem(item.value(), questions);
    if (removed.isDone()) return true;
    return operation.wasAsked() ? !operation.hasEnded() : operation.shouldProceedAfterError(removed.problem());
}

bool NSFileManager::movePath_toPath_handler_(NSString const& path, NSString const& newPath, id const& handler) const {
    std::optional<std::string> const from = *this == nil ? std::nullopt : bytesOf(path);
    std::optional<std::string> const to = bytesOf(newPath);
    return from && to && transferItem(&moveItem, {*this, handler, *from, *to});
}

bool NSFileManager::copyPath_toPath_handler_(NSString const& path, NSString const& newPath, id const& handler) const {
    std::optional<std::string> const from = *this == nil ? std::nullopt : bytesOf(path);
    std::optional<std::string> const to = bytesOf(newPath);
    return from && to && transferItem(&copyItem, {*this, handler, *from, *to});
}

} // namespace mac
