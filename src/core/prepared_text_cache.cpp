#include "core/prepared_text_cache.h"

#include <utility>

namespace ferrowyn {

PreparedTextCache& PreparedTextCache::ofThisThread() {
    thread_local PreparedTextCache cache;
    return cache;
}

const PreparedText& PreparedTextCache::prepared(std::string_view text) {
    if (const auto found = recent_.find(text); found != recent_.end()) {
        return found->second;
    }
    if (text.size() > longestKeptText) {
        longText_ = PreparedText(text);
        return longText_;
    }
    if (recent_.size() >= generationSize) {
        older_ = std::exchange(recent_, {});
    }
    // What is still in use moves on to the recent generation, the rest goes when the next one is full.
    if (const auto found = older_.find(text); found != older_.end()) {
        return recent_.insert(older_.extract(found)).position->second;
    }
    return recent_.try_emplace(std::string(text), text).first->second;
}

bool PreparedTextCache::prepareAhead(std::string_view text) {
    if (text.size() > longestKeptText || recent_.find(text) != recent_.end()) {
        return false;
    }
    const bool isNew = older_.find(text) == older_.end();
    static_cast<void>(prepared(text));
    return isNew;
}

}  // namespace ferrowyn
