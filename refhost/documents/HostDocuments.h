#pragma once
// HostDocuments.dll: the host's page image class and its document stack. The class (host::kClsidPageImage, served by
// DllGetClassObject) has both page image interfaces, IImageLoader and IPagePixels (PixelAccess.h).
//
// Threads   The host's window thread, with COM initialised on it.
// Errors    HRESULTs; HostDocumentsErrorText tells the last failure in the user's words, and a reporter hears each.

#include "host/DocumentStack.h"

extern "C" {
// Makes a document stack. A file is a document with its frames as pages; a folder is a document with the frames of the
// image files directly in it, in the order in which a person numbers them. Nothing but folder listings and frame counts
// is read before a page is asked for.
//
// Files may change and vanish while the stack lives: a page that was handed out keeps its bytes, other pages are those
// of the file as it is when they are asked for. A page that cannot be had, and one beyond the last, is null.
//
// S_OK; S_FALSE when some paths do not exist (reported, and left out); a failing status and no stack when all are so.
HRESULT WINAPI HostOpenDocuments(const wchar_t* const* paths, UINT count, IQuire** quire);

// Hears every failure of stacks and page images, once per cause. Null ends it. The text names the file and says what to
// do.
using HostDocumentsReporter = void(CALLBACK*)(void* context, const wchar_t* text);
void WINAPI HostDocumentsSetReporter(HostDocumentsReporter reporter, void* context);

// The last failure's text; never null. Valid until the next call.
const wchar_t* WINAPI HostDocumentsErrorText(void);

// The resolution that page images loaded from now on have instead of their files'; 0 for the files' own, axis by axis.
void WINAPI HostDocumentsSetResolution(double dpiX, double dpiY);
}
