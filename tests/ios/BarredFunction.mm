// A function that Apple's headers have for the Mac and bar on iOS.

#include <cstdlib>

extern "C" __attribute__((used)) int runCommand() { return std::system("ls"); }
