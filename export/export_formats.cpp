#include "export/export_formats.h"

#include <cassert>

#include "export/export_file.h"
#include "export/mesh_glb.h"
#include "export/mesh_stl.h"
#include "export/profile_csv.h"
#include "export/profile_gds.h"
#include "export/profile_pdf.h"
#include "export/profile_svg.h"

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

// What is written as what.
struct StepWriting {
    const ExportStep *step;
    ExportFormat format;
};

static bool write_step(void *context, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    const auto *writing = static_cast<const StepWriting *>(context);
    return EXPORT_FORMATS[writing->format].write(writing->step, file, reason);
}

bool export_write(const ExportStep *step, ExportFormat format, const wchar_t *path,
                  wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && path != nullptr && reason != nullptr);
    assert(format >= 0 && format < EXPORT_FORMAT_COUNT);
    StepWriting writing = {step, format};
    return export_file_write(path, &writing, write_step, reason);
}
