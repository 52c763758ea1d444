// Tests of export/mesh_glb.h: the parts of binary glTF files. That readers take them is tested with a
// validator in tests/page.
#include "export/mesh_glb.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "export/solid_mesh.h"
#include "mesh_files.h"
#include "process/process_text.h"
#include "solid_check.h"

struct GlbParts {
    std::string json, binary;
};

// Takes a file apart and looks at its lengths.
static GlbParts parts_of(const std::string &bytes) {
    GlbParts parts;
    if (bytes.size() < 28) {
        ADD_FAILURE() << "a file of " << bytes.size() << " bytes";
        return parts;
    }
    EXPECT_EQ(bytes.compare(0, 4, "glTF"), 0);
    EXPECT_EQ(mesh_u32(bytes, 4), 2U);
    EXPECT_EQ(mesh_u32(bytes, 8), bytes.size());
    const size_t json_size = mesh_u32(bytes, 12);
    EXPECT_EQ(json_size % 4, 0U);
    EXPECT_EQ(bytes.compare(16, 4, "JSON"), 0);
    parts.json = bytes.substr(20, json_size);
    EXPECT_EQ(mesh_u32(bytes, 20 + json_size), bytes.size() - 28 - json_size);
    EXPECT_EQ(bytes.compare(24 + json_size, 4, std::string("BIN\0", 4)), 0);
    parts.binary = bytes.substr(28 + json_size);
    return parts;
}

static GlbParts written_parts(const ExportStep &step) {
    std::wstring reason;
    const std::string bytes = mesh_file(step, EXPORT_GLB, &reason);
    EXPECT_EQ(reason, L"");
    return parts_of(bytes);
}

static bool has(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

// The triangles of a mesh at the start of the binary part, with indices of 2 bytes.
static SolidSoup soup_of(const std::string &binary, size_t vertex_count, size_t index_count) {
    std::vector<SolidVertex> vertices(vertex_count);
    std::memcpy(vertices.data(), binary.data(), vertex_count * sizeof(SolidVertex));
    SolidSoup soup;
    for (size_t i = 0; i < index_count; ++i) {
        const size_t at = vertex_count * sizeof(SolidVertex) + 2 * i;
        const size_t number = static_cast<u8>(binary[at]) + size_t{256} * static_cast<u8>(binary[at + 1]);
        soup.corners.push_back(vertices.at(number));
    }
    return soup;
}

TEST(MeshGlb, ABoxStandsUprightWithItsFaceInFront) {
    const Owned<Stack> stack = test_stack(5, 3, 0.5F);
    Layer *layer = test_layer(stack.get(), "A", 1.0F, 1.25F);
    layer->color[0] = 1.0F;
    layer->color[1] = 0.5F;
    layer->color[2] = 0.0F;
    layer->color[3] = 1.0F;
    const MeshStep step(stack.get());
    const GlbParts parts = written_parts(step.step);
    // 2 um wide, 1 um deep, two blocks of 2 x 2 quads at the top and below: 12 vertices and, with one more
    // point along the long sides, 4 + 4 + 4 + 4 + 2 + 2 triangles.
    EXPECT_TRUE(has(parts.json, "\"type\":\"VEC3\",\"count\":12,\"min\":[0,1,-1],\"max\":[2,1.25,0]"))
        << parts.json;
    EXPECT_TRUE(has(parts.json, "\"componentType\":5123,\"type\":\"SCALAR\",\"count\":60}")) << parts.json;
    EXPECT_TRUE(has(parts.json, "\"scale\":[0.000001,0.000001,0.000001]")) << parts.json;
    ASSERT_EQ(parts.binary.size(), 12U * 12U + 60U * 2U);
    const SolidSoup soup = soup_of(parts.binary, 12, 60);
    EXPECT_EQ(solid_soup_fault(soup), "");
    EXPECT_DOUBLE_EQ(solid_soup_volume(soup), 2.0 * 1.0 * 0.25);
    // sRGB 0.5 is 0.214041 of the light.
    EXPECT_TRUE(has(parts.json, "\"baseColorFactor\":[1.000000,0.214041,0.000000,1.000000]")) << parts.json;
    EXPECT_TRUE(has(parts.json, "\"alphaMode\":\"OPAQUE\",\"doubleSided\":false"));
    EXPECT_TRUE(has(parts.json, "\"volume_um3\":0.5"));
}

TEST(MeshGlb, TheFactsStandInTheFile) {
    const Owned<Stack> stack = test_stack(5, 3, 0.5F);
    test_layer(stack.get(), "A", 1.0F, 1.25F);
    stack->cell_name = process_text_copy("CELL").release();
    MeshStep step(stack.get());
    step.facts.cut_name = "left";
    const GlbParts parts = written_parts(step.step);
    EXPECT_TRUE(has(parts.json,
                    "\"asset\":{\"version\":\"2.0\",\"generator\":\"Quarn 1.2.3\",\"extras\":{"
                    "\"title\":\"Cross section after OXIDE deposition\",\"step\":3,"
                    "\"cell\":\"CELL\",\"layout\":\"layout.gds\",\"process\":\"process.txt\","
                    "\"cut\":\"left\",\"date\":\"2024-05-31 17:05\"}}"))
        << parts.json;
}

TEST(MeshGlb, EachFilmIsANode) {
    const Owned<Stack> stack = test_stack(5, 3, 0.5F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    test_layer(stack.get(), "GONE", 0.0F, 0.0F);
    Layer *glass = test_layer(stack.get(), "A", 1.0F, 1.5F);
    test_layer_remove(stack.get(), 1);
    test_layer(stack.get(), "NOWHERE", 1.5F, 1.5F);
    glass->color[3] = 0.25F;
    const MeshStep step(stack.get());
    const GlbParts parts = written_parts(step.step);
    EXPECT_TRUE(has(parts.json, "\"children\":[1,2]}")) << parts.json;
    EXPECT_TRUE(has(parts.json, "{\"name\":\"A\",\"mesh\":0,\"extras\":{\"material\":\"A\"")) << parts.json;
    EXPECT_TRUE(has(parts.json, "{\"name\":\"A (2)\",\"mesh\":1,\"extras\":{\"material\":\"A\""))
        << parts.json;
    EXPECT_TRUE(
        has(parts.json, "0.250000],\"metallicFactor\":0,\"roughnessFactor\":0.8},\"alphaMode\":\"BLEND\""));
    EXPECT_FALSE(has(parts.json, "NOWHERE"));
    // Two boxes of 12 vertices and 20 triangles.
    EXPECT_EQ(parts.binary.size(), 2U * (144U + 120U));
}

TEST(MeshGlb, NamesThatWouldBreakTheFileDoNot) {
    const Owned<Stack> stack = test_stack(5, 3, 0.5F);
    test_layer(stack.get(), "\"]}\\\n\xFF", 0.0F, 1.0F);
    const MeshStep step(stack.get());
    const GlbParts parts = written_parts(step.step);
    EXPECT_FALSE(has(parts.json, "\n"));
    EXPECT_TRUE(has(parts.json, "\"name\":\"\\\"]}\\\\")) << parts.json;
    EXPECT_TRUE(has(parts.json, "\xC3\xBF")) << "a byte that is no UTF-8 is taken as Latin-1";
}

// 300 x 300 points of which no two neighbours are at one height: more vertices than 2 bytes can number.
TEST(MeshGlb, LargeMeshesHaveLargeIndices) {
    const Owned<Stack> stack = test_stack(300, 300, 0.01F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 1.0F);
    for (i32 point = 0; point < 300 * 300; ++point) {
        layer->top[point] += 0.01F * static_cast<f32>(point % 7);
    }
    const MeshStep step(stack.get());
    const GlbParts parts = written_parts(step.step);
    EXPECT_TRUE(has(parts.json, "\"componentType\":5125")) << parts.json;
}

TEST(MeshGlb, AStepWithoutAnySolidIsRefused) {
    const Owned<Stack> stack = test_stack(5, 3, 0.5F);
    const MeshStep step(stack.get());
    std::wstring reason;
    EXPECT_EQ(mesh_file(step.step, EXPORT_GLB, &reason), "");
    EXPECT_EQ(reason, L"no film of this step has a volume");
}
