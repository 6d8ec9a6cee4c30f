// A page that wants out: other files, the network, other windows, the disk.

#include "viewer/ViewerTest.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;
using test::writeFile;

namespace {

/// A picture of one pixel.
const QByteArray picture = QByteArray::fromBase64("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7");

QStringList *refusals = nullptr;
QtMessageHandler earlier = nullptr;

void keepRefusals(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (QByteArray(context.category) != "tuppi.viewer")
        earlier(type, context, text);
    else if (refusals && text.startsWith(u"refused"_s))
        refusals->append(text);
}

class HostilePage : public test::ViewerTest
{
protected:
    void SetUp() override
    {
        ViewerTest::SetUp();
        refusals = &m_refused;
        earlier = qInstallMessageHandler(keepRefusals);
        QLoggingCategory::setFilterRules(u"tuppi.viewer.debug=true"_s);
        ASSERT_TRUE(m_server.listen(QHostAddress::LocalHost));
        ASSERT_TRUE(m_stun.bind(QHostAddress::LocalHost));
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { ++m_connections; });
    }
    void TearDown() override
    {
        EXPECT_EQ(m_connections, 0) << "the page reached the network";
        EXPECT_FALSE(m_stun.hasPendingDatagrams()) << "the page reached the network";
        QLoggingCategory::setFilterRules({});
        qInstallMessageHandler(earlier);
        refusals = nullptr;
        ViewerTest::TearDown();
    }
    /// Opens a page in whose text HOST is the watched server and STUN the watched port.
    ViewerWindow *openHostile(QByteArray html)
    {
        html.replace("HOST", "127.0.0.1:" + QByteArray::number(m_server.serverPort()));
        html.replace("STUN", "127.0.0.1:" + QByteArray::number(m_stun.localPort()));
        return open(makeCall(u"a"_s, "<script>var out = []; addEventListener('error', e => "
                                     "e.target.id && out.push(e.target.id + ' failed'), true);</script>" + html));
    }
    bool refused(const QString &what) const
    {
        return waitFor([&] { return !m_refused.filter(what).isEmpty(); });
    }

    QTcpServer m_server;
    QUdpSocket m_stun;
    int m_connections = 0;
    QStringList m_refused;
};

TEST_F(HostilePage, TheServerWouldNoticeIt)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_server.serverPort());
    EXPECT_TRUE(waitFor([this] { return m_connections == 1; }));
    m_connections = 0;
}

TEST_F(HostilePage, OnlyFilesInItsFolderAreRead)
{
    makeCall(u"a"_s);
    writeFile(callDir(u"a"_s) + u"/inside.gif"_s, picture);
    writeFile(m_calls.filePath(u"outside.gif"_s), picture);
    QFile::link(m_calls.filePath(u"outside.gif"_s), callDir(u"a"_s) + u"/link.gif"_s);
    QFile::link(m_calls.path(), callDir(u"a"_s) + u"/folder"_s);
    const QByteArray absolute = QUrl::fromLocalFile(m_calls.filePath(u"outside.gif"_s)).toEncoded();
    ViewerWindow *opened = openHostile(R"(<script>
      function tried(id, src) {
        const image = new Image();
        image.onload = () => out.push(id + ' loaded');
        image.onerror = () => out.push(id + ' failed');
        image.src = src;
      }
      tried('inside', 'inside.gif');
      tried('dots', '../outside.gif');
      tried('escaped', '%2e%2e/outside.gif');
      tried('link', 'link.gif');
      tried('folder', 'folder/outside.gif');
      tried('absolute', ')" + absolute + R"(');
      tried('host', ')" + QByteArray(absolute).replace("file:///", "file://otherhost/") + R"(');
      fetch('../outside.gif').then(() => out.push('fetch loaded'), () => out.push('fetch failed'));
    </script>)");
    EXPECT_TRUE(becomes(opened, u"out.length"_s, "8"));
    EXPECT_EQ(ask(opened, u"out.sort()"_s),
              R"(["absolute failed","dots failed","escaped failed","fetch failed","folder failed","host failed","inside loaded","link failed"])");
    EXPECT_TRUE(refused(u"link.gif"_s));
}

TEST_F(HostilePage, NothingIsFetched)
{
    ViewerWindow *opened = openHostile(R"(
      <img id="picture" src="http://HOST/picture"><img id="secure" src="https://HOST/secure">
      <script id="script" src="http://HOST/script"></script>
      <link id="style" rel="stylesheet" href="http://HOST/style">
      <video id="video" src="http://HOST/video"></video>
      <link rel="preconnect" href="http://HOST"><link rel="dns-prefetch" href="http://dns-prefetch.example.org">
      <link rel="prefetch" href="http://HOST/prefetch"><link rel="prerender" href="http://HOST/prerender">
      <link rel="icon" href="http://HOST/icon"><link rel="modulepreload" href="http://HOST/module">
      <object data="http://HOST/object"></object><embed src="http://HOST/embed">
      <iframe src="http://HOST/frame"></iframe>
      <script>
      const said = what => value => out.push(what + ' ' + value);
      fetch('http://HOST/fetch').then(said('fetch came'), () => out.push('fetch failed'));
      fetch('http://HOST/opaque', {mode: 'no-cors', method: 'POST', body: 'x'}).then(said('opaque came'), () => out.push('opaque failed'));
      const request = new XMLHttpRequest();
      request.onerror = () => out.push('request failed');
      request.open('GET', 'http://HOST/request');
      request.send();
      const socket = new WebSocket('ws://HOST/socket');
      socket.onerror = () => out.push('socket failed');
      const events = new EventSource('http://HOST/events');
      events.onerror = () => { out.push('events failed'); events.close(); };
      navigator.sendBeacon('http://HOST/beacon', 'x');
      const work = "fetch('http://HOST/worker').then(() => postMessage('worker came'), () => postMessage('worker failed'));";
      const worker = new Worker(URL.createObjectURL(new Blob([work])));
      worker.onmessage = message => out.push(message.data);
      worker.onerror = () => out.push('worker failed');
      </script>)");
    EXPECT_TRUE(becomes(opened,
                        u"['picture', 'secure', 'script', 'style', 'video', 'fetch', 'opaque', 'request', 'socket', "
                        "'events', 'worker'].filter(what => !out.includes(what + ' failed'))"_s,
                        "[]"));
}

TEST_F(HostilePage, NoCallIsMadeToAnotherBrowser)
{
    ViewerWindow *opened = openHostile(R"(<iframe srcdoc="<p>"></iframe><script>
      function call(Connection, id) {
        if (!Connection)
          return out.push(id);
        const connection = new Connection({iceServers: [{urls: 'stun:STUN'}]});
        connection.createDataChannel('x');
        connection.onicegatheringstatechange = () =>
          connection.iceGatheringState === 'complete' && out.push(id);
        connection.createOffer().then(offer => connection.setLocalDescription(offer));
      }
      call(window.RTCPeerConnection, 'page');
      call(document.querySelector('iframe').contentWindow.RTCPeerConnection, 'frame');
      out.push(typeof WebTransport);
    </script>)");
    EXPECT_TRUE(becomes(opened, u"out.sort()"_s, R"(["frame","page","undefined"])"));
}

TEST_F(HostilePage, ItGoesNowhereAndOpensNothing)
{
    const QByteArray elsewhere = "document.body.append('moved')";
    ViewerWindow *opened = openHostile(R"(
      <form id="form" method="post" action="http://HOST/form"><input name="a" value="b"></form>
      <a id="web" href="http://HOST/link" ping="http://HOST/ping">x</a>
      <a id="tab" href="http://HOST/tab" target="_blank">x</a>
      <a id="file" href="audio.html">x</a>
      <a id="download" download="grabbed.txt" href="data:text/plain,x">x</a>)");
    writeFile(callDir(u"a"_s) + u"/audio.html"_s, elsewhere);
    page(opened)->run(u"document.getElementById('form').submit()"_s);
    EXPECT_TRUE(refused(u"/form"_s));
    for (const QString &id : {u"web"_s, u"tab"_s, u"file"_s, u"download"_s})
        page(opened)->run(u"document.getElementById('%1').click()"_s.arg(id));
    EXPECT_TRUE(refused(u"/link"_s));
    EXPECT_TRUE(refused(u"audio.html"_s));
    page(opened)->run(u"location.href = 'http://%1/location'"_s.arg(u"127.0.0.1:%1"_s.arg(m_server.serverPort())));
    EXPECT_TRUE(refused(u"/location"_s));
    EXPECT_EQ(ask(opened, u"window.open('about:blank') === null"_s), "true");
    EXPECT_EQ(ask(opened, u"[alert('x'), confirm('x'), prompt('x')]"_s), "[null,false,null]");
    EXPECT_EQ(ask(opened, u"location.pathname.split('/').pop()"_s), "\"viewer.html\"");
    EXPECT_EQ(m_app->viewer().resultWindows.size(), 1);
    EXPECT_FALSE(QDir(m_engine.home()).exists(u"Downloads"_s));
    EXPECT_TRUE(QDir(m_calls.path()).entryList({u"grabbed*"_s}, QDir::AllEntries).isEmpty());
}

TEST_F(HostilePage, ItGetsNoLeaveForAnything)
{
    ViewerWindow *opened = openHostile(R"(<script>
      const asked = (what, promise) => promise.then(() => out.push(what + ' granted'), () => out.push(what + ' refused'));
      if (navigator.mediaDevices)
        asked('microphone', navigator.mediaDevices.getUserMedia({audio: true}));
      else
        out.push('microphone refused');
      asked('place', new Promise((yes, no) => navigator.geolocation.getCurrentPosition(yes, no)));
      asked('screen', document.documentElement.requestFullscreen());
      asked('notes', Notification.requestPermission().then(said => said === 'granted' || Promise.reject()));
    </script>)");
    EXPECT_TRUE(becomes(opened, u"out.sort()"_s,
                        R"(["microphone refused","notes refused","place refused","screen refused"])"));
}

} // namespace
