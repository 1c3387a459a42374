#pragma once
// The commands of zonhost. Each throws CommandError when it cannot go on.

#include "refhost/app/Options.h"

namespace zonhost {

ExitCode ListSets(const CommonOptions& common, const ListOptions& options);
ExitCode ShowSet(const CommonOptions& common, const ShowOptions& options);
ExitCode ExportSets(const CommonOptions& common, const ExportOptions& options);
ExitCode ImportSets(const CommonOptions& common, const ImportOptions& options);
ExitCode MaskPages(const CommonOptions& common, const MaskOptions& options);
ExitCode ViewPages(const CommonOptions& common, const ViewOptions& options);
ExitCode ManageSets(const CommonOptions& common, const ManageOptions& options);
ExitCode PlaceFields(const CommonOptions& common, const FieldsOptions& options);

}  // namespace zonhost
