#pragma once
// Areas and area sets: data only. No locking, no persistence, no drawing.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/PageRect.h"

// The one flag of an area set that has a meaning: its areas are the parts of the page to leave out. The other bits are
// carried along as they are. The public header gives the same value to hosts.
inline constexpr uint32_t kAreasIgnored = 0x10000000;

// Marks an area that stands for one of the host's indexing fields; bound exactly when the name is not empty.
struct CIndexFieldContainer {
    bool m_bIndexField = false;
    std::wstring m_strIndexField;
};

// One area: a normalised rectangle (left <= right, top <= bottom), possibly bound to an indexing field.
class CAreaRect : public CIndexFieldContainer {
public:
    CAreaRect() = default;
    // Swaps left with right and top with bottom where they are the wrong way round.
    explicit CAreaRect(const PageRect& rect);

    PageRect GetRectangle() const { return m_rect; }

private:
    PageRect m_rect;
};

// A named, ordered list of areas with a flag word and the extent of the page on which they were laid out. Owns its
// areas. Not synchronised: the manager's lock guards the collection of sets, not a set.
class CAreaSet : public CIndexFieldContainer {
public:
    CAreaSet() = default;
    CAreaSet(std::wstring name, uint32_t dwID);
    CAreaSet(const CAreaSet&) = delete;
    // Copies everything, the identifier too, but no area's indexing field. When memory runs out nothing has changed.
    CAreaSet& operator=(const CAreaSet& source);
    ~CAreaSet() = default;

    // As assignment, but the set keeps its own identifier.
    void CopyFrom(const CAreaSet& source);

    std::wstring GetName() const { return m_strName; }
    void SetName(std::wstring name) { m_strName = std::move(name); }
    uint32_t GetID() const { return m_dwID; }
    uint32_t GetFlags() const { return m_dwFlags; }
    void SetFlags(uint32_t dwFlags) { m_dwFlags = dwFlags; }
    PageRect GetDisplayRect() const { return m_rectDisplay; }
    void SetDisplayRect(const PageRect& rect) { m_rectDisplay = rect; }

    int32_t GetRectCount() const { return static_cast<int32_t>(m_arrRects.size()); }
    // The area at a position, owned by the set; null and a trace when there is none.
    CAreaRect* GetRect(int32_t iIndex) const;
    bool AddRect(const PageRect& rect);
    // Binds the area to an indexing field unless the name is empty.
    bool AddRect(const PageRect& rect, const std::wstring& indexField);
    void RemoveAllRects() { m_arrRects.clear(); }

private:
    std::wstring m_strName;
    uint32_t m_dwID = 0;
    uint32_t m_dwFlags = 0;
    PageRect m_rectDisplay;
    std::vector<std::unique_ptr<CAreaRect>> m_arrRects;
};
