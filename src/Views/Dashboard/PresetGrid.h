#pragma once

#include "App/AppState.h"

#include <QPointer>
#include <QWidget>
#include <map>
#include <vector>

class PresetRowView;
class QScrollArea;
class SheetArea;

/// A card for each preset, in as many columns as its width has room for. Only the cards in view of
/// the scroll area around it exist, so that hundreds of presets cost what a screenful costs.
class PresetGrid final : public QWidget {
public:
    /// The references must outlive the view.
    PresetGrid(AppState& state, SheetArea& sheets);

    void showPresets(const QList<MaskPreset>& presets);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    /// The cards side by side at one height.
    struct Line {
        int top = 0;
        int height = 0;
    };

    int columnCount() const;
    int count() const { return static_cast<int>(m_presets.size()); }
    void update();
    void buildLines();
    void watchScrolling();
    void showCardsInView();
    QRect rectOf(int index) const;
    /// What the scroll area shows of the grid, and some more.
    std::pair<int, int> spanInView() const;
    PresetRowView* makeCard(const MaskPreset& preset);
    void keepFocus(const std::map<QUuid, PresetRowView*>& staying);
    void orderTabs();

    AppState& m_state;
    SheetArea& m_sheets;
    /// As they were when the lines were made.
    QList<MaskPreset> m_presets;
    std::vector<Line> m_lines;
    std::map<QUuid, PresetRowView*> m_cards;
    /// Of a card that is not edited; 0 before there was one.
    int m_cardHeight = 0;
    QPointer<QScrollArea> m_scrollArea;
};
