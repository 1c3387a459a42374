#include "refhost/app/Commands.h"
#include "refhost/app/Console.h"
#include "refhost/app/FieldSpec.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/WindowHost.h"
#include "refhost/config/ConfigHost.h"

namespace zonhost {

ExitCode PlaceFields(const CommonOptions& common, const FieldsOptions& options) {
    std::vector<FieldSpec> fields;
    std::vector<std::wstring> names;
    for (const std::string& text : options.fields) {
        auto field = ParseField(text);
        if (!field) {
            throw CommandError(
                ExitCode::kUsage,
                "--field " + text + ": write NAME or NAME=left,top,right,bottom in tenths of a millimetre");
        }
        names.push_back(WideFromUtf8(field->name));
        fields.push_back(std::move(*field));
    }
    std::vector<SAIndexField> records;
    for (size_t i = 0; i < fields.size(); ++i) {
        records.push_back({fields[i].top, fields[i].bottom, fields[i].right, fields[i].left, names[i].c_str()});
    }

    HostSession session(common, FilesOfWindow(common, options.window), HostSession::Settings::kMayBeNew);
    const WindowHost windows(options.window);
    auto* host = new confighost::ConfigHost(windows.Quire());
    const bool ran = session.Library().PlaceFields(windows.Owner(), WideFromUtf8(options.name), records, host);
    const bool ended = !host->IsOpen() && host->Mistakes() == 0;
    host->Release();
    if (!ran || !ended) {
        throw CommandError(ExitCode::kNothingDone, "the dialog could not be opened; --verbose shows the log");
    }
    for (size_t i = 0; i < fields.size(); ++i) {
        fields[i].left = records[i].left;
        fields[i].top = records[i].top;
        fields[i].right = records[i].right;
        fields[i].bottom = records[i].bottom;
    }
    Print(options.json ? FieldsAsJson(fields) : FieldsAsText(fields));
    return ExitCode::kDone;
}

}  // namespace zonhost
