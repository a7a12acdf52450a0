#include "platform/foundation/running/RunLoopMode.h"
#include "platform/foundation/running/NSRunLoop.h"

namespace mac {

namespace {

thread_local RunLoopModeScope const* s_innermost = nullptr;

} // namespace

RunLoopModeScope::RunLoopModeScope(NSString const& mode)
    : m_mode(mode == nil ? NSString(NSDefaultRunLoopMode) : mode), m_outer(s_innermost) {
    bool const isSame = currentRunLoopMode().isEqualToString_(m_mode);
    s_innermost = this;
    if (!isSame) wakeWaitingNotifications();
}

RunLoopModeScope::~RunLoopModeScope() {
    s_innermost = m_outer;
    if (!currentRunLoopMode().isEqualToString_(m_mode)) wakeWaitingNotifications();
}

NSString currentRunLoopMode() { return s_innermost ? s_innermost->mode() : NSString(NSDefaultRunLoopMode); }

} // namespace mac
