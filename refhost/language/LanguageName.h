#pragma once
// Names of languages and of language modules. Platform-neutral.

#include <string>
#include <vector>

namespace language {

// Letters, digits and hyphens as in "de" or "zh-Hant-TW": nothing that could lead out of a folder.
bool IsLanguageName(const std::wstring& name);

// Where the language module of `module` may be, the most exact first: for "C:\x\Some.dll" and "de-DE"
// "C:\x\Some.de-DE.dll", then "C:\x\Some.de.dll".
std::vector<std::wstring> ModulePaths(const std::wstring& module, const std::wstring& language);

}  // namespace language
