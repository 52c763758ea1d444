// Writes the pages that the tests in this folder open, made of stacks whose heights are known, into a folder:
//   page_sample FOLDER
// Beside NAME.html lies NAME.json: a list with the films of each step, [[film, bottoms, tops], ...], heights
// in millionths of a micrometre.
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "export/page_writer.h"
#include "platform/owned_file.h"
#include "process/process_text.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static constexpr char HOSTILE[] =
    "</script><script>window.was_run = 1</script><img src=x onerror='window.was_run = 1'>"
    "\"'\\\xE2\x80\xA8<!--\xFF";

// A run in the making: its stack, its page, and what the page should tell.
struct Sample {
    Owned<Stack> stack;
    Owned<PageWriter> page;
    ExportFacts facts;
    std::string expected;
    i32 step_count;
};

static void add_command(Stack *stack, i32 kind, const char *title, i32 line) {
    auto *step = memory_new_zeroed<ProcessStep>();
    step->kind = kind;
    step->title = title != nullptr ? process_text_copy(title).release() : nullptr;
    step->thickness = 1;
    step->line_number = line;
    step_list_append(stack->steps, step);
}

static Sample start_sample(i32 grid_n, i32 grid_m, const char *name) {
    Sample sample = {};
    sample.stack = test_stack(grid_n, grid_m, 0.05F);
    sample.stack->steps = step_list_create();
    sample.stack->cell_name = process_text_copy(name).release();
    sample.stack->origin_x = 1.5F;
    sample.stack->origin_y = -2;
    sample.facts = {"Quarn 1.2.3", L"/folder/layout.gds", L"C:\\folder\\process.txt", name,
                    "2024-05-31 17:05"};
    add_command(sample.stack.get(), STEP_DEPOSITION, nullptr, 0);
    return sample;
}

static void put_heights(std::string *out, const f32 *heights, i64 count) {
    *out += "[";
    for (i64 i = 0; i < count; ++i) {
        *out += (i > 0 ? "," : "") + std::to_string(std::llrint(1e6 * static_cast<f64>(heights[i])));
    }
    *out += "]";
}

// Lets the page and the expectation have the stack as it is after the last command.
static void add_step(Sample *sample, const std::wstring &title) {
    Stack *stack = sample->stack.get();
    const i32 index = stack->steps->count - 1;
    const ExportStep step = {stack, index, sample->step_count, title.c_str(), L"Heading", 1, &sample->facts};
    if (sample->page == nullptr) {
        const std::string text = "# line 1\n" + std::string(stack->cell_name) + "\r\nlast \xE9\n";
        sample->page.reset(page_writer_create(stack, &sample->facts, text.c_str()));
    }
    page_writer_add(sample->page.get(), &step);
    sample->expected += sample->step_count > 0 ? ",\n[" : "[\n[";
    i32 film = 0;
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            sample->expected += (sample->expected.back() == ']' ? ",[" : "[") + std::to_string(film) + ",";
            put_heights(&sample->expected, layer->bottom, stack_point_count(stack));
            sample->expected += ",";
            put_heights(&sample->expected, layer->top, stack_point_count(stack));
            sample->expected += "]";
        }
        ++film;
    }
    sample->expected += "]";
    ++sample->step_count;
}

static void write_sample(Sample *sample, const std::string &path) {
    wchar_t reason[EXPORT_REASON_SIZE];
    const OwnedFile page(std::fopen((path + ".html").c_str(), "wb"));
    const OwnedFile expected(std::fopen((path + ".json").c_str(), "wb"));
    page_writer_write(sample->page.get(), page.get(), reason);
    std::fputs((sample->expected + "\n]\n").c_str(), expected.get());
}

// A deposition that rises in stairs, an etch of a trench into it, a second film, a strip of the first.
static void write_stairs(const std::string &folder) {
    Sample sample = start_sample(60, 20, "STAIRS");
    Stack *stack = sample.stack.get();
    test_layer(stack, SUBSTRATE_MATERIAL, 0, 0.2F);
    add_step(&sample, L"The substrate");

    add_command(stack, STEP_DEPOSITION, "OXIDE deposition", 5);
    Layer *oxide = test_layer(stack, "OXIDE", 0.2F, 0.2F);
    for (i64 i = 0; i < stack_point_count(stack); ++i) {
        oxide->top[i] += 0.1F * static_cast<f32>(1 + i % 60 / 20);
    }
    add_step(&sample, L"Cross section after OXIDE deposition");

    add_command(stack, STEP_ETCH, "etching of OXIDE", 6);
    for (i64 i = 0; i < stack_point_count(stack); ++i) {
        oxide->top[i] = i % 60 >= 25 && i % 60 < 35 ? 0.25F : oxide->top[i];
    }
    add_step(&sample, L"Cross section after etching of OXIDE");

    add_command(stack, STEP_DEPOSITION, "METAL deposition", 7);
    Layer *metal = test_layer(stack, "METAL", 0, 0);
    for (i64 i = 0; i < stack_point_count(stack); ++i) {
        metal->bottom[i] = oxide->top[i];
        metal->top[i] = oxide->top[i] + 0.0123456F;
    }
    add_step(&sample, L"Cross section after METAL deposition");

    add_command(stack, STEP_RELEASE, "releasing of OXIDE", 9);
    test_layer_remove(stack, 1);
    add_step(&sample, L"Cross section after releasing of OXIDE");
    write_sample(&sample, folder + "/stairs");
}

// Changes a film at random: everywhere, in a part, or in its bottom alone.
static void change_film(TestRandom *random, const Stack *stack, Layer *layer) {
    const i64 points = stack_point_count(stack);
    const i64 first = test_random_i32(random, 0, static_cast<i32>(points));
    const i32 what = test_random_i32(random, 0, 3);
    for (i64 i = first; i < points; ++i) {
        if (what != 0) {
            layer->top[i] = test_random_f32(random, -3, 3);
        }
        if (what != 1) {
            layer->bottom[i] = layer->top[i] - (what == 2 ? 0 : test_random_f32(random, -0.001F, 0.5F));
        }
    }
}

// Many steps that change, add and remove films at random, of a grid with an odd number of points.
static void write_random(const std::string &folder) {
    Sample sample = start_sample(23, 7, "RANDOM");
    Stack *stack = sample.stack.get();
    TestRandom random = test_random_start(7);
    test_layer(stack, SUBSTRATE_MATERIAL, 0, 0.2F);
    add_step(&sample, L"The substrate");
    for (i32 i = 1; i < 60; ++i) {
        add_command(stack, STEP_COATING, "coating", i);
        const i32 old_slots = stack->layer_count;
        if (test_random_bool(&random, 0.5)) {
            test_layer(stack, "FILM", 0.2F, test_random_f32(&random, 0, 2));
        }
        for (i32 slot = 1; slot < old_slots; ++slot) {
            if (stack->layers[slot] != nullptr && test_random_bool(&random, 0.2)) {
                change_film(&random, stack, stack->layers[slot]);
            } else if (stack->layers[slot] != nullptr && test_random_bool(&random, 0.1)) {
                test_layer_remove(stack, slot);
            }
        }
        add_step(&sample, L"Cross section after coating");
    }
    write_sample(&sample, folder + "/random");
}

// A single row of points, and every name with markup in it.
static void write_hostile(const std::string &folder) {
    Sample sample = start_sample(200, 1, HOSTILE);
    Stack *stack = sample.stack.get();
    test_layer(stack, SUBSTRATE_MATERIAL, 0, 0.2F);
    add_step(&sample, L"The substrate");
    add_command(stack, STEP_DEPOSITION, HOSTILE, 5);
    test_layer(stack, HOSTILE, 0.2F, 0.5F);
    add_step(&sample, L"Cross section after </script><script>window.was_run = 1</script>\x2028");
    write_sample(&sample, folder + "/hostile");
}

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("Usage: page_sample FOLDER\n", stderr);
        return 2;
    }
    write_stairs(argv[1]);
    write_random(argv[1]);
    write_hostile(argv[1]);
    return 0;
}
