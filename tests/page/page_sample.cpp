// Writes pages of stacks whose heights are known, for the tests in this folder:
//   page_sample FOLDER
#include <cstdio>
#include <string>

#include "export/page_writer.h"
#include "platform/owned_file.h"
#include "tests/support/test_stack.h"

static const ExportFacts FACTS = {"Quarn 3.0.0", L"layout.gds", L"process.txt", nullptr, "2024-05-31 17:05"};

// Films that rise in steps from left to right.
static void write_stairs(const std::string &folder) {
    const Owned<Stack> stack = test_stack(20, 10, 0.05F);
    test_layer(stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    const Owned<PageWriter> page(page_writer_create(stack.get(), &FACTS, ""));
    const ExportStep step = {stack.get(), 0, 0, L"The substrate", nullptr, 1, &FACTS};
    page_writer_add(page.get(), &step);
    wchar_t reason[EXPORT_REASON_SIZE];
    const OwnedFile file(std::fopen((folder + "/stairs.html").c_str(), "wb"));
    page_writer_write(page.get(), file.get(), reason);
}

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("Usage: page_sample FOLDER\n", stderr);
        return 2;
    }
    write_stairs(argv[1]);
    return 0;
}
