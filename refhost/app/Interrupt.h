#pragma once
// Ctrl+C as a wish to end that work asks for between its steps.

namespace zonhost {

// While one lives, Ctrl+C, Ctrl+Break and the closing of the console do not end the process by themselves.
class InterruptScope {
public:
    InterruptScope();
    ~InterruptScope();
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;
};

bool Interrupted();

}  // namespace zonhost
