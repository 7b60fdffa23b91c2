#pragma once

#include <QWidget>

namespace ferrowyn {

struct Platform;

/// The program's icon, name, version and maker, as the about window and the settings show them. Main thread. The
/// platform outlives it.
class AboutContent final : public QWidget {
    Q_OBJECT

public:
    /// `iconSize` is the side of the icon in points.
    AboutContent(const Platform& platform, int iconSize);
};

}  // namespace ferrowyn
