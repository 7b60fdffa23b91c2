#pragma once

#include <QIcon>

namespace ferrowyn {

/// The program's own icon in the sizes in which task bars and window frames show it. After the QGuiApplication.
[[nodiscard]] QIcon windowIcon();

}  // namespace ferrowyn
