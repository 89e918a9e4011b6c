#include "Views/Design/ApplicationLook.h"

#include "Views/Components/AppIconView.h"
#include "Views/Design/VeylaTheme.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPalette>
#include <QScrollBar>
#include <QStyleFactory>

using namespace Qt::Literals::StringLiterals;

namespace {

QPalette darkPalette() {
    QPalette colors;
    // Disabled text must not depend on what the desktop's palette has for it.
    for (const auto& [role, color] :
         {std::pair(QPalette::Window, VeylaTheme::window()),
          std::pair(QPalette::WindowText, VeylaTheme::textPrimary()),
          std::pair(QPalette::Base, VeylaTheme::panelMuted()),
          std::pair(QPalette::AlternateBase, VeylaTheme::panel()),
          std::pair(QPalette::Text, VeylaTheme::textPrimary()),
          std::pair(QPalette::Button, VeylaTheme::panelElevated()),
          std::pair(QPalette::ButtonText, VeylaTheme::textPrimary()),
          std::pair(QPalette::ToolTipBase, VeylaTheme::panelElevated()),
          std::pair(QPalette::ToolTipText, VeylaTheme::textPrimary()),
          std::pair(QPalette::Highlight, VeylaTheme::accentBlue()),
          std::pair(QPalette::HighlightedText, QColor(Qt::white)),
          std::pair(QPalette::Link, VeylaTheme::focusRing()),
          std::pair(QPalette::PlaceholderText, VeylaTheme::textMuted())})
        colors.setColor(role, color);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        colors.setColor(QPalette::Disabled, role, VeylaTheme::textMuted());
    return colors;
}

// Opaque where translucent white on the window would be: style sheets paint onto nothing.
QString menuSheet() {
    return u"QMenuBar { background: #0E1017; color: #F2F2F3; border-bottom: 1px solid #1B1D24; }"
           "QMenuBar::item { padding: 5px 10px; background: transparent; border-radius: 5px; }"
           "QMenuBar::item:selected { background: #23263A; }"
           "QMenu { background: #141826; color: #F2F2F3; border: 1px solid #2A2E3D;"
           "        padding: 5px; }"
           "QMenu::item { padding: 6px 26px 6px 14px; border-radius: 5px; }"
           "QMenu::item:selected { background: #6366F1; color: white; }"
           "QMenu::item:disabled { color: #64748B; background: transparent; }"
           "QMenu::separator { height: 1px; background: #2A2E3D; margin: 5px 8px; }"_s;
}

QString scrollBarSheet() {
    return u"QScrollBar:vertical { background: transparent; width: 10px; margin: 0; }"
           "QScrollBar::handle:vertical { background: #343948; border-radius: 3px;"
           "                              min-height: 28px; margin: 2px; }"
           "QScrollBar::handle:vertical:hover { background: #4A5064; }"
           "QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }"
           "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }"_s;
}

}  // namespace

void applyVeylaLook() {
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QApplication::setPalette(darkPalette());
    QApplication::setWindowIcon(applicationIcon());
}

// One sheet for the whole application would be asked about every widget, which takes longer than
// making them.
void styleMenus(QWidget& menuOrBar) {
    menuOrBar.setStyleSheet(menuSheet());
}

void styleScrollBar(QAbstractScrollArea& area) {
    area.verticalScrollBar()->setStyleSheet(scrollBarSheet());
}
