#include "ui/desktop_motion.h"

#include <QStyle>
#include <QWidget>

namespace ferrowyn {

bool prefersReducedMotion(const QWidget& widget) {
    if (qEnvironmentVariableIntValue("FERROWYN_REDUCED_MOTION") != 0) {
        return true;
    }
    return widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) == 0;
}

}  // namespace ferrowyn
