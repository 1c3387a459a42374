#pragma once
// Stand-ins for the host's closed libraries, which record what the module does with them and can fail on demand. They
// lie in a folder of their own beside a copy of Zonwick.dll; a test gets these functions with GetProcAddress.

#include <windows.h>

#include <cstdint>

// HostSupport.dll. One trace as the module handed it over: the text formatted, "#34106" for a string identifier, "!0"
// for a host message followed by its first argument.
using FakeTraceSink = void (*)(void* context, int severity, HINSTANCE instance, const char* source, int line,
                               const wchar_t* text);
using FakeBoxSink = void (*)(void* context, HWND parent, const wchar_t* text, UINT style, HINSTANCE instance);
using FakeSetSinksFunction = void (*)(void* context, FakeTraceSink traceSink, FakeBoxSink boxSink);

// HostImaging.dll.
struct FakeImaging {
    int maskResult = 1;
    int copyResult = 1;
    uint32_t copyLength = 4;
    // Recorded.
    const void* source = nullptr;
    int maskConstant = 0, copyFormat = 0, copyConstant = -1;
    uint32_t keep = 9, count = 0;
    RECT rects[8] = {};
    int liveImages = 0;
};
using FakeImagingFunction = FakeImaging* (*)();
