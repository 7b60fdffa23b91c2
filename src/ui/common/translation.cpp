#include "ui/common/translation.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QTranslator>
#include <memory>
#include <string>

namespace ferrowyn {

QString translated(std::string_view text) {
    // Qt's lookup needs a text that ends with NUL, which a view may not.
    return QCoreApplication::translate("Ferrowyn", std::string(text).c_str());
}

QString translated(const Phrase& phrase) {
    const std::string text = translated(phrase.text).toStdString();
    return QString::fromStdString(withArguments(text, phrase.arguments));
}

bool installTranslations(QCoreApplication& application, const QLocale& locale) {
    const auto folders = QStandardPaths::locateAll(
        QStandardPaths::GenericDataLocation, QStringLiteral("ferrowyn/translations"), QStandardPaths::LocateDirectory);
    for (const QString& folder : folders) {
        auto translator = std::make_unique<QTranslator>();
        if (translator->load(locale, QStringLiteral("ferrowyn"), QStringLiteral("_"), folder)) {
            // The application owns it, and removes it when it ends.
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
