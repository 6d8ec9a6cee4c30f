#include "platform/ActivateWindow.h"

#include "support/Eventually.h"

#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <cstdlib>
#include <cstring>
#include <memory>

#include <xcb/xcb.h>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

template <typename T> using Owned = std::unique_ptr<T, decltype(&std::free)>;

template <typename T> Owned<T> own(T *reply)
{
    return Owned<T>(reply, &std::free);
}

/// A window manager that writes down what it is asked for, and does it.
class WindowManager
{
public:
    WindowManager()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (!isRunning())
            return;
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                                XCB_EVENT_MASK_PROPERTY_CHANGE;
        const auto cookie =
            xcb_change_window_attributes_checked(m_connection, m_root, XCB_CW_EVENT_MASK, &events);
        m_isManager = !own(xcb_request_check(m_connection, cookie));
        // What makes Qt ask us instead of taking the keyboard itself.
        const xcb_window_t check = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, check, m_root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        for (const xcb_window_t window : {m_root, check})
            setProperty(window, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, check);
        setProperty(m_root, "_NET_SUPPORTED", XCB_ATOM_ATOM, atom("_NET_ACTIVE_WINDOW"));
        xcb_flush(m_connection);
    }
    ~WindowManager() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY(WindowManager)

    bool isRunning() const { return xcb_connection_has_error(m_connection) == 0; }
    bool isManager() const { return m_isManager; }

    struct Activation
    {
        xcb_window_t window;
        uint32_t source;
        uint32_t time;
    };
    QList<Activation> activations;
    QByteArray startupMessages; ///< the texts, each with its final null

    /// Reads and serves what has arrived.
    void work()
    {
        while (const auto event = own(xcb_poll_for_event(m_connection))) {
            const uint8_t type = event->response_type & 0x7f;
            if (type == XCB_MAP_REQUEST)
                xcb_map_window(m_connection,
                               reinterpret_cast<xcb_map_request_event_t *>(event.get())->window);
            else if (type == XCB_CLIENT_MESSAGE)
                note(*reinterpret_cast<xcb_client_message_event_t *>(event.get()));
        }
        xcb_flush(m_connection);
    }

    QByteArray startupId(WId window)
    {
        const auto cookie = xcb_get_property(m_connection, 0, xcb_window_t(window), atom("_NET_STARTUP_ID"),
                                             XCB_ATOM_ANY, 0, 100);
        const auto reply = own(xcb_get_property_reply(m_connection, cookie, nullptr));
        return reply ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                                  xcb_get_property_value_length(reply.get()))
                     : QByteArray();
    }

private:
    xcb_atom_t atom(const char *name)
    {
        const auto cookie = xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(name)), name);
        const auto reply = own(xcb_intern_atom_reply(m_connection, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    void setProperty(xcb_window_t window, const char *name, xcb_atom_t type, uint32_t value)
    {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, 1, &value);
    }

    void note(const xcb_client_message_event_t &message)
    {
        if (message.type == atom("_NET_ACTIVE_WINDOW"))
            activations.append({message.window, message.data.data32[0], message.data.data32[1]});
        else if (message.type == atom("_NET_STARTUP_INFO_BEGIN") || message.type == atom("_NET_STARTUP_INFO"))
            startupMessages.append(reinterpret_cast<const char *>(message.data.data8), 20);
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root = 0;
    bool m_isManager = false;
};

} // namespace

class ActivateWindowTest : public QObject
{
    Q_OBJECT

    WindowManager &m_manager;
    std::unique_ptr<QWindow> m_window;

public:
    explicit ActivateWindowTest(WindowManager &manager)
        : m_manager(manager)
    {
    }

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<QWindow>();
        m_window->resize(200, 100);
        m_window->show();
        EVENTUALLY_VERIFY((m_manager.work(), m_window->isExposed()));
        m_manager.activations.clear();
        m_manager.startupMessages.clear();
    }
    void cleanup() { m_window.reset(); }

    void withoutAToken()
    {
        ActivateWindow(m_window.get(), QString());
        EVENTUALLY_COMPARE((m_manager.work(), m_manager.activations.size()), 1);
        QCOMPARE(m_manager.activations.constFirst().window, xcb_window_t(m_window->winId()));
        QCOMPARE(m_manager.startupId(m_window->winId()), QByteArray());
        QCOMPARE(m_manager.startupMessages, QByteArray());
    }

    void inTheNameOfTheClick()
    {
        const QString token = u"files/tuppi \"1\"/4711-0-host_TIME3000000123"_s;
        ActivateWindow(m_window.get(), token);
        EVENTUALLY_VERIFY((m_manager.work(), m_manager.startupMessages.endsWith('\0')));
        QCOMPARE(m_manager.activations.size(), 1);
        QCOMPARE(m_manager.activations.constFirst().window, xcb_window_t(m_window->winId()));
        QCOMPARE(m_manager.activations.constFirst().source, 1u);
        QCOMPARE(m_manager.activations.constFirst().time, 3000000123u);
        QCOMPARE(m_manager.startupId(m_window->winId()), token.toUtf8());
        // The busy pointer ends, which the launched process, without a window, cannot bring about.
        QCOMPARE(QByteArray(m_manager.startupMessages.constData()),
                 QByteArray("remove: ID=\"files/tuppi \\\"1\\\"/4711-0-host_TIME3000000123\""));
    }

    void aTokenWithoutATime_data()
    {
        QTest::addColumn<QString>("token");
        QTest::newRow("none") << u"0f9c1e7a"_s;
        QTest::newRow("no number") << u"x_TIMEsoon"_s;
        QTest::newRow("nothing") << u"x_TIME"_s;
        QTest::newRow("zero") << u"x_TIME0"_s;
        QTest::newRow("too large") << u"x_TIME99999999999"_s;
    }

    void aTokenWithoutATime()
    {
        QFETCH(const QString, token);
        ActivateWindow(m_window.get(), token);
        EVENTUALLY_VERIFY((m_manager.work(), m_manager.startupMessages.endsWith('\0')));
        QCOMPARE(m_manager.activations.size(), 1); // Qt's own
        QCOMPARE(m_manager.startupId(m_window->winId()), token.toUtf8());
    }

    void minimised()
    {
        m_window->setWindowStates(Qt::WindowMaximized | Qt::WindowMinimized);
        ActivateWindow(m_window.get(), QString());
        QVERIFY(!(m_window->windowStates() & Qt::WindowMinimized));
        QVERIFY(m_window->windowStates() & Qt::WindowMaximized);
    }
};

int main(int argc, char *argv[])
{
    WindowManager manager; // before Qt looks for one
    QGuiApplication application(argc, argv);
    if (!manager.isRunning() || !manager.isManager())
        qFatal("needs a display without a window manager: run it through scripts/with-desktop");
    ActivateWindowTest test(manager);
    return QTest::qExec(&test, argc, argv);
}

#include "ActivateWindowTest.moc"
