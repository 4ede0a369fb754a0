// A function that Apple's headers offer on the Mac and forbid on iOS.

#include <cstdlib>

extern "C" __attribute__((used)) int runCommand() { return std::system("ls"); }
