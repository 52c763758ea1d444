// solid_walk.h: the solids of a step, one after the other. A file that tells of its meshes before they come
// is written in two walks, so that one mesh at a time is in memory.
#pragma once
#include "export/solid_mesh.h"

// Why a step has no solid.
inline constexpr const wchar_t *SOLID_NONE_REASON = L"no film of this step has a volume";

// Takes the solid of a slot; false ends the walk.
using SolidTaker = bool (*)(void *context, i32 slot, const SolidMesh *mesh);

// Makes the solids of all films of a stack that have one, in the order of their slots.
void solid_walk(const Stack *stack, SolidTaker take, void *context);
