#include "platform/foundation/running/BackgroundWork.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <system_error>
#include <thread>

namespace mac {

BackgroundWork::BackgroundWork(Work work, std::function<void()> ended) {
    std::stop_token const stop = m_stop.get_token();
    Tell const tell = [stop](std::function<void()> function) {
        if (stop.stop_requested()) return;
        performOnMainRunLoop([stop, function = std::move(function)] {
            if (!stop.stop_requested()) function();
        });
    };
    try {
        std::thread([work = std::move(work), stop, tell, ended] {
            guarded([&] { work(stop, tell); });
            if (ended) guarded([&] { tell(ended); });
        }).detach();
    } catch (std::system_error const& error) {
        NSLog("No thread could be started: %s", error.what());
        if (ended) tell(ended);
    }
}

BackgroundWork::~BackgroundWork() { m_stop.request_stop(); }

} // namespace mac
