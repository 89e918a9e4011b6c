#pragma once

#include "Views/Components/AccessibleElement.h"

#include <QColor>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>

class QScrollArea;

/// What a sheet shows, and what its keys do.
struct SheetContent {
    /// What assistive technology calls the sheet.
    QString title;
    /// Has a layout; the sheet takes it over.
    QWidget* view = nullptr;
    /// In points, for text of the default size.
    int width = 400;
    QColor ground{};
    /// Inside the view; has the keyboard first.
    QWidget* firstFocus = nullptr;
    /// Escape.
    std::function<void()> onDismiss{};
    /// Return, where no button has the keyboard; may be empty.
    std::function<void()> onSubmit{};
};

/// A card over a window that keeps the keyboard inside: Tab goes round, Escape dismisses. It is as
/// large as its content wants, never larger than the room for it; then the content scrolls.
class Sheet final : public QWidget, public AccessibleElement {
public:
    Sheet(const SheetContent& content, QWidget* parent);

    /// Puts it in the middle of the room, where it stays as its content changes.
    void placeIn(const QRect& room);
    /// Gives the keyboard to where it was in the sheet, at first to where it starts.
    void takeKeyboard();

    QAccessible::Role accessibleRole() const override { return QAccessible::Dialog; }
    void describeState(QAccessible::State& state) const override { state.modal = true; }

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool isNext) override;

private:
    QSize contentSize(const QSize& available) const;

    SheetContent m_content;
    QScrollArea* m_scrollArea;
    QPointer<QWidget> m_firstFocus;
    QRect m_room;
};
