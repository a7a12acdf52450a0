#pragma once

#include <QApplication>
#include <chrono>
#include <memory>

namespace mac {

// Connects the program to the display; argc and argv must outlive the answer. Where there is none, or it does not
// answer, a line on standard error says so: without a display set the answer is null, otherwise the process ends with
// status 1, since the toolkit knows no way back from there.
std::unique_ptr<QApplication> connectToDisplay(int& argc, char** argv,
                                               std::chrono::milliseconds patience = std::chrono::seconds(15));

// Whether the display that the environment names takes connections now and, unless it is a Wayland display, answers
// within the thread's patience. Any thread.
bool isDisplayThere();

// Makes the toolkit's dialogs and clipboard what scripts ask and use. Main thread; once the application is there.
void installUserInterface();

} // namespace mac
