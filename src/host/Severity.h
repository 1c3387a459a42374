#pragma once
// Severities and sources of traces, for the platform-neutral parts too. Hosts and their logs rely on both.

namespace Log {

enum Severity : int {
    kError = 2,       // concerns the user or the data
    kDiagnostic = 6,  // names the failing operation
};

}  // namespace Log

namespace host {

// The module's sources: its files without folder and extension.
inline constexpr const char* kSourceAreaSet = "AreaSet";
inline constexpr const char* kSourceAreaSetImage = "AreaSetImage";
inline constexpr const char* kSourceAreaSetManager = "AreaSetManager";
inline constexpr const char* kSourcePagePreviewCtrl = "PagePreviewCtrl";
inline constexpr const char* kSourceSAMgrConfigDlg = "SAMgrConfigDlg";
inline constexpr const char* kSourceSASetConfigDlg = "SASetConfigDlg";
inline constexpr const char* kSourceZonwick = "Zonwick";
inline constexpr const char* kSourceZonwickWiz = "ZonwickWiz";

}  // namespace host
