#include "platform/files/TrashSteps.h"
#include "platform/foundation/Listeners.h"

namespace mac {

namespace {

Listeners<TrashStep>& listeners() {
    static Listeners<TrashStep> all;
    return all;
}

} // namespace

TrashStepListener::TrashStepListener(std::function<void(TrashStep)> listener)
    : m_token(listeners().add([listener = std::move(listener)](TrashStep const& step) { listener(step); })) {}

TrashStepListener::~TrashStepListener() { listeners().remove(m_token); }

void tellTrashStep(TrashStep step) { listeners().tell(step); }

} // namespace mac
