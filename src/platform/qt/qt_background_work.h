#pragma once

#include <QThreadPool>

#include "platform/background_work.h"

namespace ferrowyn {

/// Worker threads in a pool of their own, so that nothing else that uses Qt's global pool can hold up a snapshot.
class QtBackgroundWork final : public BackgroundWork {
public:
    QtBackgroundWork();
    ~QtBackgroundWork() override;
    QtBackgroundWork(const QtBackgroundWork&) = delete;
    QtBackgroundWork& operator=(const QtBackgroundWork&) = delete;

    void run(std::function<void()> work) override;
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override;

private:
    QThreadPool pool_;
};

}  // namespace ferrowyn
