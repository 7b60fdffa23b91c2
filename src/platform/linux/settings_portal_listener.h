#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/desktop_appearance.h"

namespace ferrowyn {

class BusLink;

/// Reads the appearance that the desktop's settings portal (org.freedesktop.portal.Settings) tells, and listens for
/// changes of it. Lives on a thread of its own, on which it also tells.
class SettingsPortalListener final : public QObject {
    Q_OBJECT

public:
    struct Answer {
        std::optional<ColorScheme> scheme;
        std::optional<RgbColor> accent;
        friend bool operator==(const Answer&, const Answer&) = default;
    };
    using Told = std::function<void(const Answer&)>;

    /// `told` hears the first answer that says something, and each change.
    SettingsPortalListener(std::string busAddress, Told told);
    ~SettingsPortalListener() override;

    /// Connects, and again after the bus was restarted; slow where the bus is. On the listener's thread.
    void start();

private slots:
    void onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void listen();
    void ask();
    void take(const QString& key, const QVariant& value);
    void tellIfChanged();

    std::string busAddress_;
    Told told_;
    std::optional<QDBusConnection> bus_;
    std::unique_ptr<BusLink> link_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    Answer answer_;
    Answer lastTold_;
};

}  // namespace ferrowyn
