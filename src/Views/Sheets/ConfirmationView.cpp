#include "Views/Sheets/ConfirmationView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"

using namespace Qt::Literals::StringLiterals;

SheetContent confirmationSheet(const Confirmation& confirmation) {
    constexpr int inset = 24;
    auto* const title = new TextLabel(confirmation.title, {15, QFont::Bold},
                                      VeylaTheme::textPrimary(), TextLabel::Lines::paragraph);
    auto* const message = new TextLabel(confirmation.message, {12}, VeylaTheme::textSecondary(),
                                        TextLabel::Lines::paragraph);
    auto* const cancel = cancelButton();
    auto* const confirm = destructiveButton(confirmation.destructiveTitle);
    setAccessibleIdentifier(*cancel, u"confirmation-cancel-button"_s);
    setAccessibleIdentifier(*confirm, u"confirmation-confirm-button"_s);
    QObject::connect(cancel, &QPushButton::clicked, confirmation.onCancel);
    QObject::connect(confirm, &QPushButton::clicked, confirmation.onConfirm);
    auto* const view =
        column(18, {column(8, {title, message}), row(8, {LayoutItem::space(), confirm, cancel})},
               padding(inset, inset));
    return {.title = confirmation.title,
            .view = view,
            .width = 380,
            .ground = VeylaTheme::window(),
            .firstFocus = cancel,
            .onDismiss = confirmation.onCancel};
}
