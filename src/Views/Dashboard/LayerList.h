#pragma once

#include "App/AppState.h"
#include "Views/TurnUpdate.h"

#include <QScrollArea>
#include <map>
#include <memory>
#include <vector>

class MaskGroupRowView;
class MaskRowView;

/// Every group with its masks, then the masks in no group. Only the rows in view exist, so that
/// thousands of masks cost what a screenful costs. The arrow keys, Home and End walk through it.
class LayerList final : public QScrollArea {
public:
    /// The references must outlive the view.
    LayerList(AppState& state, Scheduler& scheduler);
    ~LayerList() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    class Content;

    /// One line, in the order of the list. A group is named by its id and no mask.
    struct Line {
        QUuid id;
        bool isGroup = false;
        /// The group that the line belongs to, its header included; null for a mask in none.
        QUuid groupID;
        /// Place in `AppState::masks` or `groups`.
        qsizetype index = 0;
        int top = 0;
        int height = 0;
        /// How many masks a group has.
        qsizetype maskCount = 0;
    };
    /// The rounded ground behind a group and its masks.
    struct GroupGround {
        QUuid groupID;
        int top = 0;
        int bottom = 0;

        bool operator==(const GroupGround&) const = default;
    };

    void update();
    void buildLines();
    void addLine(Line line, int height, int gapAbove);
    void showRowsInView();
    QWidget* makeRow(const Line& line);
    void refreshRow(QWidget* row, const Line& line);
    QRect rectOf(const Line& line) const;
    void revealSelection();
    void showMaskMenu(const QUuid& maskID, QPoint position);
    void moveFocus(const QUuid& from, int step);
    void keepFocus(const std::map<QUuid, QWidget*>& staying);
    void orderTabs();

    AppState& m_state;
    Content* m_content;
    std::vector<Line> m_lines;
    std::vector<GroupGround> m_grounds;
    std::map<QUuid, QWidget*> m_rows;
    std::optional<QUuid> m_revealedSelection;
    TurnUpdate m_turnUpdate;
};
