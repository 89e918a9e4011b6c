#include "Platform/Qt/Applications/LocaleText.h"

#include <clocale>
#include <cstdlib>
#include <vector>

namespace {

QString decoded(const char* bytes) {
    const std::size_t length = std::mbstowcs(nullptr, bytes, 0);
    if (length == static_cast<std::size_t>(-1)) return QString::fromUtf8(bytes);
    std::vector<wchar_t> characters(length + 1);
    std::mbstowcs(characters.data(), bytes, characters.size());
    return QString::fromWCharArray(characters.data(), static_cast<qsizetype>(length));
}

}  // namespace

QStringList argumentsInLocale(int argc, const char* const* argv) {
    std::setlocale(LC_CTYPE, "");
    QStringList arguments;
    for (int index = 1; index < argc; ++index)
        arguments.append(decoded(argv[index]));
    return arguments;
}
