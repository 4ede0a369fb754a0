// A function of the Linux C library with its own declaration, so only the missing definition shows the fault.

extern "C" int get_nprocs();

extern "C" __attribute__((used)) int processors() { return get_nprocs(); }
