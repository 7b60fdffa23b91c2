#include "ui/translations.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <QTranslator>
#include <memory>

namespace ferrowyn {

bool installTranslations(QCoreApplication& application, const QLocale& locale) {
    const auto folders = QStandardPaths::locateAll(
        QStandardPaths::GenericDataLocation, QStringLiteral("ferrowyn/translations"), QStandardPaths::LocateDirectory);
    for (const QString& folder : folders) {
        auto translator = std::make_unique<QTranslator>();
        if (translator->load(locale, QStringLiteral("ferrowyn"), QStringLiteral("_"), folder)) {
            // The application keeps it, and takes it out when it ends.
            translator->setParent(&application);
            return QCoreApplication::installTranslator(translator.release());
        }
    }
    return false;
}

}  // namespace ferrowyn
