#pragma once

#include <QWidget>

namespace ferrowyn {

struct Platform;

/// The link to the home page, or a text that says that there is none. For whoever takes it in: it has no parent yet.
[[nodiscard]] QWidget* makeSiteLink(const Platform& platform);

/// The program's icon, name, version and maker, as the about window and the settings show them. Main thread. The
/// platform outlives it.
class AboutContent final : public QWidget {
    Q_OBJECT

public:
    /// `iconSize` is the side of the icon in points.
    AboutContent(const Platform& platform, int iconSize);
};

}  // namespace ferrowyn
