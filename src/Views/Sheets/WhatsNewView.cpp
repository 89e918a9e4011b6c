#include "Views/Sheets/WhatsNewView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/AppIconView.h"
#include "Views/Components/Spinner.h"
#include "Views/Components/SpokenNote.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/SymbolView.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/Shadow.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Sheets/NotesList.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int sheetWidth = 460;
constexpr int sidePadding = 28;
constexpr int iconSide = 52;
/// Of the drawing of the program's icon, at that side.
constexpr double iconCornerRadius = 12;
constexpr double buttonCornerRadius = 9;

TextLabel* centered(TextLabel* label) {
    label->setAlignment(Qt::AlignCenter);
    return label;
}

StyledButton* continueButton() {
    ButtonLook look;
    look.text = {12, QFont::Bold};
    look.textColor = Qt::white;
    look.hasGradient = true;
    look.cornerRadius = buttonCornerRadius;
    look.padding = padding(16, 9);
    auto* const button = new StyledButton(u"Continue"_s, look);
    setAccessibleIdentifier(*button, u"whats-new-continue-button"_s);
    return button;
}

}  // namespace

WhatsNewView::WhatsNewView(const Setup& setup)
    : m_setup(setup),
      m_icon(new AppIconView(iconSide)),
      m_version(new TextLabel({}, {12, QFont::DemiBold}, VeylaTheme::accentIndigo())),
      m_notes(new NotesList),
      m_loading(loading()),
      m_fallback(fallback()),
      m_pageFailure(new SpokenNote(u"The page could not be opened: "_s + setup.pageAddress,
                                   SpokenNote::Kind::copied, sheetWidth - 2 * sidePadding)),
      m_continue(continueButton()) {
    setAccessibleIdentifier(*m_pageFailure, u"whats-new-page-failure"_s);
    setAccessibleIdentifier(*this, u"whats-new-view"_s);
    connect(m_continue, &QPushButton::clicked, this, setup.onDismiss);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header());
    layout->addWidget(m_notes);
    layout->addWidget(m_loading);
    layout->addWidget(m_fallback);
    layout->addWidget(footer());
    m_notes->hide();
    m_loading->hide();
    m_fallback->hide();
}

SheetContent WhatsNewView::content(const Setup& setup) {
    auto* const view = new WhatsNewView(setup);
    return {.title = u"What's New"_s,
            .view = view,
            .width = sheetWidth,
            .ground = VeylaTheme::panel(),
            .firstFocus = view->m_continue,
            .onDismiss = setup.onDismiss,
            .onSubmit = setup.onDismiss};
}

void WhatsNewView::show(const std::optional<ChangelogRelease>& release, bool hasFailed) {
    m_version->showText(versionLabel(release));
    if (release) m_notes->show(release->changes);
    m_notes->setVisible(release.has_value());
    m_fallback->setVisible(!release && hasFailed);
    m_loading->setVisible(!release && !hasFailed);
}

QString WhatsNewView::versionLabel(const std::optional<ChangelogRelease>& release) const {
    if (!release) return u"Version "_s + m_setup.applicationVersion;
    const QString version = u"Version "_s + release->version;
    const QString tag = release->tag.value_or(QString());
    return tag.isEmpty() ? version : version + u" · "_s + tag;
}

QWidget* WhatsNewView::header() {
    constexpr QMargins around{sidePadding, 28, sidePadding, 18};
    auto* const title =
        new TextLabel(u"What's New"_s, {22, QFont::Bold}, VeylaTheme::textPrimary());
    auto* const lines = column(4, {centered(title), centered(m_version)});
    return column(12, {{m_icon, 0, Qt::AlignHCenter}, lines}, around);
}

QWidget* WhatsNewView::loading() {
    auto* const text = new TextLabel(u"Loading release notes…"_s, {11}, VeylaTheme::textMuted());
    return column(10, {{new Spinner, 0, Qt::AlignHCenter}, centered(text)}, padding(0, 32));
}

QWidget* WhatsNewView::fallback() {
    constexpr int widestText = 320;
    const Symbol symbol{u"wifi.slash"_s, 22, SymbolWeight::light, VeylaTheme::textMuted()};
    auto* const title = new TextLabel(u"Couldn't load the latest notes."_s, {12, QFont::DemiBold},
                                      VeylaTheme::textPrimary());
    auto* const text = new TextLabel(
        u"You're on version %1. See the full changelog online."_s.arg(m_setup.applicationVersion),
        {11}, VeylaTheme::textSecondary(), TextLabel::Lines::paragraph);
    centered(text)->setParagraphWidth(qRound(widestText * textScale()));
    StyledButton* const link =
        pageLink(u"Open Changelog"_s, QFont::DemiBold, VeylaTheme::accentBlue());
    return column(8,
                  {{new SymbolView(symbol), 0, Qt::AlignHCenter},
                   centered(title),
                   {text, 0, Qt::AlignHCenter},
                   {link, 0, Qt::AlignHCenter}},
                  padding(sidePadding, sidePadding));
}

QWidget* WhatsNewView::footer() {
    constexpr QMargins around{sidePadding, 18, sidePadding, 22};
    StyledButton* const link =
        pageLink(u"View full changelog"_s, QFont::Medium, VeylaTheme::textSecondary());
    return column(10,
                  {m_continue, {link, 0, Qt::AlignHCenter}, {m_pageFailure, 0, Qt::AlignHCenter}},
                  around);
}

StyledButton* WhatsNewView::pageLink(const QString& title, int weight, const QColor& color) {
    StyledButton* const link =
        linkButton(title, {11, static_cast<QFont::Weight>(weight)}, color, m_setup.pageAddress);
    connect(link, &QPushButton::clicked, this, [this] { openPage(); });
    if (m_setup.pageAddress.isEmpty()) link->hide();
    return link;
}

void WhatsNewView::openPage() {
    if (m_setup.onOpenPage())
        m_pageFailure->hide();
    else
        m_pageFailure->say();
}

// The shadows, which reach beyond the views that cast them.
void WhatsNewView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const auto placeOf = [&](const QWidget* view) {
        return QRectF(view->mapTo(this, QPoint(0, 0)), QSizeF(view->size()));
    };
    const QColor glow = VeylaTheme::accentBlue();
    paintShadow(painter, placeOf(m_icon), iconCornerRadius,
                {VeylaTheme::withOpacity(glow, 0.2), 12, {0, 4}});
    paintShadow(painter, placeOf(m_continue), buttonCornerRadius,
                {VeylaTheme::withOpacity(glow, 0.18), 8, {0, 3}});
}
