#pragma once

#include <QWidget>

namespace ferrowyn {

/// What a window shows while the program is still starting: a bar that says only that something is being done. Main
/// thread.
class ProgressView final : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize contentSize{460, 120};

    ProgressView();
};

}  // namespace ferrowyn
