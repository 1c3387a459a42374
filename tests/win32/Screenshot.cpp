#include <cstdio>
#include <vector>

#include "win32/DialogDriver.h"

namespace {

void WriteBitmap(const std::wstring& path, const BITMAPINFOHEADER& header, const std::vector<BYTE>& pixels) {
    FILE* file = _wfopen(path.c_str(), L"wb");
    if (file == nullptr) return;
    BITMAPFILEHEADER start = {};
    start.bfType = 0x4D42;
    start.bfOffBits = sizeof(start) + sizeof(header);
    start.bfSize = start.bfOffBits + static_cast<DWORD>(pixels.size());
    std::fwrite(&start, sizeof(start), 1, file);
    std::fwrite(&header, sizeof(header), 1, file);
    std::fwrite(pixels.data(), 1, pixels.size(), file);
    std::fclose(file);
}

}  // namespace

namespace test {

void Screenshot(HWND window, const std::wstring& name) {
    wchar_t folder[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"ZONWICK_SCREENSHOTS", folder, MAX_PATH) == 0) return;
    RECT rect = {};
    GetWindowRect(window, &rect);
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof(header);
    header.biWidth = rect.right - rect.left;
    header.biHeight = rect.bottom - rect.top;
    header.biPlanes = 1;
    header.biBitCount = 32;
    std::vector<BYTE> pixels(static_cast<size_t>(header.biWidth) * static_cast<size_t>(header.biHeight) * 4);

    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, header.biWidth, header.biHeight);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, header.biWidth, header.biHeight, screen, rect.left, rect.top, SRCCOPY);
    SelectObject(memory, old);
    BITMAPINFO info = {};
    info.bmiHeader = header;
    GetDIBits(memory, bitmap, 0, static_cast<UINT>(header.biHeight), pixels.data(), &info, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    WriteBitmap(std::wstring(folder) + L"\\" + name + L".bmp", header, pixels);
}

}  // namespace test
