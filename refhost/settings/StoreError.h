#pragma once
// Why an operation of the settings store failed.

#include <cstddef>
#include <stdexcept>
#include <string>

namespace settings {

enum class Failure {
    kMissing,
    kWrongKind,
    kBadName,
    kTooDeep,
    kTooLarge,
    kDamaged,
};

// The message is UTF-8.
class StoreError : public std::runtime_error {
public:
    StoreError(Failure failure, const std::string& message) : std::runtime_error(message), m_failure(failure) {}
    Failure What() const noexcept { return m_failure; }

private:
    Failure m_failure;
};

// A file that does not hold a settings tree.
class DamageError : public StoreError {
public:
    DamageError(size_t line, const std::string& reason) : StoreError(Failure::kDamaged, reason), m_line(line) {}
    size_t Line() const noexcept { return m_line; }

private:
    size_t m_line;
};

}  // namespace settings
