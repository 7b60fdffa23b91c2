#pragma once

#include <QIcon>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

#include "core/texts.h"
#include "core/utility_texts.h"
#include "platform/application.h"

namespace ferrowyn {

struct Platform;

/// Texts about the program. Pure functions; they are untranslated.
namespace about_lines {

/// "Ferrowyn" where the installation gives no name.
[[nodiscard]] std::string productName(const BundleInfo& bundle);
/// "1.0" where the installation gives no version.
[[nodiscard]] std::string version(const BundleInfo& bundle);
/// "Version 1.0".
[[nodiscard]] Phrase versionLine(const BundleInfo& bundle, const UtilityTexts& texts);
/// What the installation says, else "© 2026 Ferrowyn" in the year 2026.
[[nodiscard]] Phrase copyrightLine(const BundleInfo& bundle, int year, const UtilityTexts& texts);
/// Name and version, for screen readers.
[[nodiscard]] Phrase accessibilitySummary(const BundleInfo& bundle, const UtilityTexts& texts);
/// The address without the scheme and without slashes at its end.
[[nodiscard]] std::string siteName(std::string_view address);

}  // namespace about_lines

/// The program's icon. Main thread.
class ProductIcon final : public QWidget {
    Q_OBJECT

public:
    /// `side` in points; `name` is what a screen reader calls it.
    ProductIcon(int side, const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// The program's icon in the sizes of task bars and window frames. Needs a QGuiApplication.
[[nodiscard]] QIcon programIcon();

/// The link to the home page, or a text that says that there is none. The layout to which the caller adds it takes
/// ownership.
[[nodiscard]] QWidget* makeSiteLink(const Platform& platform);

/// The program's icon, name, version and maker, as the about window and the settings show them. Main thread. The
/// platform outlives it.
class AboutContent final : public QWidget {
    Q_OBJECT

public:
    /// `iconSize` is the side of the icon in points.
    AboutContent(const Platform& platform, int iconSize);
};

/// The content of the about window. Main thread. The platform outlives it.
class AboutView final : public QWidget {
    Q_OBJECT

public:
    /// `onClose` closes the about window.
    AboutView(const Platform& platform, std::function<void()> onClose);
};

}  // namespace ferrowyn
