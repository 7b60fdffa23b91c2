#include "platform/linux/file_manager.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QUrl>
#include <utility>

namespace ferrowyn {

namespace {

/// Milliseconds: a file manager that the bus starts for this may need a moment, a person waits no longer.
constexpr int patienceWithFileManager = 5000;

QString addressOf(const std::filesystem::path& file) {
    return QUrl::fromLocalFile(QString::fromStdString(file.string())).toString(QUrl::FullyEncoded);
}

}  // namespace

void revealInFileManager(const QDBusConnection& bus, const std::filesystem::path& file,
                         std::function<void(const QString& address)> openAddress) {
    auto openFolder = [folder = addressOf(file.parent_path()), open = std::move(openAddress)] { open(folder); };
    if (!bus.isConnected()) {
        // A call that failed before it was sent tells nobody.
        QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(openFolder), Qt::QueuedConnection);
        return;
    }
    auto request = QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                                  "org.freedesktop.FileManager1", "ShowItems");
    request.setArguments({QStringList{addressOf(file)}, QString()});
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(request, patienceWithFileManager));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, openFolder = std::move(openFolder)] {
                         if (watcher->isError()) {
                             openFolder();
                         }
                         watcher->deleteLater();
                     });
}

}  // namespace ferrowyn
