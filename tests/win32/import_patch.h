// import_patch.h: put a function of the test in the place of one that this program imports from a library
// of the system, for the whole program, libraries linked statically included.
#pragma once
#include <type_traits>

// Replaces the imported function of that name. Returns the original; null, and a failure of the running
// test, when the program does not import it.
void *import_patch(const char *name, void *replacement);

// The same with the function's own type.
template <typename Function>
Function *import_replace(const char *name, Function *replacement) {
    static_assert(std::is_function_v<Function>);
    return reinterpret_cast<Function *>(import_patch(name, reinterpret_cast<void *>(replacement)));
}
