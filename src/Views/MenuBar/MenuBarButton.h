#pragma once

#include "Views/Design/TextLine.h"
#include "Views/MenuBar/PanelButton.h"

#include <QColor>
#include <functional>

/// An action of the menu bar panel: symbol and title in one row, tinted under the pointer.
class MenuBarButton final : public PanelButton {
public:
    MenuBarButton(const QString& icon, const QString& title, const QColor& iconColor,
                  const QColor& titleColor, std::function<void()> action, QWidget* parent);

    /// Changes what is shown; costs nothing when it is the same.
    void show(const QString& icon, const QString& title);

    using QPushButton::show;
    const QString& icon() const { return m_icon; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
    QColor m_iconColor;
    QColor m_titleColor;
    QFont m_font;
    TextLine m_line;
};
