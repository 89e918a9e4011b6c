#include "Platform/X11/XSettings.h"

#include <QtEndian>

namespace {

/// Reads the parts of a document one after the other. Once something is beyond its end, that and
/// everything that follows is empty, and the reader not intact.
class DocumentReader {
public:
    explicit DocumentReader(const QByteArray& document) : m_rest(document) {}

    bool isIntact() const { return m_isIntact; }
    void setBigEndian(bool isBigEndian) { m_isBigEndian = isBigEndian; }

    QByteArray bytes(qsizetype count) {
        if (count < 0 || count > m_rest.size()) {
            m_isIntact = false;
            m_rest.clear();
            return {};
        }
        QByteArray taken = m_rest.first(count);
        m_rest.remove(0, count);
        return taken;
    }
    /// Padded to whole groups of four.
    QByteArray paddedBytes(qsizetype count) {
        QByteArray taken = bytes(count);
        bytes((4 - count % 4) % 4);
        return taken;
    }
    template <typename Number>
    Number number() {
        const QByteArray taken = bytes(sizeof(Number));
        if (taken.isEmpty()) return 0;
        return m_isBigEndian ? qFromBigEndian<Number>(taken.constData())
                             : qFromLittleEndian<Number>(taken.constData());
    }

private:
    QByteArray m_rest;
    bool m_isBigEndian = false;
    bool m_isIntact = true;
};

enum class SettingType : quint8 { integer = 0, text = 1, color = 2 };

}  // namespace

XSettings::XSettings(XcbConnection& connection)
    : m_connection(connection), m_owner(connection, connection.atoms().settingsSelection) {
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(
        m_owner.owner().subscribe([this](xcb_window_t manager) { followManager(manager); }));
}

void XSettings::followManager(xcb_window_t manager) {
    m_manager = manager;
    if (manager != XCB_NONE) {
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection, manager, XCB_CW_EVENT_MASK, &events);
    }
    read();
}

void XSettings::read() {
    const AppearanceWishes wishes =
        m_manager == XCB_NONE
            ? AppearanceWishes{}
            : wishesIn(m_connection.property8(m_manager, m_connection.atoms().settings));
    if (wishes != m_wishes.newest()) m_wishes.set(wishes);
}

void XSettings::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
    const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (change.window == m_manager && m_manager != XCB_NONE &&
        change.atom == m_connection.atoms().settings)
        read();
}

AppearanceWishes XSettings::wishesIn(const QByteArray& document) {
    constexpr qsizetype colorBytes = 8;
    DocumentReader reader(document);
    reader.setBigEndian(reader.bytes(1) == QByteArrayLiteral("\x01"));
    reader.bytes(3);
    reader.number<quint32>();  // the serial number of the document
    quint32 count = reader.number<quint32>();
    AppearanceWishes wishes;
    while (count-- > 0 && reader.isIntact()) {
        const auto type = static_cast<SettingType>(reader.number<quint8>());
        reader.bytes(1);
        const QByteArray name = reader.paddedBytes(reader.number<quint16>());
        reader.number<quint32>();  // the serial number of its last change
        if (type == SettingType::integer) {
            const auto value = reader.number<qint32>();
            if (reader.isIntact() && name == "Gtk/EnableAnimations")
                wishes.isMotionReduced = value == 0;
        } else if (type == SettingType::text) {
            const QByteArray value = reader.paddedBytes(reader.number<quint32>());
            if (name == "Net/ThemeName")
                wishes.isContrastIncreased = isContrastTheme(QString::fromUtf8(value));
        } else {
            reader.bytes(colorBytes);
        }
    }
    return wishes;
}
