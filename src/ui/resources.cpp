#include "ui/resources.h"

#include <QtGlobal>

// A static library's resources are linked only when something asks for them; the macro must stand outside namespaces.
static void initializeResources() {
    Q_INIT_RESOURCE(ferrowyn);
}

namespace ferrowyn {

void loadResources() {
    initializeResources();
}

}  // namespace ferrowyn
