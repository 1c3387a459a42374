#include "processes/SettingsFile.h"

#include <algorithm>
#include <cstdio>

#include "host/Imaging.h"
#include "refhost/imaging/HostImaging.h"

namespace test {

void SettingsFileDialog::TearDown() {
    // Exported without a name.
    if (m_page != nullptr) {
        reinterpret_cast<decltype(&::HostReleaseImage)>(
            reinterpret_cast<void*>(GetProcAddress(m_imaging->Get(), MAKEINTRESOURCEA(83))))(m_page);
    }
    TakeTraces();
    ManageDialog::TearDown();
    for (const wchar_t* suffix : {L"", L".bak", L".lock", L".commit"}) DeleteFileW((m_path + suffix).c_str());
}

void SettingsFileDialog::OpenFile(const std::wstring& path) {
    m_path = path;
    const auto root = counted.OpenFile(path.c_str());
    ASSERT_TRUE(root != nullptr) << "damaged";
    m_init(root);
}

void SettingsFileDialog::NewFile(const std::string& content) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    m_path = std::wstring(folder) + L"death" + std::to_wstring(GetCurrentProcessId()) + L".json";
    WriteFile(content);
}

void SettingsFileDialog::WriteFile(const std::string& content) const {
    FILE* file = _wfopen(m_path.c_str(), L"wb");
    ASSERT_NE(file, nullptr);
    fwrite(content.data(), 1, content.size(), file);
    fclose(file);
}

std::string SettingsFileDialog::ReadFile() const {
    std::string content(size_t{1} << 16, '\0');
    FILE* file = _wfopen(m_path.c_str(), L"rb");
    content.resize(file != nullptr ? fread(content.data(), 1, content.size(), file) : 0);
    if (file != nullptr) fclose(file);
    return content;
}

std::wstring SettingsFileDialog::Sets() {
    std::wstring text;
    const auto map = Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID");
    const auto getInfo = Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo");
    DWORD id = 0;
    for (int i = 0; map(i, &id); ++i) {
        SAAreaInfo info = {};
        EXPECT_TRUE(getInfo(id, &info));
        text += std::to_wstring(id) + L" " + info.szName + L" " + std::to_wstring(info.dwFlags);
        for (const RECT& rect : StoredRects(id)) {
            for (const LONG side : {rect.left, rect.top, rect.right, rect.bottom}) text += L" " + std::to_wstring(side);
        }
        text += L"\n";
    }
    return text;
}

void SettingsFileDialog::LoadPage() {
    m_imaging = std::make_unique<com::HostDll>(L"HostImaging.dll");
    void* file = nullptr;
    uint32_t frames = 0;
    ASSERT_TRUE(m_imaging->Export<decltype(::HostOpenImageFile)>("HostOpenImageFile")(SAMPLES_DIR L"/letter.tif", &file,
                                                                                      &frames));
    EXPECT_TRUE(m_imaging->Export<decltype(::HostLoadFrame)>("HostLoadFrame")(file, 0, 0, 0, &m_page));
    m_imaging->Export<decltype(::HostCloseImageFile)>("HostCloseImageFile")(file);
}

std::string SettingsFileDialog::MaskedPage(const wchar_t* set) {
    BYTE* block = nullptr;
    DWORD length = 0;
    if (!Export<decltype(::CreateAreaSetImage)>("CreateAreaSetImage")(m_page, set, &block, &length)) return {};
    std::string content(block, block + length);
    Export<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block);
    return content;
}

bool SettingsFileDialog::MetAnAbandonedLock() {
    const auto traces = TakeTraces();
    return std::any_of(traces.begin(), traces.end(), [](const Trace& trace) {
        return trace.text.find(L"ended without releasing it") != std::wstring::npos;
    });
}

std::string SampleFile() {
    const std::string rect =
        "{\"Position:left\":10,\"Position:top\":20,\"Position:right\":300,\"Position:bottom\":400}";
    std::string text = "{";
    for (const char* id : {"1", "2", "3"}) {
        text += std::string(text.size() > 1 ? "," : "") + "\"0x0000000" + id + "\":{\"Name\":\"Set " + id +
                "\",\"Flags\":0,\"DisplayRect\":" + rect + ",\"Rect\":{\"0\":" + rect + ",\"1\":" + rect + "}}";
    }
    return text + "}";
}

}  // namespace test
