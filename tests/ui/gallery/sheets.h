#pragma once

#include <QDir>

namespace ferrowyn::gallery {

/// Puts the pictures that the gallery has drawn together on a few sheets, as the documentation shows them, in the
/// folder "sheets". False when a picture is missing or a sheet could not be written.
[[nodiscard]] bool saveSheets(const QDir& folder);

}  // namespace ferrowyn::gallery
