// Tests of export/thickness_table.h.
#include "export/thickness_table.h"

#include <gtest/gtest.h>

#include "tests/export/export_fixture.h"

static const std::string HEADER =
    "step,title,layer,film,middle_nm,smallest_nm,mean_nm,largest_nm,coverage,face_area_um2,volume_um3,"
    "highest_nm,step_height_nm,surface_step_height_nm\n";

TEST(ThicknessTable, HasARowForEachStepAndFilm) {
    ExportFixture fixture(3, 2, 0.5F);
    test_layer(fixture.stack.get(), "SUBSTRATE", -0.5F, 0.0F);
    ExportText table = {};
    const Owned<ExportText> owner(&table);
    thickness_table_start(&table);
    fixture.step.index = 0;
    fixture.step.number = 0;
    thickness_table_add(&table, &fixture.step);
    test_layer(fixture.stack.get(), "gone", 0.0F, 1.0F);
    Layer *a = test_layer(fixture.stack.get(), "A", 0.0F, 0.125F);
    test_layer_remove(fixture.stack.get(), 1);
    a->top[0] = 0.0F;
    a->top[1] = 0.375F;
    fixture.stack->cells[0].height = -0.125F;
    fixture.stack->cells[5].height = 0.25F;
    fixture.step.index = 1;
    fixture.step.number = 7;
    thickness_table_add(&table, &fixture.step);
    ASSERT_TRUE(export_text_finish(&table));
    // What is shown is 1 um wide and 0.5 um deep. The film: 0, 0.375 and 0.125 um on the face, 0.125 um
    // behind it. Its mean where it is: 0.375 and four times 0.125, by five. On the face: (0.1875 + 0.25) *
    // 0.5 um2. The volume: four triangles of 0.125 um2, each times a third of the sum over its corners: 0.5,
    // 0.625, 0.625 and 0.375 um. The surface goes from -125 nm to 250 nm.
    EXPECT_EQ(std::string(table.bytes, static_cast<size_t>(table.size)),
              HEADER +
                  "0,substrate,0,SUBSTRATE,500,500,500,500,1,0.5,0.25,0,0,0\n"
                  "7,A deposition,0,SUBSTRATE,500,500,500,500,1,0.5,0.25,0,0,"
                  "375\n"
                  "7,A deposition,2,A,375,125,175,375,0.8333333,0.21875,0.088541664,375,250,375\n");
}
