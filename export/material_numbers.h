// material_numbers.h: the numbers of the materials of a run, which are the layers of profiles in GDSII files.
// A material is what has the same name and colour in the legend. Numbers go by the order in which the steps
// of the process file bring the materials, the substrate's is 1: they are the same in the files of all steps.
#pragma once
#include <cstdio>
#include "export/export_step.h"
#include "platform/owned.h"
#include "sim/layer.h"

struct NumberedMaterial {
    const char *name;      // in the legend; of unknown encoding; not owned
    const char *material;  // that steps go by; not owned
    f32 color[4];          // red, green, blue, alpha, 0..1
};

// Number i is items[i - 1].
struct MaterialNumbers {
    NumberedMaterial *items;  // owned
    i32 count, capacity;
};

// The materials of a stack's steps, and of layers that no step tells of, behind them. Refers to the stack's
// texts. Freed with material_numbers_free.
MaterialNumbers *material_numbers_create(const Stack *stack);

void material_numbers_free(MaterialNumbers *numbers);  // takes null

template <>
struct Freed<MaterialNumbers> {
    void operator()(MaterialNumbers *numbers) const { material_numbers_free(numbers); }
};

// The number of a layer of the stack that the numbers were made of.
i32 material_number_of(const MaterialNumbers *numbers, const Layer *layer);

// Writes the table layers.csv of a run: "number,name,material,color", a row a material; colours are #rrggbb
// or, where light goes through, #rrggbbaa. The file is open for binary writing; what goes wrong with it is
// left to the caller, who asks std::ferror. False with the reason when memory is lacking.
bool material_numbers_write(const Stack *stack, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]);
