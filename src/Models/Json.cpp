#include "Models/Json.h"

#include <QDebug>
#include <QStringView>
#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype longestQuotation = 80;
/// Decimal digits of a 64-bit integer.
constexpr qsizetype longestInteger = std::numeric_limits<qint64>::digits10 + 1;

QLatin1StringView typeName(QJsonValue::Type type) {
    switch (type) {
        case QJsonValue::Null:
            return "null"_L1;
        case QJsonValue::Bool:
            return "true or false"_L1;
        case QJsonValue::Double:
            return "a number"_L1;
        case QJsonValue::String:
            return "a string"_L1;
        case QJsonValue::Array:
            return "an array"_L1;
        case QJsonValue::Object:
            return "an object"_L1;
        case QJsonValue::Undefined:
            break;
    }
    return "nothing"_L1;
}

QString typeMismatch(const QJsonValue& value, QJsonValue::Type expected) {
    if (value.isUndefined()) return u"required member is missing"_s;
    return u"expected %1, found %2"_s.arg(typeName(expected), typeName(value.type()));
}

bool isPlainName(QStringView name) {
    for (const QChar character : name) {
        const char16_t unit = character.unicode();
        const bool isLetter = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
        const bool isDigit = unit >= u'0' && unit <= u'9';
        if (!isLetter && !isDigit && unit != u'_') return false;
    }
    return !name.isEmpty();
}

bool isHexDigit(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') ||
           (unit >= u'A' && unit <= u'F');
}

/// QUuid::fromString alone also takes braces and tells the null UUID from a failure by nothing.
bool isUuidText(QStringView text) {
    constexpr qsizetype length = 36;
    if (text.size() != length) return false;
    for (qsizetype index = 0; index < length; ++index) {
        const char16_t unit = text[index].unicode();
        const bool isHyphenPlace = index == 8 || index == 13 || index == 18 || index == 23;
        if (isHyphenPlace ? unit != u'-' : !isHexDigit(unit)) return false;
    }
    return true;
}

bool isNumberCharacter(char character) {
    return (character >= '0' && character <= '9') || character == '.' || character == '-' ||
           character == '+' || character == 'e' || character == 'E';
}

/// The number in plain digits, when it has a fraction or an exponent and yet is exactly a 64-bit
/// integer; else empty. The digits count, not what a double makes of them.
QByteArray plainInteger(QByteArrayView number) {
    if (std::none_of(number.begin(), number.end(),
                     [](char each) { return each == '.' || each == 'e' || each == 'E'; }))
        return {};
    const bool isNegative = number.startsWith('-');
    const QByteArray text = number.sliced(isNegative ? 1 : 0).toByteArray().toLower();
    const qsizetype exponentSign = text.indexOf('e');
    const qsizetype point = text.indexOf('.');
    QByteArray digits = exponentSign < 0 ? text : text.first(exponentSign);
    qsizetype scale = 0;  // how many zeros follow the digits
    if (point >= 0) {
        scale = point + 1 - digits.size();
        digits.remove(point, 1);
    }
    while (digits.startsWith('0'))
        digits.remove(0, 1);
    if (digits.isEmpty()) return "0";
    while (digits.endsWith('0')) {
        digits.chop(1);
        ++scale;
    }
    bool isExponent = true;
    if (exponentSign >= 0) {
        const int exponent = text.sliced(exponentSign + 1).toInt(&isExponent);
        scale += exponent;
    }
    if (!isExponent || scale < 0 || digits.size() + scale > longestInteger) return {};
    const QByteArray plain = (isNegative ? "-" : "") + digits + QByteArray(scale, '0');
    bool isInteger = false;
    plain.toLongLong(&isInteger);
    return isInteger ? plain : QByteArray();
}

}  // namespace

QByteArray withPlainIntegers(const QByteArray& text) {
    QByteArray plain;
    qsizetype copied = 0;
    bool isInString = false;
    for (qsizetype index = 0; index < text.size(); ++index) {
        const char character = text.at(index);
        if (isInString && character == '\\') {
            ++index;
        } else if (character == '"') {
            isInString = !isInString;
        } else if (!isInString && (character == '-' || (character >= '0' && character <= '9'))) {
            const qsizetype start = index;
            while (index + 1 < text.size() && isNumberCharacter(text.at(index + 1)))
                ++index;
            const QByteArray integer =
                plainInteger(QByteArrayView(text).sliced(start, index + 1 - start));
            if (integer.isEmpty()) continue;
            plain += QByteArrayView(text).sliced(copied, start - copied);
            plain += integer;
            copied = index + 1;
        }
    }
    return copied == 0 ? text : plain + text.sliced(copied);
}

QString JsonPath::text() const {
    if (m_parent == nullptr) return u"document"_s;
    const QString parent = m_parent->m_parent == nullptr ? QString() : m_parent->text();
    if (m_name == nullptr && m_latinName.isNull()) return parent + u"[%1]"_s.arg(m_index);
    const QString name = m_name != nullptr ? *m_name : QString(m_latinName);
    if (!isPlainName(name)) return parent + u'[' + quotedForMessage(name) + u']';
    return parent.isEmpty() ? name : parent + u'.' + name;
}

JsonError::JsonError(const JsonPath& path, const QString& reason)
    : std::runtime_error((path.text() + u": "_s + reason).toStdString()),
      m_message(QString::fromUtf8(what())) {}

QString quotedForMessage(const QString& text) {
    QString quoted;
    QDebug(&quoted).nospace() << (text.size() <= longestQuotation
                                      ? text
                                      : text.left(longestQuotation) + u"…"_s);
    return quoted;
}

JsonObjectReader::JsonObjectReader(const QJsonValue& value, const JsonPath& path) : m_path(path) {
    if (!value.isObject()) throw JsonError(path, typeMismatch(value, QJsonValue::Object));
    m_object = value.toObject();
}

QString JsonObjectReader::string(QLatin1StringView key) const {
    return toString(key, m_object.value(key));
}

bool JsonObjectReader::boolean(QLatin1StringView key) const {
    return toBoolean(key, m_object.value(key));
}

double JsonObjectReader::number(QLatin1StringView key) const {
    const QJsonValue value = m_object.value(key);
    requireType(key, value, QJsonValue::Double);
    return value.toDouble();
}

quint32 JsonObjectReader::unsigned32(QLatin1StringView key) const {
    return static_cast<quint32>(integer(key, 0, std::numeric_limits<quint32>::max()));
}

qint64 JsonObjectReader::signed64(QLatin1StringView key) const {
    return integer(key, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
}

QUuid JsonObjectReader::uuid(QLatin1StringView key) const {
    return toUuid(key, m_object.value(key));
}

std::optional<QString> JsonObjectReader::optionalString(QLatin1StringView key) const {
    const QJsonValue value = m_object.value(key);
    if (isAbsent(value)) return std::nullopt;
    return toString(key, value);
}

std::optional<bool> JsonObjectReader::optionalBoolean(QLatin1StringView key) const {
    const QJsonValue value = m_object.value(key);
    if (isAbsent(value)) return std::nullopt;
    return toBoolean(key, value);
}

std::optional<QUuid> JsonObjectReader::optionalUuid(QLatin1StringView key) const {
    const QJsonValue value = m_object.value(key);
    if (isAbsent(value)) return std::nullopt;
    return toUuid(key, value);
}

QString JsonObjectReader::toString(QLatin1StringView key, const QJsonValue& value) const {
    requireType(key, value, QJsonValue::String);
    return value.toString();
}

bool JsonObjectReader::toBoolean(QLatin1StringView key, const QJsonValue& value) const {
    requireType(key, value, QJsonValue::Bool);
    return value.toBool();
}

QUuid JsonObjectReader::toUuid(QLatin1StringView key, const QJsonValue& value) const {
    const QString text = toString(key, value);
    if (!isUuidText(text)) {
        throw JsonError(JsonPath(m_path, key),
                        u"expected a UUID, found "_s + quotedForMessage(text));
    }
    return QUuid::fromString(text);
}

QStringList JsonObjectReader::strings(QLatin1StringView key) const {
    const QJsonArray array = toArray(key, m_object.value(key));
    const JsonPath listPath(m_path, key);
    QStringList texts;
    texts.reserve(array.size());
    for (qsizetype index = 0; index < array.size(); ++index) {
        const JsonPath path(listPath, index);
        const QJsonValue value = array.at(index);
        if (!value.isString()) throw JsonError(path, typeMismatch(value, QJsonValue::String));
        texts.append(value.toString());
    }
    return texts;
}

QJsonArray JsonObjectReader::toArray(QLatin1StringView key, const QJsonValue& value) const {
    requireType(key, value, QJsonValue::Array);
    return value.toArray();
}

qint64 JsonObjectReader::integer(QLatin1StringView key, qint64 minimum, qint64 maximum) const {
    const QJsonValue value = m_object.value(key);
    requireType(key, value, QJsonValue::Double);
    const qint64 integer = value.toInteger(0);
    // toInteger returns its argument for what is no 64-bit integer, and nothing else tells.
    const bool isInteger = integer == value.toInteger(1);
    if (!isInteger || integer < minimum || integer > maximum) {
        throw JsonError(
            JsonPath(m_path, key),
            u"expected an integer from %1 to %2, found %3"_s.arg(
                QString::number(minimum), QString::number(maximum), value.toVariant().toString()));
    }
    return integer;
}

void JsonObjectReader::requireType(QLatin1StringView key, const QJsonValue& value,
                                   QJsonValue::Type type) const {
    if (value.type() != type) throw JsonError(JsonPath(m_path, key), typeMismatch(value, type));
}

void JsonObjectReader::throwUnknown(QLatin1StringView key, QLatin1StringView noun,
                                    const QString& text) const {
    throw JsonError(JsonPath(m_path, key), u"unknown %1 "_s.arg(noun) + quotedForMessage(text));
}

QJsonObject jsonObjectWithMembers(std::initializer_list<QLatin1StringView> keys) {
    QJsonObject object;
    for (const QLatin1StringView key : keys)
        object.insert(key, QJsonValue::Null);
    return object;
}

QJsonValue finiteJsonNumber(double number, const JsonPath& path, QLatin1StringView key) {
    if (!std::isfinite(number)) {
        throw JsonError(JsonPath(path, key), u"%1 is not finite"_s.arg(number));
    }
    return number;
}
