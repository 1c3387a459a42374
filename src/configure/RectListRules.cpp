#include "configure/RectListRules.h"

#include <algorithm>

namespace rectlist {
namespace {

int32_t ThreeQuarters(int32_t length) {
    return static_cast<int32_t>(int64_t{3} * length / 4);
}

constexpr int32_t kSmallestPage = 80;  // pixels of height

constexpr std::array<ZoomMode, 3> kFittingModes = {ZoomMode::kWholePage, ZoomMode::kPageHeight, ZoomMode::kPageWidth};

}  // namespace

PageRect GetMiddleHalf(int32_t width, int32_t height) {
    return {width / 4, height / 4, ThreeQuarters(width), ThreeQuarters(height)};
}

HeightCuts GetHeightCuts(int32_t excess, int32_t room, int32_t pageHeight, int32_t listHeight) {
    if (excess <= 0) return {0, 0};
    const int32_t most = std::max(0, pageHeight - kSmallestPage);
    const int32_t page = std::clamp(std::min(excess, room), 0, most);
    const int32_t list = std::min(excess - page, listHeight * 2 / 3);
    return {std::min(excess - list, most), list};
}

std::vector<int> GetRowsLosingField(const std::vector<std::wstring>& fields, int row) {
    std::vector<int> losing;
    const std::wstring& field = fields.at(static_cast<size_t>(row));
    if (field.empty()) return losing;
    for (int other = 0; other < static_cast<int>(fields.size()); ++other) {
        if (other != row && fields[static_cast<size_t>(other)] == field) losing.push_back(other);
    }
    return losing;
}

void RemovedFields::Remember(uint32_t rectId, const std::wstring& field) {
    if (!field.empty()) m_fields[rectId] = field;
}

std::wstring RemovedFields::TakeBack(uint32_t rectId, const std::vector<std::wstring>& fields) {
    const auto node = m_fields.extract(rectId);
    if (node.empty() || std::find(fields.begin(), fields.end(), node.mapped()) != fields.end()) return {};
    return node.mapped();
}

std::optional<Zoom> GetZoom(int64_t command) {
    if (command < kFirstScaleCommand) return std::nullopt;
    auto index = static_cast<uint64_t>(command) - kFirstScaleCommand;
    if (index < kScalePercents.size()) return Zoom{ZoomMode::kPercent, kScalePercents[index]};
    index -= kScalePercents.size();
    if (index < kFittingModes.size()) return Zoom{kFittingModes[index], 0};
    return std::nullopt;
}

uint32_t GetStartScaleCommand(int64_t stored) {
    return GetZoom(stored) ? static_cast<uint32_t>(stored) : kWholePageCommand;
}

}  // namespace rectlist
