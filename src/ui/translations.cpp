#include "ui/translations.h"

#include <QGuiApplication>
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
            const QString language = translator->language();
            const QLocale spoken = language.isEmpty() ? locale : QLocale(language);
            QGuiApplication::setLayoutDirection(spoken.textDirection());
            return QCoreApplication::installTranslator(translator.release());
        }
    }
    return false;
}

}  // namespace ferrowyn
