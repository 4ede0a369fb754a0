// A second exported function beside the entry point.

extern "C" __attribute__((visibility("default"))) int Surplus() { return 1; }
