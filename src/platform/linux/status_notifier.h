#pragma once

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QImage>
#include <QList>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/posted_work.h"

class QDBusServiceWatcher;

namespace ferrowyn {

class BackgroundWork;
class BusLink;
class MainLoop;

/// An icon in the bus's format: ARGB with straight alpha, each pixel in network byte order.
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    [[nodiscard]] static StatusNotifierPixmap fromImage(const QImage& image);
};
using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

struct StatusNotifierToolTip {
    QString iconName;
    StatusNotifierPixmaps icon;
    QString title;
    QString description;
};

/// Registers the types above with Qt DBus. May be called again.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

/// The D-Bus object that hosts of status notifiers read and call. Each kind of click is the same press, because the
/// program shows its menu itself and gives none to the host. Main thread.
class StatusNotifierObject final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ noText)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QString IconName READ noText)
    Q_PROPERTY(ferrowyn::StatusNotifierPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ noText)
    Q_PROPERTY(ferrowyn::StatusNotifierPixmaps OverlayIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionIconName READ noText)
    Q_PROPERTY(ferrowyn::StatusNotifierPixmaps AttentionIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionMovieName READ noText)
    Q_PROPERTY(ferrowyn::StatusNotifierToolTip ToolTip READ toolTip)

public:
    /// `parent` is the object that is registered on the bus; it owns this.
    explicit StatusNotifierObject(QObject& parent);

    void setIcon(StatusNotifierPixmaps icon);
    void setToolTip(const QString& title);
    void setPressHandler(std::function<void(int x, int y)> handler) { onPress_ = std::move(handler); }

    [[nodiscard]] QString category() const { return QStringLiteral("ApplicationStatus"); }
    [[nodiscard]] QString id() const { return QStringLiteral("ferrowyn"); }
    [[nodiscard]] QString title() const { return QStringLiteral("Ferrowyn"); }
    [[nodiscard]] QString status() const { return QStringLiteral("Active"); }
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] QString noText() const { return {}; }
    [[nodiscard]] bool itemIsMenu() const { return false; }
    [[nodiscard]] StatusNotifierPixmaps iconPixmap() const { return icon_; }
    [[nodiscard]] StatusNotifierPixmaps noPixmap() const { return {}; }
    [[nodiscard]] StatusNotifierToolTip toolTip() const { return {{}, {}, toolTip_, {}}; }

    // Named as on the bus.
    // NOLINTBEGIN(readability-identifier-naming)
public slots:
    void Activate(int x, int y) { press(x, y); }
    void ContextMenu(int x, int y) { press(x, y); }
    void SecondaryActivate(int x, int y) { press(x, y); }
    void Scroll(int /*delta*/, const QString& /*orientation*/) {}
    /// Some hosts send a token before a press; X11 does not need it.
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

/// The program that shows status notifiers, usually a panel.
enum class StatusNotifierHost {
    none,
    /// Passes on presses of both mouse buttons.
    present,
    /// Xfce's panel: it opens its menu itself when the second button is pressed.
    keepsSecondButton,
};

/// The program's icon as a status notifier on the session bus. It registers with each new watcher, except with one that
/// keeps the second button: there only when `offer` is called. Main thread; a worker connects to the bus, which blocks,
/// and connects again after the bus was restarted. Owned by `LinuxTrayIcon`.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    /// Connects at once to the bus with this address; nullopt where there is none. The references outlive this.
    StatusNotifierItem(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                       const std::optional<std::string>& busAddress);
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    [[nodiscard]] StatusNotifierObject& object() { return *object_; }

    /// nullopt until the bus has answered for the first time.
    [[nodiscard]] std::optional<StatusNotifierHost> host() const { return host_; }
    /// `onHost` is called when the host becomes known and at each change. Set it before the main loop runs again.
    void setHostHandler(std::function<void(StatusNotifierHost)> onHost) { onHost_ = std::move(onHost); }
    /// Registers the icon with the present watcher.
    void offer();

private slots:
    void onHostsChanged();

private:
    void connected(const QDBusConnection& bus);
    void disconnected();
    void askForWatcher();
    void watcherChanged(const QString& owner);
    void askForWatcherProcess(const QString& owner);
    void askForHost();
    void setHost(StatusNotifierHost host);
    /// Like `callAsync`, but drops the reply when the watcher has changed in the meantime.
    void ask(const QDBusMessage& call, std::function<void(const QDBusMessage& reply)> onReply);

    std::function<void(StatusNotifierHost)> onHost_;
    std::optional<StatusNotifierHost> host_;
    bool watcherKeepsSecondButton_ = false;
    /// Counts the changes of the watcher, so that a late reply about an earlier watcher is recognised.
    int watcherCount_ = 0;
    std::optional<QDBusConnection> bus_;
    QString serviceName_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    /// The object that is registered on the bus; `object_` is its adaptor.
    QObject exported_;
    StatusNotifierObject* object_;
    /// What is posted may run after this object is destroyed.
    LifeToken life_;
    std::unique_ptr<BusLink> link_;
};

}  // namespace ferrowyn

Q_DECLARE_METATYPE(ferrowyn::StatusNotifierPixmap)
Q_DECLARE_METATYPE(ferrowyn::StatusNotifierPixmaps)
Q_DECLARE_METATYPE(ferrowyn::StatusNotifierToolTip)
