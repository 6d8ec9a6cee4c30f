#include "models/Hub.h"

#include <QRegularExpression>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int stallSecondsOfHub = 60;

QString hub()
{
    static const QRegularExpression allowed(
        u"^(https://[^/\\s]+|http://(127\\.0\\.0\\.1|\\[::1\\]|localhost)(:\\d+)?)(/\\S*)?$"_s);
    const QString given = qEnvironmentVariable("TUPPI_HUB", u"https://huggingface.co"_s);
    if (!allowed.match(given).hasMatch())
        throw Failure(u"TUPPI_HUB must be an https address, not “"_s + given + u"”."_s);
    return given.endsWith(u'/') ? given.chopped(1) : given;
}

} // namespace

int stallSeconds(int otherwise)
{
    bool given = false;
    const int seconds = qEnvironmentVariableIntValue("TUPPI_STALL_SECONDS", &given);
    return given && seconds > 0 ? seconds : otherwise;
}

Repository askForRepository(Http &http, const QString &repo)
{
    HttpRequest request;
    request.url = (hub() + u"/api/models/"_s + repo + u"?blobs=true"_s).toUtf8();
    request.stallSeconds = stallSeconds(stallSecondsOfHub);
    const HttpReply reply = http.send(request);
    if (!reply.whole(200))
        throw hubFailure(reply, repo);
    return readRepository(reply.body);
}

QByteArray addressOf(const QString &repo, const QString &commit, const QString &path)
{
    return (hub() + u'/' + repo + u"/resolve/"_s).toUtf8() + QUrl::toPercentEncoding(commit) + '/' +
           QUrl::toPercentEncoding(path, "/");
}

Failure hubFailure(const HttpReply &reply, const QString &repo)
{
    switch (reply.end) {
    case HttpReply::End::Unreachable:
        return Failure(u"Hugging Face could not be reached. Check the internet connection and try again."_s);
    case HttpReply::End::TooSlow:
        return Failure(u"Hugging Face does not answer. Try again later; what was loaded is kept."_s);
    case HttpReply::End::Unsafe:
        return Failure(
            u"There is no safe connection to Hugging Face: its certificate could not be checked."_s);
    case HttpReply::End::Misled:
        return Failure(
            u"Hugging Face sent the download to an address that cannot be used. Try again later."_s);
    case HttpReply::End::Whole:
    case HttpReply::End::BrokenOff:
        break;
    }
    if (reply.status == 403 || reply.header("x-error-code") == "GatedRepo")
        return Failure(u"The owners of “"_s + repo +
                       u"” let only people load it who have signed in. Choose an open model."_s);
    // For who has not signed in, what does not exist and what is private look alike.
    if (reply.status == 401 || reply.status == 404)
        return Failure(u"Hugging Face has no open model “"_s + repo + u"”. Check the name."_s);
    if (reply.status == 429)
        return Failure(u"Hugging Face was asked too often. Try again in some minutes."_s);
    if (reply.status >= 300)
        return Failure(
            u"Hugging Face cannot send “%1” now (error %2). Try again later."_s.arg(repo).arg(reply.status));
    return Failure(u"The connection to Hugging Face broke off. Try again; what was loaded is kept."_s);
}

} // namespace engine
