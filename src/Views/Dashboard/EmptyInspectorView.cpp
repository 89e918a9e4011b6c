#include "Views/Dashboard/EmptyInspectorView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/SymbolView.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"

using namespace Qt::Literals::StringLiterals;

EmptyInspectorView::EmptyInspectorView(AppState& state) {
    constexpr int textWidth = 260;
    auto* const explanation =
        new TextLabel(u"Select a mask from the sidebar or create a new one."_s, {12},
                      VeylaTheme::textSecondary(), TextLabel::Lines::paragraph);
    explanation->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    explanation->setParagraphWidth(qRound(textWidth * textScale()));
    auto* const title =
        new TextLabel(u"No Mask Selected"_s, {16, QFont::DemiBold}, VeylaTheme::textPrimary());

    StyledButton* const create = primaryButton(u"Create New Mask"_s, u"plus"_s);
    setAccessibleIdentifier(*create, u"empty-state-create-button"_s);
    connect(create, &QPushButton::clicked, this, [&state] { state.createMask(); });

    StyledButton* const replay = secondaryButton(u"Replay walkthrough"_s, u"figure.walk"_s);
    setAccessibleIdentifier(*replay, u"empty-state-replay-walkthrough"_s);
    connect(replay, &QPushButton::clicked, this, [&state] { state.replayOnboarding(); });

    constexpr auto centered = Qt::AlignHCenter;
    const Symbol symbol{u"shield.slash"_s, 40, SymbolWeight::light, VeylaTheme::textMuted()};
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(column(12, {LayoutItem::space(),
                                  {new SymbolView(symbol), 0, centered},
                                  {title, 0, centered},
                                  {explanation, 0, centered},
                                  {create, 0, centered},
                                  {replay, 0, centered},
                                  LayoutItem::space()}));
}
