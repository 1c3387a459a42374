#pragma once
// The settings store as the persistence sees it: every failure is an exception, no status codes.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

class SettingsNode;
using SettingsNodePtr = std::unique_ptr<SettingsNode>;

// A failure that no host call reported: no node, a list that is none.
class SettingsError : public std::exception {
public:
    const char* what() const noexcept override { return "settings node"; }
};

// Carried by an exception when nothing was found out about the value: the host has no memory, or the connection to its
// object is lost. Any other failure says that the value is not there.
struct SettingsLost {};

// The names of a node's sub-nodes. A list whose lower bound is not 0 has positions that cannot be read.
class SubNodeNames {
public:
    SubNodeNames(std::vector<std::wstring> names, int64_t count) : m_names(std::move(names)), m_count(count) {}

    int64_t Count() const { return m_count; }
    const std::wstring& At(int64_t position) const {
        if (position < 0 || static_cast<uint64_t>(position) >= m_names.size()) throw SettingsError();
        return m_names[static_cast<size_t>(position)];
    }

private:
    std::vector<std::wstring> m_names;  // those from position 0 that can be read
    int64_t m_count;                    // those that the list claims
};

// One node of the host's store; a failing call throws.
class SettingsNode {
public:
    virtual ~SettingsNode() = default;

    virtual SubNodeNames GetSubNodeNames() = 0;
    virtual SettingsNodePtr GetSubNode(const std::wstring& name) = 0;  // creates a missing one
    virtual void DeleteSubNode(const std::wstring& name) = 0;
    virtual std::wstring GetString(const wchar_t* name) = 0;
    virtual int64_t GetInt64(const wchar_t* name) = 0;
    virtual void SetString(const wchar_t* name, const std::wstring& value) = 0;
    virtual void SetInt64(const wchar_t* name, int64_t value) = 0;
};
