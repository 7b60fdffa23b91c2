#pragma once

#include <QPushButton>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "ui/common/images.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/settings_model.h"

namespace ferrowyn {

struct UtilityTexts;
class IconImage;

/// A pinned application: its icon, name and star, and a button that removes it. Icon and name are painted here, because
/// a label of the toolkit neither elides its text nor waits with its picture until it is seen. Main thread.
class FavouriteRow final : public QWidget {
    Q_OBJECT

public:
    /// Called once, when the row is first painted, because loading may be slow.
    using IconLoader = std::function<std::shared_ptr<const IconImage>()>;

    FavouriteRow(const std::string& name, IconLoader loadIcon, const UtilityTexts& texts);

    [[nodiscard]] QPushButton& removeButton() { return *remove_; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// In a language that runs from left to right.
    [[nodiscard]] QRectF nameRect() const;
    [[nodiscard]] QRectF starRect() const;

    QString name_;
    IconLoader loadIcon_;
    std::shared_ptr<const IconImage> icon_;
    QPushButton* remove_ = nullptr;
    IconImages icons_;
    SymbolImages symbols_;
};

/// The pinned applications. Main thread. The platform and the services outlive it.
class FavouritesPane final : public SettingsPaneView {
    Q_OBJECT

public:
    FavouritesPane(const Platform& platform, const SettingsServices& services);

private:
    void addOrdering();
    void addPinnedApps();
    void showFavourites(const std::vector<std::string>& identifiers);
    [[nodiscard]] std::shared_ptr<const IconImage> icon(const std::string& identifier, const std::string& name) const;

    Platform platform_;
    SettingsServices services_;
    SettingsGroup* pinned_ = nullptr;
    QWidget* nothingPinned_ = nullptr;
    QPushButton* removeAll_ = nullptr;
    std::vector<FavouriteRow*> rows_;
};

}  // namespace ferrowyn
