#pragma once

#include <QScrollArea>

namespace ferrowyn {

/// Scrolls downward what does not fit, without a frame or a ground of its own, and asks for room again whenever its
/// content does. Main thread.
class PlainScrollArea : public QScrollArea {
    Q_OBJECT

public:
    PlainScrollArea();

protected:
    /// Once; the area owns it from then on.
    void setContent(QWidget* content);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace ferrowyn
