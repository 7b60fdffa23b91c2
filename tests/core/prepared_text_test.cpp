#include "core/prepared_text.h"

#include <gtest/gtest.h>

#include <string>

namespace ferrowyn {
namespace {

TEST(PreparedTextCache, GivesTheSamePreparationForTheSameText) {
    PreparedTextCache cache;
    const PreparedText* const first = &cache.prepared("Résumé");
    EXPECT_EQ(first->characterCount(), 6U);
    EXPECT_EQ(&cache.prepared(std::string("Résumé")), first);
    EXPECT_EQ(cache.size(), 1U);
}

TEST(PreparedTextCache, StaysBoundedAndKeepsWhatIsInUse) {
    PreparedTextCache cache;
    const PreparedText* const used = &cache.prepared("é in use");
    for (std::size_t i = 0; i < 3 * PreparedTextCache::generationSize; ++i) {
        EXPECT_EQ(cache.prepared("é " + std::to_string(i)).characterCount(), 2 + std::to_string(i).size());
        EXPECT_EQ(&cache.prepared("é in use"), used);
    }
    EXPECT_LE(cache.size(), 2 * PreparedTextCache::generationSize);
}

TEST(PreparedTextCache, PreparesAheadWhatIsNotThereYet) {
    PreparedTextCache cache;
    EXPECT_TRUE(cache.prepareAhead("Résumé"));
    EXPECT_FALSE(cache.prepareAhead("Résumé"));
    EXPECT_FALSE(cache.prepareAhead(std::string(PreparedTextCache::longestKeptText + 1, 'x')));
    EXPECT_EQ(cache.size(), 1U);
}

TEST(PreparedTextCache, PreparesLongTextsWithoutKeepingThem) {
    PreparedTextCache cache;
    const std::string text = "é" + std::string(PreparedTextCache::longestKeptText, 'x');
    EXPECT_EQ(cache.prepared(text).characterCount(), PreparedTextCache::longestKeptText + 1);
    EXPECT_EQ(cache.size(), 0U);
}

}  // namespace
}  // namespace ferrowyn
