#include "support/desktop/LeakMeter.h"

#include "support/desktop/XClient.h"

#include <algorithm>
#include <vector>

namespace {

// Of 255: what painting with 8 bits a channel, twice, may round.
constexpr int roundingError = 6;

QRgb pixelOf(const XClient& client, xcb_get_image_cookie_t cookie) {
    const auto reply = client.reply(xcb_get_image_reply, cookie);
    // A server that is about to end answers no more.
    if (!reply) return 0;
    return *reinterpret_cast<const QRgb*>(xcb_get_image_data(reply.get())) & 0xFFFFFFU;
}

}  // namespace

LeakMeter::LeakMeter(const QString& displayName, const QList<QPoint>& points)
    : m_thread([this, displayName, points](const std::stop_token& stop) {
          const XClient client(displayName);
          while (!stop.stop_requested() && client.isConnected())
              read(client, points);
      }) {}

LeakMeter::Tally LeakMeter::tally() const {
    const std::scoped_lock lock(m_mutex);
    return m_tally;
}

void LeakMeter::reset() {
    const std::scoped_lock lock(m_mutex);
    m_tally = {};
}

LeakMeter::Duration LeakMeter::timeSince(const Clock::time_point& begin) const {
    const std::scoped_lock lock(m_mutex);
    return begin == Clock::time_point() ? Duration(0) : Clock::now() - begin;
}

bool LeakMeter::seesSecretEverywhere() const {
    const std::scoped_lock lock(m_mutex);
    return m_seesSecretEverywhere;
}

void LeakMeter::read(const XClient& client, const QList<QPoint>& points) {
    std::vector<xcb_get_image_cookie_t> cookies;
    for (const QPoint& point : points)
        cookies.push_back(xcb_get_image(client.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                        client.root(), static_cast<std::int16_t>(point.x()),
                                        static_cast<std::int16_t>(point.y()), 1, 1, ~0U));
    std::vector<QRgb> colors;
    for (const xcb_get_image_cookie_t& cookie : cookies)
        colors.push_back(pixelOf(client, cookie));
    const auto secret = [](QRgb color) { return std::max(qRed(color), qBlue(color)); };
    const auto byStrength = [](const auto& strength) {
        return [strength](QRgb a, QRgb b) { return strength(a) < strength(b); };
    };
    const QRgb leaking = *std::max_element(colors.begin(), colors.end(), byStrength(secret));
    const QRgb covering = *std::max_element(colors.begin(), colors.end(),
                                            byStrength([](QRgb color) { return qGreen(color); }));

    const std::scoped_lock lock(m_mutex);
    const auto now = Clock::now();
    ++m_tally.readings;
    note(m_tally.leaks, m_leaksSince, now, secret(leaking), leaking);
    note(m_tally.covers, m_coversSince, now, qGreen(covering), covering);
    const bool isClean =
        m_leaksSince == Clock::time_point() && m_coversSince == Clock::time_point();
    if (!isClean)
        m_cleanSince = {};
    else if (m_cleanSince == Clock::time_point())
        m_cleanSince = now;
    m_seesSecretEverywhere = std::all_of(colors.begin(), colors.end(), [](QRgb color) {
        return color == (secretColor & 0xFFFFFFU);
    });
}

void LeakMeter::note(Moments& moments, Clock::time_point& since, Clock::time_point now,
                     int strength, QRgb color) {
    const bool wasShown = since != Clock::time_point();
    if (wasShown) moments.longest = std::max<Duration>(moments.longest, now - since);
    if (strength <= roundingError) {
        since = {};
        return;
    }
    ++moments.readings;
    if (strength > moments.strength) {
        moments.strength = strength;
        moments.strongest = color;
    }
    if (wasShown) return;
    since = now;
    ++moments.stretches;
}
