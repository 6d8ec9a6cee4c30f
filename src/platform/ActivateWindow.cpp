#include "platform/ActivateWindow.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QString>
#include <QWindow>
#include <QtGui/qguiapplication_platform.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include <xcb/xcb.h>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// The few X11 messages that Qt has no public function for.
class Desktop
{
public:
    explicit Desktop(xcb_connection_t *connection)
        : m_connection(connection)
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    {
    }

    /// Lets the window manager tie the window to the launch that the token belongs to.
    void setStartupId(xcb_window_t window, const QByteArray &id)
    {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_STARTUP_ID"),
                            atom("UTF8_STRING"), 8, uint32_t(id.size()), id.constData());
    }

    /// Ends the busy pointer of the launch: nothing else does when the launched process has no window.
    void endStartup(const QByteArray &id)
    {
        QByteArray escaped = id;
        escaped.replace('\\', "\\\\").replace('"', "\\\"");
        QByteArray text = "remove: ID=\"" + escaped + '"';
        text.append('\0');
        const xcb_window_t sender = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, sender, m_root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        for (qsizetype at = 0; at < text.size(); at += 20) {
            xcb_client_message_event_t event =
                message(sender, at == 0 ? "_NET_STARTUP_INFO_BEGIN" : "_NET_STARTUP_INFO", 8);
            std::memcpy(event.data.data8, text.constData() + at,
                        size_t(qMin<qsizetype>(20, text.size() - at)));
            send(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
        }
        xcb_destroy_window(m_connection, sender);
    }

    /// Asks for the keyboard in the name of the click that `time` (of the X server) belongs to.
    void activate(xcb_window_t window, uint32_t time)
    {
        xcb_client_message_event_t event = message(window, "_NET_ACTIVE_WINDOW", 32);
        event.data.data32[0] = 1; // an application asks, not a pager
        event.data.data32[1] = time;
        send(event, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    }

    void flush() { xcb_flush(m_connection); }

private:
    xcb_atom_t atom(const char *name)
    {
        const auto cookie = xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(name)), name);
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(m_connection, cookie, nullptr), &std::free);
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    xcb_client_message_event_t message(xcb_window_t window, const char *type, uint8_t format)
    {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = format;
        event.window = window;
        event.type = atom(type);
        return event;
    }

    void send(const xcb_client_message_event_t &event, uint32_t mask)
    {
        xcb_send_event(m_connection, 0, m_root, mask, reinterpret_cast<const char *>(&event));
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
};

/// The time of the click that an X11 startup id carries at its end ("…_TIME123").
std::optional<uint32_t> launchTime(const QString &token)
{
    const qsizetype mark = token.lastIndexOf(u"_TIME"_s);
    if (mark < 0)
        return std::nullopt;
    bool isNumber = false;
    const uint32_t time = QStringView(token).sliced(mark + 5).toUInt(&isNumber);
    return isNumber && time != 0 ? std::optional(time) : std::nullopt;
}

void activateOnX11(xcb_connection_t *connection, QWindow *window, const QString &token)
{
    Desktop desktop(connection);
    const auto id = xcb_window_t(window->winId());
    const QByteArray launch = token.toUtf8();
    desktop.setStartupId(id, launch);
    // Qt would send the time of its own last event, older than the click in the file manager.
    if (const std::optional<uint32_t> time = launchTime(token))
        desktop.activate(id, *time);
    else
        window->requestActivate();
    desktop.endStartup(launch);
    desktop.flush();
}

void activateOnWayland(QWindow *window, const QString &token)
{
    // Qt 6.4 takes the token from here, and from nowhere else.
    constexpr auto variable = "XDG_ACTIVATION_TOKEN";
    qputenv(variable, token.toUtf8());
    window->requestActivate();
    qunsetenv(variable);
}

} // namespace

void ActivateWindow(QWindow *window, const QString &token)
{
    if (window->windowStates() & Qt::WindowMinimized)
        window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    window->raise();
    auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 && !token.isEmpty())
        activateOnX11(x11->connection(), window, token);
    else if (!token.isEmpty() && QGuiApplication::platformName().startsWith(u"wayland"_s))
        activateOnWayland(window, token);
    else
        window->requestActivate();
}

} // namespace tuppi
