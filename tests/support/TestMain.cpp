#include "tests/support/TestRun.h"

int main(int argc, char** argv) { return mac::test::runTests(argc, argv); }
