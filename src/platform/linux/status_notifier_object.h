#pragma once

#include <QDBusAbstractAdaptor>
#include <QObject>
#include <QString>
#include <functional>

#include "platform/linux/status_notifier_types.h"

namespace ferrowyn {

/// The object that hosts of status notifiers read and call. Every way of choosing the icon is the same press: the menu
/// is the program's own, so the host is told of none. Main thread.
class StatusNotifierObject final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ none)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QString IconName READ none)
    Q_PROPERTY(ferrowyn::StatusNotifierPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ none)
    Q_PROPERTY(ferrowyn::StatusNotifierPixmaps OverlayIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionIconName READ none)
    Q_PROPERTY(ferrowyn::StatusNotifierPixmaps AttentionIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionMovieName READ none)
    Q_PROPERTY(ferrowyn::StatusNotifierToolTip ToolTip READ toolTip)

public:
    /// `parent` is what is registered on the bus; it owns this.
    explicit StatusNotifierObject(QObject& parent);

    void setIcon(StatusNotifierPixmaps icon);
    void setToolTip(const QString& title);
    void setPressHandler(std::function<void(int x, int y)> handler) { onPress_ = std::move(handler); }

    [[nodiscard]] QString category() const { return QStringLiteral("ApplicationStatus"); }
    [[nodiscard]] QString id() const { return QStringLiteral("ferrowyn"); }
    [[nodiscard]] QString title() const { return QStringLiteral("Ferrowyn"); }
    [[nodiscard]] QString status() const { return QStringLiteral("Active"); }
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] QString none() const { return {}; }
    [[nodiscard]] bool itemIsMenu() const { return false; }
    [[nodiscard]] StatusNotifierPixmaps iconPixmap() const { return icon_; }
    [[nodiscard]] StatusNotifierPixmaps noPixmap() const { return {}; }
    [[nodiscard]] StatusNotifierToolTip toolTip() const { return {{}, {}, toolTip_, {}}; }

    // The names on the bus.
    // NOLINTBEGIN(readability-identifier-naming)
public slots:
    void Activate(int x, int y) { press(x, y); }
    void ContextMenu(int x, int y) { press(x, y); }
    void SecondaryActivate(int x, int y) { press(x, y); }
    void Scroll(int /*delta*/, const QString& /*orientation*/) {}
    /// Sent ahead of a press by some hosts; X11 has no use for it.
    void ProvideXdgActivationToken(const QString& /*token*/) {}

signals:
    void NewTitle();
    void NewIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    // NOLINTEND(readability-identifier-naming)

private:
    void press(int x, int y) const;

    StatusNotifierPixmaps icon_;
    QString toolTip_;
    std::function<void(int x, int y)> onPress_;
};

}  // namespace ferrowyn
