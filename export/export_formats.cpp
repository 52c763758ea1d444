#include "export/export_formats.h"

#include <cassert>
#include <cwchar>

#include "export/mesh_glb.h"
#include "export/mesh_stl.h"
#include "export/profile_csv.h"
#include "export/profile_gds.h"
#include "export/profile_pdf.h"
#include "export/profile_svg.h"
#include "platform/whole_file.h"

static_assert(EXPORT_REASON_SIZE >= WHOLE_FILE_REASON_SIZE, "a reason of one fits into the other");

// clang-format off
const ExportFormatForm EXPORT_FORMATS[EXPORT_FORMAT_COUNT] = {
    {"svg", L".svg", L"SVG drawings (*.svg)", false, profile_svg_write},
    {"pdf", L".pdf", L"PDF drawings (*.pdf)", false, profile_pdf_write},
    {"csv", L".csv", L"Tables of heights (*.csv)", false, profile_csv_write},
    {"gds", L".gds", L"GDSII profiles (*.gds)", false, profile_gds_write},
    {"glb", L".glb", L"glTF solids (*.glb)", true, mesh_glb_write},
    {"stl", L".stl", L"STL solids (*.stl)", true, mesh_stl_write},
};
// clang-format on

bool export_write(const ExportStep *step, ExportFormat format, const wchar_t *path,
                  wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && path != nullptr && reason != nullptr);
    assert(format >= 0 && format < EXPORT_FORMAT_COUNT);
    WholeFile whole;
    if (!whole_file_open(&whole, path, "wb")) {
        std::wcsncpy(reason, whole.reason, EXPORT_REASON_SIZE);
        return false;
    }
    if (!EXPORT_FORMATS[format].write(step, whole.file, reason)) {
        whole_file_abandon(&whole);
        return false;
    }
    if (!whole_file_commit(&whole)) {
        std::wcsncpy(reason, whole.reason, EXPORT_REASON_SIZE);
        return false;
    }
    return true;
}
