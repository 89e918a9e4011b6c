#pragma once

#include <QStringList>
#include <QWidget>

class QScrollArea;

/// The changes of a release on a card, which scrolls where they need more than its height.
class NotesList final : public QWidget {
public:
    /// In points, for text of the default size.
    static constexpr int greatestHeight = 280;

    NotesList();

    /// Costs nothing when they are the same.
    void show(const QStringList& changes);
    using QWidget::show;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class FocusRing;

    int contentHeight() const;
    void makeRoomForScrollBar(bool isScrolling);

    QScrollArea* m_scrollArea;
    FocusRing* m_focusRing;
    QStringList m_changes;
};
