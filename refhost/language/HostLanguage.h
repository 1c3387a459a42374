#pragma once
// HostLanguage.dll beyond src/host/Language.h: which language is meant.
//
// The language module of "Some.dll" is "Some.<language>.dll" in the same folder. For "de-DE" the module of "de-DE"
// comes first, then that of "de". It is mapped as data; no code of it runs.

#include <windows.h>

extern "C" {

// Sets the language ("de-DE", "fr") for modules that have not asked yet; null or empty is the user's language. Takes
// precedence over the environment variable HOST_LANGUAGE. Returns 0 for a text that is no language name.
BOOL HostLanguageSet(const wchar_t* language);
}
