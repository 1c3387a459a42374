#pragma once
// Results are written beside their place and moved in, so that a file is either there as a whole or not at all; and no
// result ever takes the place of a source, under whatever name or link it is reached.

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace zonhost {

// What tells one file from another: volume and file number.
using FileIdentity = std::pair<uint64_t, uint64_t>;

// Nothing when the file cannot be opened. Links are followed.
std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path);

class OutputGuard {
public:
    // `force`: files that are there may be replaced, but for the sources.
    OutputGuard(const std::vector<std::filesystem::path>& sources, bool force);
    // Throws CommandError (kSomePagesFailed) when nothing may be written there.
    void Check(const std::filesystem::path& target) const;
    // Lets `write` fill a file beside the target, then moves it there. Callable from any thread. Throws CommandError
    // (kSomePagesFailed), or what `write` throws; then nothing stays behind.
    void Write(const std::filesystem::path& target,
               const std::function<void(const std::filesystem::path&)>& write) const;

private:
    std::set<FileIdentity> m_sources;
    bool m_force;
};

}  // namespace zonhost
