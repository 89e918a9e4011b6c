#include "Platform/AccessibleIdentifier.h"

#include <QVariant>

namespace {

// Where Qt 6.9 keeps it for widgets.
constexpr const char* identifierProperty = "accessibleIdentifier";

}  // namespace

void setAccessibleIdentifier(QObject& object, const QString& identifier) {
    object.setProperty(identifierProperty, identifier);
}

QString accessibleIdentifier(const QObject& object) {
    return object.property(identifierProperty).toString();
}
