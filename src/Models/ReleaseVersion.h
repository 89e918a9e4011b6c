#pragma once

#include <QList>
#include <QString>
#include <compare>
#include <optional>

/// The version of a release, to be put in order with others.
///
/// It is numbers between dots, missing ones being 0, and perhaps the name of a pre-release after
/// them: "1.10" comes after "1.9", and "1.0" after "1.0-beta.2", which comes after "1.0-beta.1".
/// The parts of such a name, split at dots, hyphens and where letters and digits meet, are compared
/// one by one: numbers by value and before words, words by the alphabet without case, and a name
/// that goes on after a name that ends. "1.0b2" and "1.0-b.2" are the same. A "v" in front and
/// what follows a "+" mean nothing.
class ReleaseVersion {
public:
    /// Nothing when the text does not begin with a number, has more than 60 characters, or a number
    /// in it has more than 18 digits.
    static std::optional<ReleaseVersion> fromText(const QString& text);

    bool isPrerelease() const { return !m_prerelease.isEmpty(); }

    std::strong_ordering operator<=>(const ReleaseVersion& other) const;
    bool operator==(const ReleaseVersion& other) const { return std::is_eq(*this <=> other); }

private:
    /// A number, or a word where there are letters.
    struct Part {
        QString word;
        qint64 number = 0;

        std::strong_ordering operator<=>(const Part& other) const;
        bool operator==(const Part&) const = default;
    };

    QList<qint64> m_numbers;
    QList<Part> m_prerelease;
};
