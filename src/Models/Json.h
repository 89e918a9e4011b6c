#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1StringView>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <stdexcept>

/// The place of a value in a document, as a chain of references up the stack: a parent must outlive
/// its children. It costs nothing until its text is asked for.
class JsonPath {
public:
    /// The document itself.
    JsonPath() = default;
    JsonPath(const JsonPath& parent, QLatin1StringView member)
        : m_parent(&parent), m_latinName(member) {}
    /// `member` must outlive the path.
    JsonPath(const JsonPath& parent, const QString& member) : m_parent(&parent), m_name(&member) {}
    JsonPath(const JsonPath& parent, qsizetype index) : m_parent(&parent), m_index(index) {}
    JsonPath(const JsonPath&) = delete;
    JsonPath& operator=(const JsonPath&) = delete;

    /// For example "masks[2].style"; "document" for the document itself.
    QString text() const;

private:
    const JsonPath* m_parent = nullptr;
    QLatin1StringView m_latinName;
    const QString* m_name = nullptr;
    qsizetype m_index = 0;
};

/// A document that cannot be read or a value that cannot be written.
class JsonError : public std::runtime_error {
public:
    JsonError(const JsonPath& path, const QString& reason);

    /// The path and the reason, as in `masks[2].style: unknown style "Blackout"`. One line,
    /// whatever the document holds.
    const QString& message() const { return m_message; }

private:
    QString m_message;
};

/// The text in quotation marks, shortened when it is long, with control characters escaped.
QString quotedForMessage(const QString& text);

/// A valid JSON text with every number that is exactly a 64-bit integer in plain digits: 1000 for
/// 1e3 or 1000.0. Qt rounds large ones that are written otherwise.
QByteArray withPlainIntegers(const QByteArray& text);

/// Reads the members of one object. Members that nobody asks for are ignored. Every reader throws
/// JsonError, naming the member, when it is missing or does not fit; an optional member that is
/// missing or null reads as absent.
class JsonObjectReader {
public:
    /// Throws JsonError when the value is not an object. `path` must outlive the reader.
    JsonObjectReader(const QJsonValue& value, const JsonPath& path);

    QString string(QLatin1StringView key) const;
    bool boolean(QLatin1StringView key) const;
    double number(QLatin1StringView key) const;
    /// A number with a fractional part is an error, not rounded; so is one out of range.
    quint32 unsigned32(QLatin1StringView key) const;
    qint64 signed64(QLatin1StringView key) const;
    /// Accepts the 36-character hyphenated form only, in either letter case.
    QUuid uuid(QLatin1StringView key) const;

    std::optional<QString> optionalString(QLatin1StringView key) const;
    std::optional<bool> optionalBoolean(QLatin1StringView key) const;
    std::optional<QUuid> optionalUuid(QLatin1StringView key) const;

    /// A string that `parse` turns into an optional value; nothing is the error
    /// `unknown <noun> "<string>"`.
    template <typename Parse>
    auto parsed(QLatin1StringView key, QLatin1StringView noun, Parse parse) const {
        const QString text = string(key);
        auto value = parse(text);
        if (!value) throwUnknown(key, noun, text);
        return *value;
    }

    /// What `read`, given a reader of the nested object, returns.
    template <typename Read>
    auto object(QLatin1StringView key, Read read) const {
        const JsonPath path(m_path, key);
        return read(JsonObjectReader(m_object.value(key), path));
    }

    /// An array of strings.
    QStringList strings(QLatin1StringView key) const;
    /// An array of objects.
    template <typename Record>
    QList<Record> list(QLatin1StringView key) const {
        return records<Record>(key, m_object.value(key));
    }

    /// As `list`, but an empty list when the member is missing or null.
    template <typename Record>
    QList<Record> optionalList(QLatin1StringView key) const {
        const QJsonValue value = m_object.value(key);
        return isAbsent(value) ? QList<Record>() : records<Record>(key, value);
    }

    /// An object whose member names are data.
    template <typename Record>
    QMap<QString, Record> map(QLatin1StringView key) const {
        const JsonPath mapPath(m_path, key);
        const QJsonObject members = JsonObjectReader(m_object.value(key), mapPath).m_object;
        QMap<QString, Record> records;
        for (auto member = members.begin(); member != members.end(); ++member) {
            const QString name = member.key();
            const JsonPath path(mapPath, name);
            records.insert(name, Record::fromJson(JsonObjectReader(member.value(), path)));
        }
        return records;
    }

private:
    template <typename Record>
    QList<Record> records(QLatin1StringView key, const QJsonValue& value) const {
        const QJsonArray array = toArray(key, value);
        const JsonPath listPath(m_path, key);
        QList<Record> records;
        records.reserve(array.size());
        for (qsizetype index = 0; index < array.size(); ++index) {
            const JsonPath path(listPath, index);
            records.append(Record::fromJson(JsonObjectReader(array.at(index), path)));
        }
        return records;
    }

    static bool isAbsent(const QJsonValue& value) { return value.isUndefined() || value.isNull(); }
    QString toString(QLatin1StringView key, const QJsonValue& value) const;
    bool toBoolean(QLatin1StringView key, const QJsonValue& value) const;
    QUuid toUuid(QLatin1StringView key, const QJsonValue& value) const;
    QJsonArray toArray(QLatin1StringView key, const QJsonValue& value) const;
    qint64 integer(QLatin1StringView key, qint64 minimum, qint64 maximum) const;
    void requireType(QLatin1StringView key, const QJsonValue& value, QJsonValue::Type type) const;
    [[noreturn]] void throwUnknown(QLatin1StringView key, QLatin1StringView noun,
                                   const QString& text) const;

    QJsonObject m_object;
    const JsonPath& m_path;
};

/// An object with these members, all null, to be copied and filled in where thousands of one kind
/// are written: that takes a third of the time of adding the members to each.
QJsonObject jsonObjectWithMembers(std::initializer_list<QLatin1StringView> keys);

/// The number as a JSON value. Throws JsonError, naming the member `key` below `path`, for an
/// infinity or not-a-number, which JSON cannot hold.
QJsonValue finiteJsonNumber(double number, const JsonPath& path, QLatin1StringView key);

/// The records as an array, the member `key` below `path`.
template <typename Record>
QJsonArray recordsToJson(const QList<Record>& records, const JsonPath& path,
                         QLatin1StringView key) {
    const JsonPath listPath(path, key);
    QJsonArray array;
    for (qsizetype index = 0; index < records.size(); ++index) {
        array.append(records.at(index).toJson(JsonPath(listPath, index)));
    }
    return array;
}
