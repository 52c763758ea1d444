// page_writer.h: a page that shows a run in any browser, in one file: the heights of its steps, packed, with
// what draws them. The page in the making keeps only what each step changed.
#pragma once
#include <cstdio>
#include "export/export_step.h"
#include "platform/owned.h"

struct PageWriter;

// A page without steps of a run whose stack was set up. Keeps copies of all it is given but the stack.
// Heights are counted in millionths of a micrometre, in runs that may reach a millimetre in ten times as
// much, and so on. Freed with page_writer_free.
//   process_text   the whole process file as it was read; a copy is kept
PageWriter *page_writer_create(const Stack *stack, const ExportFacts *facts, const char *process_text);

void page_writer_free(PageWriter *page);  // takes null

template <>
struct Freed<PageWriter> {
    void operator()(PageWriter *page) const { page_writer_free(page); }
};

// Appends a step as the stack is. False when memory for its heights is lacking: the page then stays as it
// was.
bool page_writer_add(PageWriter *page, const ExportStep *step);

// Writes the page to a file that is open for binary writing. False with the reason, as an ExportWriter.
bool page_writer_write(const PageWriter *page, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
