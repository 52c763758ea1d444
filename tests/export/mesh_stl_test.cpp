// Tests of export/mesh_stl.h: the bytes of STL files.
#include "export/mesh_stl.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "mesh_files.h"
#include "solid_check.h"

static constexpr size_t HEADER = 80;
static constexpr size_t RECORD = 50;

static f32 number_at(const std::string &bytes, size_t at) {
    const u32 bits = mesh_u32(bytes, at);
    f32 value = 0.0F;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

static SolidVertex place_at(const std::string &bytes, size_t at) {
    return {number_at(bytes, at), number_at(bytes, at + 4), number_at(bytes, at + 8)};
}

TEST(MeshStl, ABoxIsTwelveRecords) {
    const Owned<Stack> stack = test_stack(5, 5, 0.5F);
    test_layer(stack.get(), "A", 1.0F, 1.25F);
    const MeshStep step(stack.get());
    std::wstring reason;
    const std::string bytes = mesh_file(step.step, EXPORT_STL, &reason);
    ASSERT_EQ(bytes.size(), HEADER + 4 + 12 * RECORD) << test_utf8(reason);
    EXPECT_NE(bytes.compare(0, 5, "solid"), 0) << "that would be a file in text";
    EXPECT_EQ(bytes.find("binary STL, micrometres, step 3, by Quarn 1.2.3"), 0U);
    EXPECT_EQ(mesh_u32(bytes, HEADER), 12U);
    SolidSoup soup;
    for (size_t at = HEADER + 4; at < bytes.size(); at += RECORD) {
        for (size_t k = 1; k <= 3; ++k) {
            soup.corners.push_back(place_at(bytes, at + 12 * k));
        }
        const SolidVertex normal = place_at(bytes, at);
        EXPECT_EQ(std::fabs(normal.x) + std::fabs(normal.y) + std::fabs(normal.z), 1.0F) << "along an axis";
        const SolidVertex a = soup.corners[soup.corners.size() - 3];
        // Outward: away from the middle of the box, (1, 1, 1.125).
        EXPECT_GT(normal.x * (a.x - 1.0F) + normal.y * (a.y - 1.0F) + normal.z * (a.z - 1.125F), 0.0F);
        EXPECT_EQ(bytes.compare(at + 48, 2, std::string(2, '\0')), 0);
    }
    EXPECT_EQ(solid_soup_fault(soup), "");
    EXPECT_DOUBLE_EQ(solid_soup_volume(soup), 2.0 * 2.0 * 0.25);
}

TEST(MeshStl, AllFilmsAreInTheFile) {
    const Owned<Stack> stack = test_stack(5, 5, 0.5F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    test_layer(stack.get(), "GONE", 0.0F, 0.0F);
    test_layer(stack.get(), "B", 1.0F, 1.5F);
    test_layer_remove(stack.get(), 1);
    test_layer(stack.get(), "NOWHERE", 1.5F, 1.5F);
    const MeshStep step(stack.get());
    std::wstring reason;
    EXPECT_EQ(mesh_file(step.step, EXPORT_STL, &reason).size(), HEADER + 4 + 24 * RECORD);
}

TEST(MeshStl, AStepWithoutAnySolidIsRefused) {
    const Owned<Stack> stack = test_stack(5, 1, 0.5F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    const MeshStep step(stack.get());
    std::wstring reason;
    EXPECT_EQ(mesh_file(step.step, EXPORT_STL, &reason), "");
    EXPECT_EQ(reason, L"no film of this step has a volume");
}

#ifndef _WIN32
TEST(MeshStl, ADiskThatIsFullIsTold) {
    const Owned<Stack> stack = test_stack(5, 5, 0.5F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    const MeshStep step(stack.get());
    for (const ExportFormat format : {EXPORT_STL, EXPORT_GLB}) {
        wchar_t reason[EXPORT_REASON_SIZE] = L"";
        EXPECT_FALSE(export_write(&step.step, format, L"/dev/full", reason));
        EXPECT_STRNE(reason, L"");
    }
}
#endif
