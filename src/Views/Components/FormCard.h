#pragma once

#include "Views/Design/Typography.h"
#include "Views/Design/VeylaTheme.h"

#include <QWidget>

class QVBoxLayout;
class TextLabel;

/// A card with a header of symbol and title, and rows below it.
class FormCard final : public QWidget {
public:
    FormCard(const QString& title, const QString& symbolName);

    /// A row with its label on the left, at one width for all rows, and its controls on the right.
    /// Beside several lines of controls the label stands beside `firstLine`. Returns the row.
    QWidget* addRow(const QString& label, QWidget* controls, const QWidget* firstLine = nullptr);
    /// A row as wide as the card.
    void addWide(QWidget* view);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* m_rows;
};

/// The small line in capitals above a part of a column.
TextLabel* sectionHeader(const QString& title, const QColor& color = VeylaTheme::textMuted());
