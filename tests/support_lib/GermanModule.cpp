// A language module with an entry point that nobody should run.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) {
    SetEnvironmentVariableW(L"LANGUAGE_MODULE_RAN", L"1");
    return TRUE;
}
