#pragma once

#include <QWidget>

class ColorDot;
class TextLabel;

/// The top of the panel: the program with what its masks do, and the application in front. Places
/// its parts itself, which costs a tenth of what the toolkit's layouts do.
class PanelHead final : public QWidget {
public:
    explicit PanelHead(QWidget* parent);

    void show(int overlayCount, bool areMasksVisible, const QString& frontmostAppName);
    using QWidget::show;

    /// The width is whatever there is.
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Of the line with the program's name, without what is around it.
    int programHeight() const;

    TextLabel* m_title;
    TextLabel* m_count;
    ColorDot* m_status;
    TextLabel* m_frontmost;
};
