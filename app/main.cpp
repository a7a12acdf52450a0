#include "platform/appkit/NSApplication.h"

int main(int argc, char** argv) { return mac::NSApplicationMain(argc, argv); }
