#include "ui/translated.h"

#include <QCoreApplication>
#include <string>

namespace ferrowyn {

QString translated(std::string_view text) {
    // The lookup wants a text that ends in a NUL, which a view does not promise.
    return QCoreApplication::translate("Ferrowyn", std::string(text).c_str());
}

QString translated(const Phrase& phrase) {
    const std::string text = translated(phrase.text).toStdString();
    return QString::fromStdString(withArguments(text, phrase.arguments));
}

}  // namespace ferrowyn
