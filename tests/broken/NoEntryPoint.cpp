// Has no entry point under the name that hosts look for.
extern "C" void FMExternCall() {}
