// Tests of export/film_names.h.
#include "export/film_names.h"

#include <gtest/gtest.h>

#include "process/process_text.h"
#include "tests/support/test_stack.h"

// Names of films with these legend names, one a slot; null: an empty slot.
static std::vector<std::string> names_of(std::initializer_list<const char *> legend_names) {
    const Owned<Stack> stack = test_stack(2, 2, 1.0F);
    for (const char *legend_name : legend_names) {
        Layer *layer = test_layer(stack.get(), "material", 0.0F, 1.0F);
        memory_free(layer->legend_name);
        layer->legend_name = process_text_copy(legend_name).release();
        if (legend_name == nullptr) {
            test_layer_remove(stack.get(), stack->layer_count - 1);
        }
    }
    FilmNames names = film_names_create(stack.get());
    const Owned<FilmNames> owner(&names);
    std::vector<std::string> texts;
    texts.reserve(static_cast<size_t>(names.count));
    for (i32 i = 0; i < names.count; ++i) {
        texts.emplace_back(names.items[i] != nullptr ? names.items[i] : "none");
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(FilmNames, AreThoseOfTheLegend) {
    EXPECT_EQ(names_of({"SUBSTRATE", "OXIDE"}), (Texts{"SUBSTRATE", "OXIDE"}));
    EXPECT_EQ(names_of({}), Texts{});
}

TEST(FilmNames, EqualOnesAreNumberedFromBelow) {
    EXPECT_EQ(names_of({"A", "B", "A", "A", "B"}), (Texts{"A", "B", "A (2)", "A (3)", "B (2)"}));
    EXPECT_EQ(names_of({"A", nullptr, "A"}), (Texts{"A", "none", "A (2)"}));
}

TEST(FilmNames, ANumberThatIsAnotherFilmsNameIsLeftOut) {
    EXPECT_EQ(names_of({"A", "A", "A (2)", "A"}), (Texts{"A", "A (3)", "A (2)", "A (4)"}));
}

TEST(FilmNames, NamesThatLookEqualWhenCleanAreTold) {
    EXPECT_EQ(names_of({"a b", "a\tb"}), (Texts{"a b", "a b (2)"}));
    EXPECT_EQ(names_of({"\xb5", "\xc2\xb5"}), (Texts{"\xc2\xb5", "\xc2\xb5 (2)"}));  // Latin-1 and UTF-8
}

TEST(FilmNames, AFilmWithoutOneHasThatOfItsMaterial) {
    EXPECT_EQ(names_of({""}), (Texts{"material"}));
}
