#pragma once
// Failures in the user's words, to whoever listens.

#include <string>

namespace documents {

// Keeps the text for HostDocumentsErrorText and tells the reporter.
void Report(const std::wstring& text);

struct Override {
    double dpiX = 0;
    double dpiY = 0;
};
Override ResolutionOverride();

}  // namespace documents
