#include "Models/ReleaseVersion.h"

#include <QRegularExpression>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto digitLimit = 18;
/// No version that anybody gave is longer; the shape takes its time for one that is.
constexpr auto lengthLimit = 60;

}  // namespace

std::optional<ReleaseVersion> ReleaseVersion::fromText(const QString& text) {
    static const QRegularExpression shape(
        uR"(^v?(\d+(?:\.\d+)*)(?:[-.]?([a-z]|(?<=-)\d)([a-z0-9.-]*))?(?:\+.*)?$)"_s,
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression partShape(u"\\d+|[a-z]+"_s);
    if (text.size() > lengthLimit) return std::nullopt;
    const auto match = shape.match(text.trimmed());
    if (!match.hasMatch()) return std::nullopt;

    ReleaseVersion version;
    for (const QString& number : match.captured(1).split(u'.')) {
        if (number.size() > digitLimit) return std::nullopt;
        version.m_numbers.append(number.toLongLong());
    }
    while (version.m_numbers.size() > 1 && version.m_numbers.last() == 0)
        version.m_numbers.removeLast();

    const QString prerelease = (match.captured(2) + match.captured(3)).toLower();
    auto parts = partShape.globalMatch(prerelease);
    while (parts.hasNext()) {
        const QString part = parts.next().captured();
        if (!part.at(0).isDigit()) {
            version.m_prerelease.append({part, 0});
        } else if (part.size() <= digitLimit) {
            version.m_prerelease.append({QString(), part.toLongLong()});
        } else {
            return std::nullopt;
        }
    }
    return version;
}

std::strong_ordering ReleaseVersion::operator<=>(const ReleaseVersion& other) const {
    const auto numbers = std::lexicographical_compare_three_way(
        m_numbers.begin(), m_numbers.end(), other.m_numbers.begin(), other.m_numbers.end());
    if (std::is_neq(numbers)) return numbers;
    // A release comes after its pre-releases.
    if (isPrerelease() != other.isPrerelease()) return other.isPrerelease() <=> isPrerelease();
    return std::lexicographical_compare_three_way(m_prerelease.begin(), m_prerelease.end(),
                                                  other.m_prerelease.begin(),
                                                  other.m_prerelease.end());
}

std::strong_ordering ReleaseVersion::Part::operator<=>(const Part& other) const {
    if (word.isEmpty() && other.word.isEmpty()) return number <=> other.number;
    if (word.isEmpty() != other.word.isEmpty()) return other.word.isEmpty() <=> word.isEmpty();
    return word.compare(other.word) <=> 0;
}
