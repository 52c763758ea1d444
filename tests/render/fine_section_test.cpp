#include "render/fine_section.h"

#include "render/visible_parts.h"
#include "tests/support/film_stack.h"

static constexpr i32 TOPS = PART_TOP_A | PART_TOP_B;
static constexpr i32 UNDERS = PART_UNDER_A | PART_UNDER_B;
static const FilmHeights GROUND = {0.0F, 1.0F};
static const FilmHeights FILM = {1.0F, 2.0F};
static const FilmHeights COVER = {2.0F, 3.0F};

// The parts of a film's quads in the first row.
static std::vector<i32> row_parts(const FineSection &section, i32 film) {
    const u8 *parts = fine_section_parts(&section, film);
    return {parts, parts + section.stack->grid_n - 1};
}

TEST(FineSectionCreate, TheBorderOfTwoOpaqueFilmsIsNotSeen) {
    FilmStack made(3, 2);
    made.add_columns({GROUND, GROUND, GROUND});
    made.add_columns({FILM, FILM, FILM});
    const FineSection section = fine_section_create(&made.stack);
    ASSERT_EQ(section.face.film_count, 2);
    EXPECT_EQ(row_parts(section, 0), (std::vector<i32>{0, 0}));
    EXPECT_EQ(row_parts(section, 1), (std::vector<i32>{TOPS, TOPS}));
    for (i32 point = 0; point < 6; ++point) {
        EXPECT_EQ(section.surface[point], 2.0F);
    }
}

TEST(FineSectionCreate, OverTheQuadInWhichAFilmEndsTheGroundShowsToo) {
    FilmStack made(4, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND});
    made.add_columns({FILM, FILM, {1.0F, 1.0F}, {1.0F, 1.0F}});
    const FineSection section = fine_section_create(&made.stack);
    EXPECT_EQ(row_parts(section, 0), (std::vector<i32>{0, TOPS | FINE_PART_STEP, TOPS}));
    EXPECT_EQ(row_parts(section, 1), (std::vector<i32>{TOPS, TOPS, 0}));
}

TEST(FineSectionCreate, AFilmAtOnePointTakesTheTrianglesAroundIt) {
    // At the point (1, 1) of 3 x 3: of the quads around it B, A and B, A and B, and A have that corner.
    FilmStack made(3, 3);
    made.add([](i32, i32) { return GROUND; });
    made.add([](i32 n, i32 m) { return n == 1 && m == 1 ? FILM : FilmHeights{1.0F, 1.0F}; });
    const FineSection section = fine_section_create(&made.stack);
    const u8 *film = fine_section_parts(&section, 1);
    const u8 *ground = fine_section_parts(&section, 0);
    const i32 expected[4] = {PART_TOP_B, TOPS, TOPS, PART_TOP_A};
    const i32 quads[4] = {0, 1, 3, 4};
    for (i32 i = 0; i < 4; ++i) {
        EXPECT_EQ(film[quads[i]], expected[i]) << "quad " << quads[i];
        EXPECT_EQ(ground[quads[i]], TOPS | FINE_PART_STEP) << "quad " << quads[i];
    }
}

TEST(FineSectionCreate, GlassGivesTheBorderToWhatIsSeenThroughIt) {
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({FILM, FILM}, 0.5F);
    made.add_columns({COVER, COVER});
    const FineSection under_metal = fine_section_create(&made.stack);
    EXPECT_EQ(row_parts(under_metal, 0)[0], TOPS) << "the ground shows through the glass";
    EXPECT_EQ(row_parts(under_metal, 1)[0], 0) << "the metal gives the border";
    EXPECT_EQ(row_parts(under_metal, 2)[0], TOPS | UNDERS);
    made.layers[2]->color[3] = 0.5F;
    const FineSection two_glasses = fine_section_create(&made.stack);
    EXPECT_EQ(row_parts(two_glasses, 1)[0], TOPS) << "seen from above";
    EXPECT_EQ(row_parts(two_glasses, 2)[0], TOPS | UNDERS) << "seen from below";
    EXPECT_TRUE(fine_film_is_solid(&two_glasses, 0));
    EXPECT_FALSE(fine_film_is_solid(&two_glasses, 1));
}

TEST(FineSectionCreate, AClearFilmIsAir) {
    FilmStack made(2, 2);
    made.add_columns({GROUND, GROUND});
    made.add_columns({FILM, FILM}, 0.0F);
    made.add_columns({COVER, COVER});
    const FineSection section = fine_section_create(&made.stack);
    ASSERT_EQ(section.face.film_count, 2);
    EXPECT_EQ(section.face.slots[1], 2);
    EXPECT_EQ(row_parts(section, 0)[0], TOPS);
    EXPECT_EQ(row_parts(section, 1)[0], TOPS | UNDERS);
}

TEST(FineSectionCreate, UnderAReleasedFilmBothSurfacesAreSeen) {
    // The beam ends behind column 1 and stands on the ground from column 4 on.
    FilmStack made(6, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND, GROUND, GROUND});
    made.add_columns({COVER, COVER, {1.0F, 1.0F}, {1.0F, 1.0F}, {1.0F, 3.0F}, {1.0F, 3.0F}});
    const FineSection section = fine_section_create(&made.stack);
    EXPECT_EQ(row_parts(section, 0),
              (std::vector<i32>{TOPS, TOPS | FINE_PART_STEP, TOPS, TOPS | FINE_PART_STEP, 0}));
    EXPECT_EQ(row_parts(section, 1), (std::vector<i32>{TOPS | UNDERS, TOPS | UNDERS, 0, TOPS, TOPS}));
}

TEST(FineSectionCreate, WhereALiningEndsTheAirBeneathStaysOpen) {
    // The lining hangs on the beam at column 0 and ends at column 1, where it is as thin as the floor of the
    // beam; beyond, nothing is between beam and ground.
    FilmStack made(4, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND});
    made.add_columns({{2.0F, 2.5F}, {2.0F, 2.0F}, {2.0F, 2.0F}, {2.0F, 2.0F}});
    made.add_columns({{2.5F, 3.0F}, {2.5F, 3.0F}, {2.5F, 3.0F}, {2.5F, 3.0F}});
    const FineSection section = fine_section_create(&made.stack);
    EXPECT_EQ(row_parts(section, 0), (std::vector<i32>{TOPS, TOPS, TOPS}));
    EXPECT_EQ(row_parts(section, 1), (std::vector<i32>{UNDERS, 0, 0}));
    EXPECT_EQ(row_parts(section, 2), (std::vector<i32>{TOPS, TOPS | UNDERS, TOPS | UNDERS}));
}

TEST(FineSectionCreate, TellsWhatThereIsInsideAPoint) {
    // Columns: ground alone; glass on it; metal on the glass; metal over air; metal on the ground.
    const FilmHeights none = {1.0F, 1.0F};
    FilmStack made(5, 2);
    made.add_columns({GROUND, GROUND, GROUND, GROUND, GROUND});
    made.add_columns({none, FILM, FILM, none, none}, 0.5F);
    made.add_columns({none, none, COVER, COVER, FILM});
    const FineSection section = fine_section_create(&made.stack);
    const i32 inside[5] = {0, FINE_GLASS, FINE_GLASS | FINE_HOLLOW, FINE_HOLLOW, 0};
    const f32 surface[5] = {1.0F, 2.0F, 3.0F, 3.0F, 2.0F};
    const f32 solid_surface[5] = {1.0F, 1.0F, 3.0F, 3.0F, 2.0F};
    for (i32 n = 0; n < 5; ++n) {
        EXPECT_EQ(section.inside[n], inside[n]) << n;
        EXPECT_EQ(section.surface[n], surface[n]) << n;
        EXPECT_EQ(section.solid_surface[n], solid_surface[n]) << n;
    }
}
