#pragma once

#include <QWidget>
#include <vector>

class QVBoxLayout;

namespace ferrowyn {

class TextLabel;

/// A box of rows with hairlines between them. What is added belongs to it. Main thread.
class SettingsGroup final : public QWidget {
    Q_OBJECT

public:
    SettingsGroup();

    /// A row of its own, below a hairline unless it is the first one to be seen.
    void addRow(QWidget* row);
    /// The same for one that keeps the distance to the edges that a text has. Answers with what to hide for the row to
    /// be gone, as the next one does.
    QWidget* addInsetRow(QWidget* row);
    /// Text and control beside each other, the control at the right edge.
    QWidget* addRow(QWidget* text, QWidget* control);
    /// Close under the row before it. Answers with what to hide for the note to be gone.
    QWidget* addNote(TextLabel* note);
    /// Takes the row out and deletes it.
    void removeRow(QWidget* row);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* layout_ = nullptr;
    std::vector<QWidget*> rows_;
};

}  // namespace ferrowyn
