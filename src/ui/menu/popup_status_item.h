#pragma once

#include <QColor>
#include <QImage>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/texts.h"
#include "platform/status_item.h"
#include "ui/menu/status_menu_popup.h"

namespace ferrowyn {

/// The status item on a desktop with a tray: an icon in the tray, and a popup beside it. Main thread.
class PopupStatusItem final : public StatusItem {
public:
    /// `icon` and `texts` outlive this. `isComposited`, asked at each opening, says whether windows may be translucent.
    PopupStatusItem(TrayIcon& icon, const TextTable& texts, std::function<bool()> isComposited = {});
    ~PopupStatusItem() override;
    PopupStatusItem(const PopupStatusItem&) = delete;
    PopupStatusItem& operator=(const PopupStatusItem&) = delete;

    void setButton(const StatusButton& button) override;
    /// A menu that is open shows the new rows at once.
    void setMenu(const StatusMenu& menu) override;
    void setActionHandler(std::function<void(const MenuRow&)> handler) override { onAction_ = std::move(handler); }

    /// The popup while it is open, else null.
    [[nodiscard]] StatusMenuPopup* openPopup() const { return popup_.get(); }

private:
    struct DeleteLater {
        void operator()(StatusMenuPopup* popup) const { popup->deleteLater(); }
    };

    void pressed(const Rect& anchor);
    void carryOut(const MenuRow& row);

    TrayIcon& icon_;
    const TextTable& texts_;
    std::function<bool()> isComposited_;
    std::function<void(const MenuRow&)> onAction_;
    StatusMenu menu_;
    /// Deleted later, because it is handling an event when it closes.
    std::unique_ptr<StatusMenuPopup, DeleteLater> popup_;
    /// The context of queued calls, which are dropped when this object ends.
    QObject context_;
};

/// One of the program's symbols as an icon for a tray. Without a colour it has that of text in the desktop's windows,
/// with a faint rim of the opposite lightness: a tray may be dark where windows are light, and does not tell. Main
/// thread.
[[nodiscard]] QImage traySymbol(const std::string& symbol, int side, const std::optional<QColor>& color);

}  // namespace ferrowyn
