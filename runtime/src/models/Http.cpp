#include "models/Http.h"

#include <curl/curl.h>

#include <exception>
#include <new>

namespace engine {

namespace {

constexpr qsizetype largestBody = 16 << 20;
constexpr long mostRedirects = 5;

using Headers = std::unique_ptr<curl_slist, decltype(&::curl_slist_free_all)>;

// What the callbacks of one request share. No exception may cross libcurl, so it waits here.
struct Transfer
{
    HttpReply reply;
    const Http::Sink &sink;
    std::exception_ptr thrown;
};

size_t takeHeader(char *bytes, size_t, size_t size, void *user)
{
    auto &transfer = *static_cast<Transfer *>(user);
    const QByteArrayView line = QByteArrayView(bytes, qsizetype(size)).trimmed();
    if (line.startsWith("HTTP/")) {
        transfer.reply.headers.clear(); // of a redirect, or of "100 Continue"
        const QByteArray afterVersion = line.sliced(line.indexOf(' ') + 1).toByteArray();
        transfer.reply.status = afterVersion.left(3).toInt();
    } else if (const qsizetype colon = line.indexOf(':'); colon > 0) {
        transfer.reply.headers.insert(line.first(colon).toByteArray().toLower(),
                                      line.sliced(colon + 1).trimmed().toByteArray());
    }
    return size;
}

size_t takeBody(char *bytes, size_t, size_t size, void *user)
{
    auto &transfer = *static_cast<Transfer *>(user);
    const QByteArrayView piece(bytes, qsizetype(size));
    if (!transfer.sink) {
        if (transfer.reply.body.size() + piece.size() > largestBody)
            return CURL_WRITEFUNC_ERROR;
        transfer.reply.body.append(piece);
        return size;
    }
    try {
        transfer.sink(transfer.reply, piece);
        return size;
    } catch (...) {
        transfer.thrown = std::current_exception();
        return CURL_WRITEFUNC_ERROR;
    }
}

HttpReply::End endOf(CURLcode code)
{
    switch (code) {
    case CURLE_OK:
        return HttpReply::End::Whole;
    case CURLE_OPERATION_TIMEDOUT:
        return HttpReply::End::TooSlow;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_URL_MALFORMAT:
        return HttpReply::End::Unreachable;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
        return HttpReply::End::Unsafe;
    case CURLE_TOO_MANY_REDIRECTS:
    case CURLE_UNSUPPORTED_PROTOCOL:
        return HttpReply::End::Misled;
    default:
        return HttpReply::End::BrokenOff;
    }
}

Headers headerList(const HttpRequest &request)
{
    curl_slist *list = nullptr;
    const auto add = [&list](const char *line) {
        if (curl_slist *longer = ::curl_slist_append(list, line))
            list = longer;
    };
    for (const QByteArray &line : request.headers)
        add(line.constData());
    if (!request.body.isEmpty())
        add("Content-Type: application/json");
    return {list, &::curl_slist_free_all};
}

void setWay(CURL *handle, const HttpRequest &request)
{
    const char *protocols = request.url.startsWith("https:") ? "https" : "http,https";
    ::curl_easy_setopt(handle, CURLOPT_URL, request.url.constData());
    ::curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, protocols);
    ::curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
    ::curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, request.onLoopback ? 0L : 1L);
    ::curl_easy_setopt(handle, CURLOPT_MAXREDIRS, mostRedirects);
    if (request.onLoopback)
        ::curl_easy_setopt(handle, CURLOPT_NOPROXY, "*");
    if (!request.body.isEmpty()) {
        ::curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE, long(request.body.size()));
        ::curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request.body.constData());
    }
}

void setLimits(CURL *handle, const HttpRequest &request)
{
    ::curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    ::curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, long(request.connectLimitMs));
    ::curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, long(request.limitMs));
    ::curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    ::curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, long(request.stallSeconds));
}

} // namespace

Http::Http()
    : m_handle(::curl_easy_init())
{
    if (!m_handle)
        throw std::bad_alloc();
}

Http::~Http() = default;

void Http::Release::operator()(void *handle) const
{
    ::curl_easy_cleanup(handle);
}

HttpReply Http::send(const HttpRequest &request, const Sink &sink)
{
    CURL *handle = m_handle.get();
    ::curl_easy_reset(handle);
    Transfer transfer{{}, sink, {}};
    const Headers headers = headerList(request);
    setWay(handle, request);
    setLimits(handle, request);
    ::curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get());
    ::curl_easy_setopt(handle, CURLOPT_USERAGENT, "tuppi-engine");
    ::curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &takeHeader);
    ::curl_easy_setopt(handle, CURLOPT_HEADERDATA, &transfer);
    ::curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &takeBody);
    ::curl_easy_setopt(handle, CURLOPT_WRITEDATA, &transfer);
    transfer.reply.end = endOf(::curl_easy_perform(handle));
    if (transfer.thrown)
        std::rethrow_exception(transfer.thrown);
    return std::move(transfer.reply);
}

} // namespace engine
