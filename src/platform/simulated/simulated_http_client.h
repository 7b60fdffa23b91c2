#pragma once

#include <deque>
#include <utility>

#include "platform/http_client.h"

namespace ferrowyn {

/// Answers nothing by itself: a test looks at the requests and answers them in any order.
class SimulatedHttpClient final : public HttpClient {
public:
    [[nodiscard]] Subscription get(const HttpRequest& request,
                                   std::function<void(const HttpResult&)> completion) override {
        const std::size_t index = requests_.size();
        requests_.push_back({request, std::move(completion)});
        return Subscription([this, index] { requests_.at(index).completion = nullptr; });
    }

    [[nodiscard]] std::size_t requestCount() const { return requests_.size(); }
    [[nodiscard]] const HttpRequest& request(std::size_t index) const { return requests_.at(index).request; }
    /// Cancelled or answered already.
    [[nodiscard]] bool hasEnded(std::size_t index) const { return requests_.at(index).completion == nullptr; }
    /// Does nothing for a request that has ended.
    void answer(std::size_t index, const HttpResult& result) {
        if (const auto completion = std::exchange(requests_.at(index).completion, nullptr)) {
            completion(result);
        }
    }

private:
    struct Entry {
        HttpRequest request;
        std::function<void(const HttpResult&)> completion;
    };

    std::deque<Entry> requests_;
};

}  // namespace ferrowyn
