#include "process/process_step.h"

#include <gtest/gtest.h>

#include "platform/memory.h"
#include "process/material_table.h"
#include "process/process_text.h"
#include "tests/support/test_support.h"

TEST(StepList, StartsWithRoomFor512AndDoubles) {
    const i64 blocks = memory_live_blocks();
    Owned<StepList> steps(step_list_create());
    EXPECT_EQ(steps->count, 0);
    EXPECT_EQ(steps->capacity, 512);
    for (i32 i = 0; i < 513; ++i) {
        auto *step = memory_new_zeroed<ProcessStep>();
        step->mask_id = i;
        step_list_append(steps.get(), step);
        EXPECT_EQ(steps->capacity, i < 512 ? 512 : 1024);
    }
    EXPECT_EQ(steps->count, 513);
    EXPECT_EQ(steps->items[0]->mask_id, 0);
    EXPECT_EQ(steps->items[512]->mask_id, 512);
    steps.reset();
    EXPECT_EQ(memory_live_blocks(), blocks);
}

TEST(StepList, FreesEveryTextOfAStep) {
    const i64 blocks = memory_live_blocks();
    Owned<StepList> steps(step_list_create());
    auto *step = memory_new_zeroed<ProcessStep>();
    for (char **text : {&step->title, &step->label, &step->material, &step->material_type, &step->resist_ref,
                        &step->name}) {
        *text = process_text_copy("text").release();
    }
    name_list_append(&step->target_materials, "OXIDE");
    step_list_append(steps.get(), step);
    steps.reset();
    EXPECT_EQ(memory_live_blocks(), blocks);
}

TEST(StepList, FreeTakesNull) {
    step_list_free(nullptr);
}

TEST(NameList, KeepsCopiesInOrderAndDoublesFrom512) {
    const i64 blocks = memory_live_blocks();
    NameList list;
    name_list_create(&list);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.capacity, 512);
    char name[] = "a0";
    for (i32 i = 0; i < 513; ++i) {
        name[1] = static_cast<char>('0' + i % 10);
        name_list_append(&list, name);
    }
    EXPECT_EQ(list.capacity, 1024);
    EXPECT_STREQ(list.items[0], "a0");
    EXPECT_STREQ(list.items[512], "a2");
    name_list_free(&list);
    EXPECT_EQ(list.items, nullptr);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(memory_live_blocks(), blocks);
}

TEST(MaterialTable, ComparesWholeNamesAndAllowsNoType) {
    const i64 blocks = memory_live_blocks();
    Owned<MaterialTable> owned(material_table_create());
    MaterialTable *table = owned.get();
    EXPECT_EQ(table->capacity, 512);
    material_table_add(table, "_SUB_", nullptr);
    material_table_add(table, "OXIDE", "ox");
    EXPECT_TRUE(material_table_has(table, "_SUB_"));
    EXPECT_TRUE(material_table_has(table, "OXIDE"));
    EXPECT_FALSE(material_table_has(table, "oxide"));
    EXPECT_FALSE(material_table_has(table, "OXID"));
    EXPECT_FALSE(material_table_has(table, ""));
    EXPECT_EQ(table->entries[0].type, nullptr);
    EXPECT_STREQ(table->entries[1].type, "ox");
    for (i32 i = 2; i < 513; ++i) {
        material_table_add(table, "M", "m");
    }
    EXPECT_EQ(table->capacity, 1024);
    owned.reset();
    material_table_free(nullptr);
    EXPECT_EQ(memory_live_blocks(), blocks);
}

TEST(ListDeathTest, GrowthWithoutMemoryIsAReallocationError) {
    EXPECT_EXIT(
        {
            StepList *steps = step_list_create();
            for (i32 i = 0; i < 512; ++i) {
                step_list_append(steps, memory_new_zeroed<ProcessStep>());
            }
            auto *last = memory_new_zeroed<ProcessStep>();
            memory_trip_after(0);
            step_list_append(steps, last);
        },
        testing::ExitedWithCode(TEST_OUT_OF_MEMORY), "Memory reallocation error");
    EXPECT_EXIT(
        {
            memory_trip_after(1);
            step_list_create();
        },
        testing::ExitedWithCode(TEST_OUT_OF_MEMORY), "Memory allocation error");
}
