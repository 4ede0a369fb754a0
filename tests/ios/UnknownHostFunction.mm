// A host function that the SDK does not have.

extern "C" int FM_Text_Reverse(void* text);

extern "C" __attribute__((used)) int reverse(void* text) { return FM_Text_Reverse(text); }
