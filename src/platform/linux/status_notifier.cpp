#include "platform/linux/status_notifier.h"

#include <unistd.h>

#include <QDBusMetaType>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QVariant>
#include <QtEndian>
#include <atomic>
#include <utility>

#include "platform/linux/bus.h"
#include "platform/main_loop.h"

namespace ferrowyn {

StatusNotifierPixmap StatusNotifierPixmap::fromImage(const QImage& image) {
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap pixmap{straight.width(), straight.height(), {}};
    pixmap.bytes.resize(straight.sizeInBytes());
    // Lines of 32-bit pixels have no padding.
    qToBigEndian<quint32>(straight.constBits(), straight.sizeInBytes() / 4, pixmap.bytes.data());
    return pixmap;
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<StatusNotifierPixmaps>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.description;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.description;
    argument.endStructure();
    return argument;
}

StatusNotifierObject::StatusNotifierObject(QObject& parent) : QDBusAbstractAdaptor(&parent) {
    registerStatusNotifierTypes();
}

void StatusNotifierObject::setIcon(StatusNotifierPixmaps icon) {
    icon_ = std::move(icon);
    emit NewIcon();
}

void StatusNotifierObject::setToolTip(const QString& title) {
    if (std::exchange(toolTip_, title) != title) {
        emit NewToolTip();
    }
}

void StatusNotifierObject::press(int x, int y) const {
    if (onPress_) {
        onPress_(x, y);
    }
}

namespace {

/// The watcher's service and its interface have the same name.
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");

/// Part of an item's service name: tells the items of one process apart.
int nextNumber() {
    static std::atomic<int> count{0};
    return ++count;
}

/// Whether the process belongs to Xfce's panel, which runs each plugin in a separate process.
bool isPanelOfXfce(unsigned pid) {
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(pid));
    return commandLine.open(QIODevice::ReadOnly) && commandLine.readAll().contains("/xfce4/panel/");
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                                       const std::optional<std::string>& busAddress)
    : object_(new StatusNotifierObject(exported_)) {  // NOLINT: its parent owns it.
    if (!busAddress) {
        mainLoop.post(life_.guard([this] { setHost(StatusNotifierHost::none); }));
        return;
    }
    serviceName_ = QStringLiteral("org.kde.StatusNotifierItem-%1-%2").arg(getpid()).arg(nextNumber());
    const auto worker = [&mainLoop, &backgroundWork](std::function<void()> work, std::function<void()> done) {
        backgroundWork.run([&mainLoop, work = std::move(work), done = std::move(done)] {
            work();
            mainLoop.post(done);
        });
    };
    link_ =
        std::make_unique<BusLink>(*busAddress, QStringLiteral("status-notifier"),
                                  BusLink::Handlers{.connected = [this](const QDBusConnection& bus) { connected(bus); },
                                                    .lost = [this] { disconnected(); }},
                                  worker);
    link_->start();
}

StatusNotifierItem::~StatusNotifierItem() = default;

void StatusNotifierItem::connected(const QDBusConnection& bus) {
    bus_ = bus;
    if (!bus_->registerService(serviceName_)) {
        setHost(StatusNotifierHost::none);
        return;
    }
    bus_->registerObject(itemPath, &exported_, QDBusConnection::ExportAdaptors);
    for (const char* const signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_->connect(watcherName, watcherPath, watcherName, QLatin1String(signal), this, SLOT(onHostsChanged()));
    }
    ownerWatcher_ = std::make_unique<QDBusServiceWatcher>(watcherName, *bus_);
    connect(ownerWatcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*service*/, const QString& /*oldOwner*/, const QString& newOwner) {
                watcherChanged(newOwner);
            });
    askForWatcher();
}

void StatusNotifierItem::ask(const QDBusMessage& call, std::function<void(const QDBusMessage& reply)> onReply) {
    callAsync(*bus_, call, *this,
              [this, countAtCall = watcherCount_, onReply = std::move(onReply)](const QDBusMessage& reply) {
                  if (countAtCall == watcherCount_) {
                      onReply(reply);
                  }
              });
}

void StatusNotifierItem::askForWatcher() {
    ask(callToBus(QStringLiteral("GetNameOwner"), watcherName),
        [this](const QDBusMessage& reply) { watcherChanged(valueOf<QString>(reply).value_or(QString())); });
}

void StatusNotifierItem::watcherChanged(const QString& owner) {
    ++watcherCount_;
    watcherKeepsSecondButton_ = false;
    if (owner.isEmpty()) {
        setHost(StatusNotifierHost::none);
    } else {
        askForWatcherProcess(owner);
    }
}

void StatusNotifierItem::askForWatcherProcess(const QString& owner) {
    ask(callToBus(QStringLiteral("GetConnectionUnixProcessID"), owner), [this](const QDBusMessage& reply) {
        const auto pid = valueOf<unsigned>(reply);
        watcherKeepsSecondButton_ = pid && isPanelOfXfce(*pid);
        if (!watcherKeepsSecondButton_) {
            offer();
        }
        askForHost();
    });
}

void StatusNotifierItem::offer() {
    if (bus_) {
        bus_->asyncCall(methodCall(watcherName, watcherPath, watcherName, QStringLiteral("RegisterStatusNotifierItem"),
                                   {serviceName_}));
    }
}

void StatusNotifierItem::askForHost() {
    ask(propertyCall(watcherName, watcherPath, watcherName, QStringLiteral("IsStatusNotifierHostRegistered")),
        [this](const QDBusMessage& reply) {
            const auto isRegistered = valueOf<QDBusVariant>(reply);
            const bool hasHost = isRegistered && isRegistered->variant().toBool();
            const auto kind =
                watcherKeepsSecondButton_ ? StatusNotifierHost::keepsSecondButton : StatusNotifierHost::present;
            setHost(hasHost ? kind : StatusNotifierHost::none);
        });
}

void StatusNotifierItem::onHostsChanged() {
    if (bus_) {
        askForHost();
    }
}

void StatusNotifierItem::disconnected() {
    ++watcherCount_;
    ownerWatcher_.reset();
    bus_.reset();
    setHost(StatusNotifierHost::none);
}

void StatusNotifierItem::setHost(StatusNotifierHost host) {
    if (std::exchange(host_, host) != host && onHost_) {
        onHost_(host);
    }
}

}  // namespace ferrowyn
