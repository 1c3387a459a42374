#include "processes/CountedSettings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

#include "refhost/settings/HostSettings.h"

namespace test {

namespace {

// True when this call is to fail.
bool Count(int) {
    HostCalls& calls = Calls();
    if (++calls.count == calls.endAt) TerminateProcess(GetCurrentProcess(), kEndedAtCall);
    if (const auto during = std::exchange(calls.during, nullptr)) {
        during();
        calls.during = during;
    }
    return calls.count == calls.failAt;
}

}  // namespace

HostCalls& Calls() {
    static HostCalls calls;
    return calls;
}

SettingsFile::SettingsFile() {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    path = std::wstring(folder) + L"sets" + std::to_wstring(GetCurrentProcessId()) + L".json";
}

SettingsFile::~SettingsFile() {
    Remove();
    EXPECT_TRUE(classes.Idle());
}

win32::ComPtr<ISettingsNode> SettingsFile::Open() const {
    win32::ComPtr<ISettingsNode> root;
    classes.Dll().Export<decltype(HostSettingsOpenFile)>("HostSettingsOpenFile")(path.c_str(), &root);
    return root;
}

void SettingsFile::Write(const std::string& content) const {
    FILE* file = _wfopen(path.c_str(), L"wb");
    ASSERT_NE(file, nullptr);
    fwrite(content.data(), 1, content.size(), file);
    fclose(file);
}

std::string SettingsFile::Read() const {
    std::string content(size_t{1} << 16, '\0');
    FILE* file = _wfopen(path.c_str(), L"rb");
    content.resize(file != nullptr ? fread(content.data(), 1, content.size(), file) : 0);
    if (file != nullptr) fclose(file);
    return content;
}

void SettingsFile::Remove() const {
    for (const wchar_t* suffix : {L"", L".bak", L".lock", L".commit", L".refused-1"})
        DeleteFileW((path + suffix).c_str());
}

void SettingsFile::ShowClasses(const std::function<void(void* object, size_t slots)>& show) const {
    win32::ComPtr<ISettingsNode> node;
    win32::ComPtr<ISettingsTransfer> transfer;
    const auto make = [](REFCLSID classId, REFIID iid, auto** object) {
        EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_ALL, iid, reinterpret_cast<void**>(object)), S_OK);
    };
    make(host::kClsidSettingsNode, __uuidof(ISettingsNode), &node);
    make(host::kClsidSettingsTransfer, __uuidof(ISettingsTransfer), &transfer);
    show(node.GetInterfacePtr(), 21);
    show(transfer.GetInterfacePtr(), 9);
}

CountedSettings::CountedSettings() {
    Calls() = {};
    ShowClasses(
        [this](void* object, size_t slots) { m_hooks.GateInterface(object, slots, Count, 0, &Calls().failStatus); });
}

std::string SampleFile(int sets, int areas) {
    const std::string rect =
        "{\"Position:left\":10,\"Position:top\":20,\"Position:right\":300,\"Position:bottom\":400}";
    std::string text = "{";
    for (int id = 1; id <= sets; ++id) {
        char key[16];
        std::snprintf(key, sizeof key, "%#010x", static_cast<unsigned>(id));
        text += (id > 1 ? ",\"" : "\"") + std::string(key) + "\":{\"Name\":\"Set " + std::to_string(id) +
                "\",\"Flags\":0,\"DisplayRect\":" + rect + ",\"Rect\":{";
        for (int i = 0; i < areas; ++i) text += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":" + rect;
        text += "}}";
    }
    return text + "}";
}

}  // namespace test
