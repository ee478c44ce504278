#include "platform/qt/QtHttpClient.h"

#include <QCoroNetworkReply>
#include <QNetworkReply>
#include <QTimer>

#include <memory>

namespace tallyglass {

namespace {

constexpr int mostRedirects = 5;

QNetworkRequest networkRequest(const HttpRequest &request)
{
    QNetworkRequest result(request.url);
    for (auto header = request.headers.begin(); header != request.headers.end(); ++header)
        result.setRawHeader(header.key(), header.value());
    // Keeps Qt from inflating: a compressed kilobyte could become a gigabyte.
    result.setRawHeader("Accept-Encoding", "identity");

    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                        request.followsRedirects ? QNetworkRequest::NoLessSafeRedirectPolicy
                                                 : QNetworkRequest::ManualRedirectPolicy);
    result.setMaximumRedirectsAllowed(mostRedirects);
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    // What is tested against a server is what users run.
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return result;
}

/// Qt reports most statuses above 399 as errors, in place of a body that broke off. The other
/// errors mean that no whole answer came.
bool isWhole(const QNetworkReply &reply, const QByteArray &body)
{
    const QNetworkReply::NetworkError error = reply.error();
    if (error == QNetworkReply::NoError)
        return true;
    const bool isStatus = error == QNetworkReply::ProxyAuthenticationRequiredError // 407
        || (error >= QNetworkReply::ContentAccessDenied
            && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError
            && error <= QNetworkReply::UnknownServerError);
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    return isStatus && (!length.isValid() || length.toLongLong() == body.size());
}

} // namespace

QtHttpClient::~QtHttpClient()
{
    const auto replies = m_manager.findChildren<QNetworkReply *>();
    for (QNetworkReply *reply : replies)
        reply->abort();
}

QCoro::Task<HttpReply> QtHttpClient::get(HttpRequest request)
{
    HttpReply result;
    // Qt would open files as well.
    if (request.url.scheme() != QStringLiteral("http")
        && request.url.scheme() != QStringLiteral("https"))
        co_return result;

    // The coroutine goes on inside a signal of the reply, which therefore must live longer.
    const std::unique_ptr<QNetworkReply, QScopedPointerDeleteLater> reply(
        m_manager.get(networkRequest(request)));
    // A timer of our own: Qt's measures inactivity, so a body that trickles would evade it.
    QTimer deadline;
    deadline.setSingleShot(true);
    bool isTooLarge = false;
    QObject::connect(&deadline, &QTimer::timeout, reply.get(), &QNetworkReply::abort);
    const auto readBody = [&] {
        result.body += reply->read(largestHttpBody + 1 - result.body.size());
        isTooLarge = result.body.size() > largestHttpBody;
        if (isTooLarge)
            reply->abort(); // ends the wait below at once: nothing may follow here
    };
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &deadline, readBody);
    deadline.start(request.timeout);
    co_await reply.get();

    if (isTooLarge)
        result.body.clear();
    else if (!isWhole(*reply, result.body))
        co_return HttpReply{};
    bool isHttp = false;
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(&isHttp);
    if (isHttp)
        result.status = status;
    co_return result;
}

} // namespace tallyglass
