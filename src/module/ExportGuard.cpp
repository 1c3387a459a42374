#include "module/ExportGuard.h"

namespace module {

void TraceCurrentException(const char* source, int line, const wchar_t* name) noexcept {
    try {
        throw;
    } catch (const _com_error& error) {
        trace::TraceText(trace::kError, source, line, L"%ls: a host object failed with status 0x%08lx.", name,
                         static_cast<unsigned long>(error.Error()));
    } catch (const std::bad_alloc&) {
        trace::TraceText(trace::kError, source, line, L"%ls: out of memory.", name);
    } catch (...) {
        trace::TraceText(trace::kError, source, line, L"%ls: unexpected failure.", name);
    }
}

}  // namespace module
