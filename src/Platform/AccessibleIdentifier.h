#pragma once

#include <QObject>
#include <QString>

/// Gives an object the name by which tools find its element in the accessibility tree. Unlike the
/// label it is never shown or spoken, does not change with the language, and tells elements apart.
/// An identifier may be given, replaced or emptied at any time.
void setAccessibleIdentifier(QObject& object, const QString& identifier);

/// Empty for an object that has none.
QString accessibleIdentifier(const QObject& object);
