#pragma once

#include <random>
#include <string>

/// Texts for tests that compare two implementations: every script and every way of combining that the fast one treats
/// differently, close together, so that its shortcuts meet.
namespace ferrowyn::unicode_samples {

/// Up to `maximumPieces` pieces of one of several alphabets.
[[nodiscard]] std::string randomText(std::mt19937& random, int maximumPieces);
[[nodiscard]] std::string randomAsciiText(std::mt19937& random, int maximumLength);
/// A query that has good chances to match: some characters of the text in their order, cased, composed or decomposed
/// anew, now and then with a foreign one.
[[nodiscard]] std::string randomQueryFor(std::mt19937& random, const std::string& text);

}  // namespace ferrowyn::unicode_samples
