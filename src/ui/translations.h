#pragma once

#include <QLocale>
#include <QString>

class QCoreApplication;

namespace ferrowyn {

/// Has every text shown in the user's language where a translation for it lies in one of the data folders, as
/// "ferrowyn/translations/ferrowyn_<language>.qm". Where none does, texts stay as
/// they were written. The windows run in the direction of the language that was found. Main thread, before the first
/// window is made. False when there is none.
bool installTranslations(QCoreApplication& application, const QLocale& locale);

}  // namespace ferrowyn
