#pragma once

#include <QLocale>
#include <QString>
#include <string_view>

#include "core/texts.h"

class QCoreApplication;

namespace ferrowyn {

/// The text in the user's language, or unchanged where no translation is installed. Main thread.
[[nodiscard]] QString translated(std::string_view text);
/// The same for a phrase. Its arguments are not translated.
[[nodiscard]] QString translated(const Phrase& phrase);

/// Loads the translation for the locale from the first data folder that has one, as
/// "ferrowyn/translations/ferrowyn_<language>.qm", and sets the direction of its language. Returns false when there is
/// none; texts then stay as they were written. Main thread, before the first widget is made.
bool installTranslations(QCoreApplication& application, const QLocale& locale);

}  // namespace ferrowyn
