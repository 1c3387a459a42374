#include "bench/Library.h"

#include <cstdio>

#include "refhost/settings/HostSettings.h"

namespace bench {

namespace {

std::string RectText(int left, int top, int right, int bottom) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "{\"Position:left\":%d,\"Position:top\":%d,\"Position:right\":%d,\"Position:bottom\":%d}", left, top,
                  right, bottom);
    return text;
}

}  // namespace

SettingsFile::SettingsFile(int sets, int areas) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    m_path = std::wstring(folder) + L"bench" + std::to_wstring(GetCurrentProcessId()) + L".json";
    std::string rects;
    for (int i = 0; i < areas; ++i) {
        const int left = i % 40 * 50;
        const int top = i / 40 * 20 % 2900;
        rects += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":" + RectText(left, top, left + 40, top + 15);
    }
    FILE* file = _wfopen(m_path.c_str(), L"wb");
    Require(file != nullptr, "no settings file can be written");
    std::fputs("{", file);
    for (int id = 1; id <= sets; ++id) {
        std::fprintf(file, "%s\"%#010x\":{\"Name\":\"Set %d\",\"Flags\":0,\"DisplayRect\":%s,\"Rect\":{%s}}",
                     id > 1 ? "," : "", static_cast<unsigned>(id), id, RectText(0, 0, 2100, 2970).c_str(),
                     rects.c_str());
    }
    std::fputs("}", file);
    std::fclose(file);
    const auto open = m_classes.Dll().Export<decltype(HostSettingsOpenFile)>("HostSettingsOpenFile");
    Require(SUCCEEDED(open(m_path.c_str(), &m_root)), "the settings file cannot be opened");
}

SettingsFile::~SettingsFile() {
    m_root = nullptr;
    DeleteFileW(m_path.c_str());
}

}  // namespace bench
