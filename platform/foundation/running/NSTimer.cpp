#include "platform/foundation/running/NSTimer.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/EventLoop.h"
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <limits>

namespace mac {

namespace {

constexpr NSTimeInterval ShortestInterval = 0.0001;

int milliseconds(NSTimeInterval interval) {
    constexpr double most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::ceil(interval * 1000), 0.0, most));
}

} // namespace

class NSTimer::Body : public ObjectBody {
public:
    Body(NSTimeInterval interval, id const& target, SEL selector, id const& userInfo, bool repeats)
        : m_interval(std::isnan(interval) ? ShortestInterval : std::max(interval, ShortestInterval)), m_target(target),
          m_selector(selector), m_userInfo(userInfo), m_repeats(repeats) {
        requireEventLoop();
        m_timer.setSingleShot(!repeats);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { guarded([this] { fire(); }); });
    }

    // The run loop's own reference keeps the timer until it is invalidated.
    void schedule(NSTimer const& self) {
        m_self = self;
        m_timer.start(milliseconds(m_interval));
    }

    void fire() {
        NSTimer const self = m_self;
        if (self == nil) return;
        id const target = m_target;
        SEL const selector = m_selector;
        if (m_repeats) {
            target.performSelector_withObject_(selector, self);
            return;
        }
        // Invalid only after the message, as its receiver may ask; but also when the message raises.
        struct Invalidation {
            NSTimer const& timer;
            ~Invalidation() { timer.invalidate(); }
        } const invalidation{self};
        target.performSelector_withObject_(selector, self);
    }

    void invalidate() {
        m_timer.stop();
        m_target = nil;
        // Last: it may be the last reference.
        NSTimer const self = std::exchange(m_self, NSTimer());
    }

    NSTimeInterval m_interval;
    id m_target;
    SEL m_selector;
    id m_userInfo;
    bool m_repeats;
    NSTimer m_self;

private:
    QTimer m_timer;
};

ClassDescription NSTimer::describeClass() {
    return {
        .name = "NSTimer",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSTimer::invalidate>("invalidate"), method<&NSTimer::isValid>("isValid"),
                    method<&NSTimer::fire>("fire"), method<&NSTimer::userInfo>("userInfo")},
    };
}

NSTimer NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(NSTimeInterval interval,
                                                                                  id const& target, SEL selector,
                                                                                  id const& userInfo, BOOL repeats) {
    if (!selector) throw NSInvalidArgumentException("A timer needs a selector");
    NSTimer const timer = adopt<NSTimer>(interval, target, selector, userInfo, static_cast<bool>(repeats));
    bodyOf(timer)->schedule(timer);
    return timer;
}

void NSTimer::invalidate() const {
    if (*this != nil) bodyOf(*this)->invalidate();
}

bool NSTimer::isValid() const { return *this != nil && bodyOf(*this)->m_self != nil; }

void NSTimer::fire() const {
    if (*this != nil) bodyOf(*this)->fire();
}

id NSTimer::userInfo() const { return *this == nil ? id() : bodyOf(*this)->m_userInfo; }

NSTimeInterval NSTimer::timeInterval() const { return *this == nil ? 0 : bodyOf(*this)->m_interval; }

} // namespace mac
