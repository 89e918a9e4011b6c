#include "Views/Sheets/NotesList.h"

#include "Views/Components/StyledButton.h"
#include "Views/Components/SymbolView.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int sidePadding = 28;
constexpr int cardPadding = 16;
/// What a person can still read and scroll.
constexpr int leastHeight = 72;
/// Far more than anybody reads; each change is a view, and what the network sends has no bounds.
constexpr qsizetype mostChanges = 200;
constexpr qsizetype longestChange = 2'000;

QWidget* note(const QString& change) {
    const Symbol symbol{u"checkmark.circle.fill"_s, 13, SymbolWeight::regular,
                        VeylaTheme::accentGreen()};
    auto* const mark = column(0, {new SymbolView(symbol)}, {0, 1, 0, 0});
    auto* const text =
        new TextLabel(change, {12.5}, VeylaTheme::textSecondary(), TextLabel::Lines::paragraph);
    text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    return row(10, {{mark, 0, Qt::AlignTop}, {text, 1}});
}

}  // namespace

/// Lies over what scrolls.
class NotesList::FocusRing final : public QWidget {
public:
    explicit FocusRing(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintFocusRing(painter, rect(), VeylaCardModifier::cornerRadius);
    }
};

NotesList::NotesList() : m_scrollArea(new QScrollArea(this)), m_focusRing(new FocusRing(this)) {
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->viewport()->setAutoFillBackground(false);
    m_scrollArea->setAccessibleName(u"Release notes"_s);
    styleScrollBar(*m_scrollArea);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    connect(m_scrollArea->verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this](int, int maximum) { makeRoomForScrollBar(maximum > 0); });
    m_scrollArea->installEventFilter(this);
}

void NotesList::show(const QStringList& changes) {
    if (changes == m_changes && m_scrollArea->widget()) return;
    m_changes = changes;
    auto* const notes = column(12, {}, padding(cardPadding, cardPadding));
    for (const QString& change : changes.first(std::min(changes.size(), mostChanges)))
        notes->layout()->addWidget(note(change.left(longestChange)));
    auto* const content = column(0, {veylaCard(notes, false)}, padding(sidePadding, 0));
    m_scrollArea->setWidget(content);
    content->setAutoFillBackground(false);
    updateGeometry();
}

// Beside the card, which stays as wide as it is. The keyboard stops here only where there is
// something to scroll.
void NotesList::makeRoomForScrollBar(bool isScrolling) {
    m_scrollArea->setFocusPolicy(isScrolling ? Qt::StrongFocus : Qt::NoFocus);
    const int bar = isScrolling ? m_scrollArea->verticalScrollBar()->sizeHint().width() : 0;
    if (QWidget* const content = m_scrollArea->widget())
        content->layout()->setContentsMargins(sidePadding, 0, sidePadding - bar, 0);
}

int NotesList::contentHeight() const {
    const QWidget* const content = m_scrollArea->widget();
    if (!content) return 0;
    const QWidget* const card = content->layout()->itemAt(0)->widget();
    return card->hasHeightForWidth() ? card->heightForWidth(width() - 2 * sidePadding)
                                     : card->sizeHint().height();
}

QSize NotesList::sizeHint() const {
    return {0, std::min(qRound(greatestHeight * textScale()), contentHeight())};
}

QSize NotesList::minimumSizeHint() const {
    return {0, std::min(leastHeight, sizeHint().height())};
}

bool NotesList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        m_focusRing->setVisible(event->type() == QEvent::FocusIn);
    return QWidget::eventFilter(watched, event);
}

void NotesList::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_scrollArea->setGeometry(rect());
    constexpr int gap = 4;
    m_focusRing->setGeometry(rect().adjusted(sidePadding - gap, 0, gap - sidePadding, 0));
    // The texts need as many lines as that width makes them.
    if (event->size().width() != event->oldSize().width()) updateGeometry();
}
