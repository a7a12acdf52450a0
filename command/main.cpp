#include "command/Command.h"

int main(int argc, char** argv) { return framekeeper::runCommand({argv + (argc > 0 ? 1 : 0), argv + argc}); }
