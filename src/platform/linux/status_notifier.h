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

class QDBusServiceWatcher;

#include "core/posted_work.h"

namespace ferrowyn {

class BackgroundWork;
class BusLink;
class MainLoop;

/// An icon as it crosses the bus: ARGB with straight alpha, each pixel in network byte order.
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

/// So that the bus knows how to carry them. Harmless to call again.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

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

/// Who shows status notifiers.
enum class StatusNotifierHost {
    none,
    /// Hands over presses of both buttons.
    present,
    /// Xfce's panel: it answers the second button with a menu of its own.
    keepsSecondButton,
};

/// The program's icon as a status notifier on the session bus: offered to every watcher that comes, shown by whatever
/// host that watcher knows. To one that keeps the second button it is offered only on request. Main thread; connecting,
/// which waits for the bus, is done on a worker thread, and again after the bus was restarted.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    /// Connects at once to the bus with this address; nothing where there is none. The references outlive this.
    StatusNotifierItem(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                       const std::optional<std::string>& busAddress);
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    [[nodiscard]] StatusNotifierObject& object() { return *object_; }

    /// Nothing until the bus has answered for the first time.
    [[nodiscard]] std::optional<StatusNotifierHost> host() const { return host_; }
    /// Told when that becomes known and at each change. Set before the main loop runs again.
    void setHostHandler(std::function<void(StatusNotifierHost)> handler) { onHost_ = std::move(handler); }
    /// Offers the icon to the watcher that is there now.
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
    /// Calls back with what the bus answers; nothing for an error, and not at all when the watcher has changed since.
    template <typename Answer>
    void ask(const QDBusMessage& question, std::function<void(const std::optional<Answer>&)> answered);

    std::function<void(StatusNotifierHost)> onHost_;
    std::optional<StatusNotifierHost> host_;
    bool watcherKeepsSecondButton_ = false;
    /// Counts the watchers that came and went, so that late answers about one are not taken for another's.
    int watcherCount_ = 0;
    std::optional<QDBusConnection> bus_;
    QString serviceName_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    /// What is registered on the bus, with the interface as its adaptor.
    QObject exported_;
    StatusNotifierObject* object_;
    /// Dies with this, for what is posted.
    LifeToken life_;
    std::unique_ptr<BusLink> link_;
};

}  // namespace ferrowyn

Q_DECLARE_METATYPE(ferrowyn::StatusNotifierPixmap)
Q_DECLARE_METATYPE(ferrowyn::StatusNotifierPixmaps)
Q_DECLARE_METATYPE(ferrowyn::StatusNotifierToolTip)
