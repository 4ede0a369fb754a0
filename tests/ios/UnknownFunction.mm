// A function of the Linux C library, declared by hand, so that only its missing definition tells.

extern "C" int get_nprocs();

extern "C" __attribute__((used)) int processors() { return get_nprocs(); }
