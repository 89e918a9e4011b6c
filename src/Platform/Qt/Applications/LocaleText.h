#pragma once

#include <QString>
#include <QStringList>

/// The arguments that follow the program's name, decoded as the locale of the environment says.
/// To be called before there is an application object, which moves the process to a UTF-8 locale.
/// Bytes that the locale cannot read are read as UTF-8.
QStringList argumentsInLocale(int argc, const char* const* argv);
