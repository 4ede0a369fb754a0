// A function that Apple wants declared with a reason, and the privacy manifest does not declare.

#include <sys/mount.h>

extern "C" __attribute__((used)) int freeSpace(struct statfs* status) { return statfs("/", status); }
