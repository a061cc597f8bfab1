// Where Windows enters a DLL when it loads or leaves it, and when threads start and end. Nothing needs setting up.

extern "C" int __stdcall lumLoadEntry(void* module, unsigned long reason, void* reserved);

int __stdcall lumLoadEntry(void* /*module*/, unsigned long /*reason*/, void* /*reserved*/) { return 1; }
