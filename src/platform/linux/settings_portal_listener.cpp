#include "platform/linux/settings_portal_listener.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMap>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/bus_call.h"
#include "platform/linux/bus_link.h"

namespace ferrowyn {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");
const QString accentKey = QStringLiteral("accent-color");

std::optional<ColorScheme> schemeFrom(const QVariant& value) {
    constexpr unsigned prefersDark = 1;
    constexpr unsigned prefersLight = 2;
    bool isNumber = false;
    const unsigned number = value.toUInt(&isNumber);
    if (!isNumber || (number != prefersDark && number != prefersLight)) {
        return std::nullopt;
    }
    return number == prefersDark ? ColorScheme::dark : ColorScheme::light;
}

/// Parts from 0 to 1; what lies outside means that no accent is chosen.
std::optional<RgbColor> accentFrom(const QVariant& value) {
    if (!value.canConvert<QDBusArgument>()) {
        return std::nullopt;
    }
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)")) {
        return std::nullopt;
    }
    double parts[3] = {};
    argument.beginStructure();
    argument >> parts[0] >> parts[1] >> parts[2];
    argument.endStructure();
    const bool isColor = std::ranges::all_of(parts, [](double part) { return part >= 0 && part <= 1; });
    const auto byte = [](double part) { return static_cast<std::uint8_t>(std::lround(part * 255)); };
    return isColor ? std::optional(RgbColor{byte(parts[0]), byte(parts[1]), byte(parts[2])}) : std::nullopt;
}

}  // namespace

SettingsPortalListener::SettingsPortalListener(std::string busAddress, Told told)
    : busAddress_(std::move(busAddress)), told_(std::move(told)) {}

SettingsPortalListener::~SettingsPortalListener() {
    ownerWatcher_.reset();
    bus_.reset();
}

void SettingsPortalListener::start() {
    // What the portal said last is kept while there is none.
    link_ = std::make_unique<BusLink>(busAddress_, QStringLiteral("settings-portal"),
                                      BusLink::Handlers{.connected =
                                                            [this](const QDBusConnection& bus) {
                                                                bus_ = bus;
                                                                listen();
                                                            },
                                                        .lost =
                                                            [this] {
                                                                ownerWatcher_.reset();
                                                                bus_.reset();
                                                            }});
    link_->start();
}

void SettingsPortalListener::listen() {
    ownerWatcher_ =
        std::make_unique<QDBusServiceWatcher>(portalService, *bus_, QDBusServiceWatcher::WatchForRegistration);
    // A portal that starts anew may have settings of another desktop.
    connect(ownerWatcher_.get(), &QDBusServiceWatcher::serviceRegistered, this, [this] { ask(); });
    // The slot cannot be found by its signature before the type is known by its name.
    qRegisterMetaType<QDBusVariant>();
    bus_->connect(portalService, portalPath, settingsInterface, "SettingChanged", this,
                  SLOT(onSettingChanged(QString, QString, QDBusVariant)));
    ask();
}

/// Starts the portal where it is installed and does not run yet, as every program does that asks it.
void SettingsPortalListener::ask() {
    auto* const watcher =
        new QDBusPendingCallWatcher(bus_->asyncCall(methodCall(portalService, portalPath, settingsInterface, "ReadAll",
                                                               {QStringList{appearanceGroup}})),
                                    this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        const auto reply = finished->reply();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("a{sa{sv}}")) {
            return;
        }
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().constFirst());
        const auto group = groups.value(appearanceGroup);
        take(schemeKey, group.value(schemeKey));
        take(accentKey, group.value(accentKey));
        tellIfChanged();
    });
}

void SettingsPortalListener::onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    if (group == appearanceGroup) {
        take(key, value.variant());
        tellIfChanged();
    }
}

void SettingsPortalListener::take(const QString& key, const QVariant& value) {
    if (key == schemeKey) {
        answer_.scheme = schemeFrom(value);
    } else if (key == accentKey) {
        answer_.accent = accentFrom(value);
    }
}

void SettingsPortalListener::tellIfChanged() {
    if (!(std::exchange(lastTold_, answer_) == answer_)) {
        told_(answer_);
    }
}

}  // namespace ferrowyn
