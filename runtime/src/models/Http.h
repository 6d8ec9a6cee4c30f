#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <functional>
#include <memory>

namespace engine {

struct HttpRequest
{
    QByteArray url;
    QList<QByteArray> headers; // "Name: value"
    QByteArray body;           // sent by POST, as JSON, where there is one
    int connectLimitMs = 15000;
    int limitMs = 0;         // for all of it; 0: none
    int stallSeconds = 60;   // nothing came for that long; 0: no limit
    bool onLoopback = false; // past every proxy, and redirects are not followed
};

struct HttpReply
{
    enum class End { Whole, Unreachable, TooSlow, BrokenOff, Unsafe, Misled };

    End end = End::Unreachable;            // Misled: redirected in circles, or to where we do not go
    int status = 0;                        // of the last answer in a row of redirects; 0: none came
    QHash<QByteArray, QByteArray> headers; // likewise; names in lower case
    QByteArray body;                       // where nobody took it piece by piece

    bool whole(int wanted) const { return end == End::Whole && status == wanted; }
    QByteArray header(const char *name) const { return headers.value(name); }
};

// One request after another, over kept connections, by libcurl. https goes nowhere but to https.
class Http
{
public:
    // Takes the body piece by piece, with status and headers already known. It may throw, which ends the
    // request and comes out of send().
    using Sink = std::function<void(const HttpReply &head, QByteArrayView piece)>;

    Http();
    ~Http();
    Http(const Http &) = delete;
    Http &operator=(const Http &) = delete;

    // Throws only what the sink throws. A body that nobody takes is cut off at 16 MB, as broken off.
    HttpReply send(const HttpRequest &request, const Sink &sink = {});

private:
    struct Release
    {
        void operator()(void *handle) const;
    };

    std::unique_ptr<void, Release> m_handle;
};

} // namespace engine
