#pragma once

#include <functional>

namespace mac {

// What moving to the trash and back has just done; for tests of what happens between two steps.
enum class TrashStep {
    // What has the name is the item that is meant, or the AppleDouble file beside it; it is about to get its new name.
    Checked,
    // It has its new name; whether it is still the same is about to be looked at.
    Renamed,
    // On the disk; the item is about to move.
    InformationWritten,
    ItemMoved,
    // With the AppleDouble file beside it, where there is one.
    AllMoved,
    ItemPutBack,
    ItemErased,
};

// From the listener's birth to its death, on the thread that does it.
class TrashStepListener {
public:
    explicit TrashStepListener(std::function<void(TrashStep)> listener);
    ~TrashStepListener();
    TrashStepListener(TrashStepListener const&) = delete;
    TrashStepListener& operator=(TrashStepListener const&) = delete;

private:
    int m_token;
};

// For who takes the steps.
void tellTrashStep(TrashStep step);

} // namespace mac
