#pragma once

#include "platform/events/EventSending.h"

namespace mac {

// Answers an Apple event that was sent to the desktop's file browser, which receives none, in the browser's place: the
// Finder that scripts tell does what the event says. 'get', 'set', 'count' and 'exists' of the core suite and each
// command of the Finder's dictionary are known; an item may also be given as a reference ('fsrf'), alone or within
// lists and records, and what is done to files is done to that very item. 'open' and 'reveal' give other programs the
// path that the item has then: an item that takes the path before they look is shown instead. The reply holds the
// answer, or the error's number and text: -1708 for an unknown event, -43 for a reference to an item that is gone,
// -1712 if the sender's wait was over before all was done, -108 without memory. nullopt if the process is no file
// browser, and on other threads than the main thread. What the wait's shouldContinue throws goes on to the sender.
std::optional<AppleEvent> finderReplyTo(AppleEvent const& event, ProcessIdentity const& process,
                                        EventWait const& wait = {});

} // namespace mac
