#pragma once

#include <QLocale>
#include <QString>
#include <string_view>

#include "core/texts.h"

class QCoreApplication;

namespace ferrowyn {

/// The text in the user's language, or as it was written where no translation is installed. Main thread.
[[nodiscard]] QString translated(std::string_view text);
/// The same with what is put into it, which stays as it is.
[[nodiscard]] QString translated(const Phrase& phrase);

/// Has every text shown in the user's language where a translation for it lies in one of the data folders, as
/// "ferrowyn/translations/ferrowyn_<language>.qm". Where none does, texts stay as
/// they were written. The windows run in the direction of the language that was found. Main thread, before the first
/// window is made. False when there is none.
bool installTranslations(QCoreApplication& application, const QLocale& locale);

}  // namespace ferrowyn
