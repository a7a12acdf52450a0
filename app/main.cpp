#include "platform/appkit/interface/NSApplicationMain.h"

int main(int argc, char** argv) { return mac::NSApplicationMain(argc, argv); }
