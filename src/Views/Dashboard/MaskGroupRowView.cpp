#include "Views/Dashboard/MaskGroupRowView.h"

#include "Models/ScreenMask.h"
#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/PlainTextField.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/SymbolView.h"
#include "Views/Components/TextLabel.h"
#include "Views/Dashboard/MaskRowView.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QSize buttonSize{22, 22};
constexpr QSize chevronSize{14, 22};
constexpr double cornerRadius = 10;

Symbol smallSymbol(const QString& name, double size, const QColor& color) {
    return {name, size, SymbolWeight::semibold, color};
}

}  // namespace

MaskGroupRowView::MaskGroupRowView(const MaskGroup& group, qsizetype maskCount,
                                   const Actions& actions)
    : m_group(group),
      m_actions(actions),
      m_chevron(bareIconButton({}, smallSymbol({}, 9, VeylaTheme::textSecondary()), chevronSize)),
      m_name(new TextLabel({}, {12}, VeylaTheme::textPrimary())),
      m_field(new PlainTextField(u"Group name"_s, {12})),
      m_count(new TextLabel({}, {9}, VeylaTheme::textMuted())),
      m_visibility(
          bareIconButton({}, smallSymbol({}, 10, VeylaTheme::textSecondary()), buttonSize)),
      m_lock(bareIconButton({}, smallSymbol({}, 10, VeylaTheme::textSecondary()), buttonSize)) {
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 8, 0);
    layout->setSpacing(6);
    layout->addWidget(m_chevron);
    layout->addWidget(
        new SymbolView({u"folder.fill"_s, 10, SymbolWeight::regular, VeylaTheme::accentIndigo()}));
    layout->addWidget(m_name);
    layout->addWidget(m_field, 1);
    layout->addWidget(m_count);
    layout->addStretch(0);
    layout->addWidget(m_visibility);
    layout->addWidget(m_lock);
    m_field->setAccessibleName(m_field->placeholderText());
    m_field->hide();
    m_field->installEventFilter(this);
    setAccessibleIdentifier(*this, u"group-row-"_s + uuidText(group.id));

    connect(m_chevron, &QPushButton::clicked, this, [this] { m_actions.onToggleExpanded(); });
    connect(m_visibility, &QPushButton::clicked, this, [this] { m_actions.onToggleVisibility(); });
    connect(m_lock, &QPushButton::clicked, this, [this] { m_actions.onToggleLock(); });
    show(group, maskCount);
}

void MaskGroupRowView::show(const MaskGroup& group, qsizetype maskCount) {
    m_group = group;
    const auto relabel = [](StyledButton* button, const QString& label, const QString& symbol) {
        button->show(QString(), symbol);
        if (button->accessibleName() == label) return;
        button->setAccessibleName(label);
        button->setToolTip(label);
    };
    relabel(m_chevron, group.isExpanded ? u"Collapse Group"_s : u"Expand Group"_s,
            group.isExpanded ? u"chevron.down"_s : u"chevron.right"_s);
    relabel(m_visibility, group.isVisible ? u"Hide Group"_s : u"Show Group"_s,
            group.isVisible ? u"eye"_s : u"eye.slash"_s);
    relabel(m_lock, group.isLocked ? u"Unlock Group"_s : u"Lock Group"_s,
            group.isLocked ? u"lock.fill"_s : u"lock.open"_s);
    m_lock->setSymbolColor(group.isLocked ? VeylaTheme::warning() : VeylaTheme::textSecondary());
    m_name->showText(group.name);
    m_count->showText(QString::number(maskCount));
    const QString name = u"%1, %2 %3"_s.arg(onOneLine(group.name), QString::number(maskCount),
                                            maskCount == 1 ? u"mask"_s : u"masks"_s);
    if (accessibleName() != name) setAccessibleName(name);
}

int MaskGroupRowView::rowHeight() {
    return QFontMetrics(systemFont({12})).height() + 20;
}

void MaskGroupRowView::startRenaming() {
    m_field->setText(m_group.name);
    m_name->hide();
    m_field->show();
    m_field->selectAll();
    m_field->setFocus(Qt::OtherFocusReason);
}

bool MaskGroupRowView::isRenaming() const {
    return m_field->isVisibleTo(this);
}

void MaskGroupRowView::commitRename() {
    const QString name = m_field->text().trimmed();
    endRenaming();
    if (!name.isEmpty()) m_actions.onRename(name);
}

void MaskGroupRowView::endRenaming() {
    m_field->hide();
    m_name->show();
    setFocus(Qt::OtherFocusReason);
}

bool MaskGroupRowView::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_field || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    // Taken here, so that they do not go on to the row.
    switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            commitRename();
            return true;
        case Qt::Key_Escape:
            endRenaming();
            return true;
        default:
            return false;
    }
}

void MaskGroupRowView::contextMenuEvent(QContextMenuEvent* event) {
    // The row may go while the menu is open; its actions then do nothing.
    auto* const menu = new QMenu(window());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    styleMenus(*menu);
    menu->addAction(u"Rename"_s, this, [this] { startRenaming(); });
    menu->addAction(m_visibility->accessibleName(), this, m_actions.onToggleVisibility);
    menu->addAction(m_lock->accessibleName(), this, m_actions.onToggleLock);
    menu->addAction(u"Delete Group"_s, this, m_actions.onDelete);
    const bool isFromKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(isFromKeyboard ? mapToGlobal(rect().center()) : event->globalPos());
}

void MaskGroupRowView::mouseDoubleClickEvent(QMouseEvent* /*event*/) {
    startRenaming();
}

void MaskGroupRowView::keyPressEvent(QKeyEvent* event) {
    // Keys that a control of the row has left over are not meant for the row.
    if (!hasFocus()) return event->ignore();
    switch (event->key()) {
        case Qt::Key_F2:
            return startRenaming();
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            return m_actions.onToggleExpanded();
        case Qt::Key_Right:
        case Qt::Key_Left:
            if (m_group.isExpanded != (event->key() == Qt::Key_Right)) m_actions.onToggleExpanded();
            return;
        default:
            event->ignore();
    }
}

void MaskGroupRowView::dragEnterEvent(QDragEnterEvent* event) {
    // Any text is let in; what it says is only known to matter when it is dropped.
    if (!event->mimeData()->hasText()) return;
    setIsDropTarget(true);
    event->acceptProposedAction();
}

void MaskGroupRowView::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
    setIsDropTarget(false);
}

void MaskGroupRowView::dropEvent(QDropEvent* event) {
    setIsDropTarget(false);
    const auto maskID = MaskRowView::maskIDIn(event->mimeData());
    if (!maskID) return event->ignore();
    event->acceptProposedAction();
    if (m_actions.onDropMask) m_actions.onDropMask(*maskID);
}

void MaskGroupRowView::setIsDropTarget(bool isDropTarget) {
    m_isDropTarget = isDropTarget;
    update();
}

void MaskGroupRowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (m_isDropTarget)
        paintPanel(painter, rect(), cornerRadius,
                   VeylaTheme::withOpacity(VeylaTheme::accentBlue(), 0.18),
                   VeylaTheme::accentBlue());
    if (hasFocus()) paintFocusRing(painter, rect(), cornerRadius);
}
