#pragma once

#include "Models/MaskGroup.h"

#include <QUuid>
#include <QWidget>
#include <functional>

class QLineEdit;
class StyledButton;
class SymbolView;
class TextLabel;

/// The header line of a group of masks: fold it, rename it in place, hide, lock or delete it, and
/// drop masks onto it. Its masks are lines of the same list.
class MaskGroupRowView final : public QWidget {
public:
    struct Actions {
        std::function<void()> onToggleExpanded;
        std::function<void()> onToggleVisibility;
        std::function<void()> onToggleLock;
        std::function<void()> onDelete;
        /// With a trimmed name that is not empty.
        std::function<void(const QString&)> onRename;
        std::function<void(const QUuid&)> onDropMask;
    };

    MaskGroupRowView(const MaskGroup& group, qsizetype maskCount, const Actions& actions);

    /// Shows other values of the group; what is being typed stays.
    void show(const MaskGroup& group, qsizetype maskCount);
    using QWidget::show;

    void startRenaming();
    bool isRenaming() const;

    /// The height of every header, in points.
    static int rowHeight();

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void commitRename();
    void endRenaming();
    void setIsDropTarget(bool isDropTarget);

    MaskGroup m_group;
    Actions m_actions;
    bool m_isDropTarget = false;
    StyledButton* m_chevron;
    TextLabel* m_name;
    QLineEdit* m_field;
    TextLabel* m_count;
    StyledButton* m_visibility;
    StyledButton* m_lock;
};
