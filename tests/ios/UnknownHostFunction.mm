// A host function that is not in the SDK.

extern "C" int FM_Text_Reverse(void* text);

extern "C" __attribute__((used)) int reverse(void* text) { return FM_Text_Reverse(text); }
