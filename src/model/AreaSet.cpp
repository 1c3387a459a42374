#include "model/AreaSet.h"

#include <utility>

#include "trace/Trace.h"

namespace {

constexpr const char* kSource = "AreaSet";

}  // namespace

CAreaRect::CAreaRect(const PageRect& rect) : m_rect(rect) {
    if (m_rect.left > m_rect.right) std::swap(m_rect.left, m_rect.right);
    if (m_rect.top > m_rect.bottom) std::swap(m_rect.top, m_rect.bottom);
}

CAreaSet::CAreaSet(std::wstring name, uint32_t dwID) : m_strName(std::move(name)), m_dwID(dwID) {}

CAreaSet& CAreaSet::operator=(const CAreaSet& source) {
    if (this != &source) {
        CopyFrom(source);
        m_dwID = source.m_dwID;
    }
    return *this;
}

void CAreaSet::CopyFrom(const CAreaSet& source) {
    if (this == &source) return;
    std::wstring name = source.m_strName;
    std::vector<std::unique_ptr<CAreaRect>> rects;
    rects.reserve(source.m_arrRects.size());
    for (const auto& rect : source.m_arrRects) rects.push_back(std::make_unique<CAreaRect>(rect->GetRectangle()));

    m_strName.swap(name);
    m_dwFlags = source.m_dwFlags;
    m_rectDisplay = source.m_rectDisplay;
    m_arrRects.swap(rects);
}

CAreaRect* CAreaSet::GetRect(int32_t iIndex) const {
    if (iIndex < 0 || iIndex >= GetRectCount()) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"CAreaSet::GetRect: iIndex out of array bounds.");
        return nullptr;
    }
    return m_arrRects[static_cast<size_t>(iIndex)].get();
}

bool CAreaSet::AddRect(const PageRect& rect) {
    m_arrRects.push_back(std::make_unique<CAreaRect>(rect));
    return true;
}

bool CAreaSet::AddRect(const PageRect& rect, const std::wstring& indexField) {
    if (indexField.empty()) return AddRect(rect);
    auto area = std::make_unique<CAreaRect>(rect);
    area->m_strIndexField = indexField;
    area->m_bIndexField = true;
    m_arrRects.push_back(std::move(area));
    return true;
}
