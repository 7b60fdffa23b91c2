#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/published.h"
#include "platform/qt/tray_symbol_painter.h"
#include "platform/status_item.h"

namespace ferrowyn {

class BackgroundWork;
class MainLoop;
class StatusNotifierItem;
enum class StatusNotifierHost;

/// Shows the icon as a status notifier where a host for those runs, otherwise as a fallback icon. Where the host keeps
/// the second button, the fallback is tried first, because its menu opens with both buttons. Main thread.
class LinuxTrayIcon final : public QObject, public TrayIcon {
public:
    /// Makes the fallback icon; null where there is none. It is destroyed as soon as it is not needed.
    using MakeFallback = std::function<std::unique_ptr<TrayIcon>()>;
    enum class Host { none, statusNotifier, fallback };

    LinuxTrayIcon(MainLoop& mainLoop, BackgroundWork& backgroundWork, const std::optional<std::string>& busAddress,
                  TraySymbolPainter painter, MakeFallback makeFallback);
    ~LinuxTrayIcon() override;

    void setIcon(const std::string& symbol) override;
    void setToolTip(const std::string& title) override;
    void setPressHandler(std::function<void(const Rect& anchor)> handler) override;
    [[nodiscard]] bool isShown() const override { return shownBy() != Host::none; }
    [[nodiscard]] Host shownBy() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void hostChanged(StatusNotifierHost host);
    void startFallback();
    void offerUnlessShown();
    void redraw();

    MainLoop& mainLoop_;
    TraySymbolPainter painter_;
    MakeFallback makeFallback_;
    std::string symbol_;
    std::string toolTip_;
    std::function<void(const Rect&)> onPress_;
    std::unique_ptr<StatusNotifierItem> notifier_;
    /// Whether the icon is registered with the present host.
    bool isOffered_ = false;
    std::unique_ptr<TrayIcon> fallback_;
    Subscription fallbackTimer_;
};

}  // namespace ferrowyn
