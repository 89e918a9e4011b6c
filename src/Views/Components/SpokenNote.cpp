#include "Views/Components/SpokenNote.h"

#include "Views/Components/TextLabel.h"
#include "Views/Design/VeylaTheme.h"

#include <QFocusEvent>
#include <QVBoxLayout>

SpokenNote::SpokenNote(const QString& text, Kind kind, int width) : m_kind(kind) {
    setAccessibleName(text);
    auto* const label =
        new TextLabel(text, {11}, VeylaTheme::accentRed(),
                      kind == Kind::line ? TextLabel::Lines::one : TextLabel::Lines::paragraph);
    if (kind == Kind::copied) {
        label->setAlignment(Qt::AlignCenter);
        label->setParagraphWidth(width);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        label->setFocusPolicy(Qt::StrongFocus);
        label->installEventFilter(this);
    }
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    hide();
}

// All of it is marked while the keyboard is there: ready to be copied, and seen to have it.
bool SpokenNote::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::FocusIn) return false;
    const auto reason = static_cast<QFocusEvent*>(event)->reason();
    auto* const label = static_cast<TextLabel*>(watched);
    if (reason != Qt::MouseFocusReason)
        label->setSelection(0, static_cast<int>(label->text().size()));
    return false;
}

void SpokenNote::say() {
    hide();
    show();
}
