#include "platform/qt/QtHttpClient.h"

#include <QNetworkReply>
#include <QTimer>

#include <memory>

namespace tallyglass {

namespace {

constexpr int mostRedirects = 5;
constexpr qint64 largestHead = qint64{64} * 1024; // bytes; real ones have a few hundred

/// The empty body of a request. On some broken answers Qt sends a request again, up to three times;
/// one with a body that cannot be read again it sends once. (Qt 6.11 heeds that no longer.)
class OnceOnly final : public QIODevice
{
public:
    explicit OnceOnly(QObject *parent)
        : QIODevice(parent)
    {
        open(ReadOnly);
    }
    bool isSequential() const override { return true; }
    bool reset() override { return false; }

protected:
    qint64 readData(char * /*data*/, qint64 /*size*/) override { return -1; }
    qint64 writeData(const char * /*data*/, qint64 /*size*/) override { return -1; }
};

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
    // Else Qt would keep a copy of the body, which it could send again.
    result.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    result.setHeader(QNetworkRequest::ContentLengthHeader, 0);
    // What is tested against a server is what users run.
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return result;
}

/// The status of the answer; nothing while only interim ones (1xx) have come.
std::optional<int> statusOf(const QNetworkReply &reply)
{
    constexpr int firstFinalStatus = 200;
    bool isHttp = false;
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(&isHttp);
    return isHttp && status >= firstFinalStatus ? std::optional{status} : std::nullopt;
}

bool hasSensibleHead(const QNetworkReply &reply)
{
    qint64 size = 0;
    for (const auto &[name, value] : reply.rawHeaderPairs())
        size += name.size() + value.size();
    return size <= largestHead;
}

/// Qt reports statuses above 399 as errors, in place of a body that broke off. The other errors
/// mean that no whole answer came.
bool isWhole(const QNetworkReply &reply, const QByteArray &body)
{
    const QNetworkReply::NetworkError error = reply.error();
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    if (error == QNetworkReply::NoError)
        return true;
    // The connection has ended, and Qt would have asked again. An answer that states neither length
    // nor chunks ends like that.
    if (error == QNetworkReply::ContentReSendError)
        return statusOf(reply) && !length.isValid() && !reply.hasRawHeader("Transfer-Encoding");
    const bool isStatus = error == QNetworkReply::ProxyAuthenticationRequiredError // 407
        || error == QNetworkReply::ProtocolInvalidOperationError // 400 and 418
        || (error >= QNetworkReply::ContentAccessDenied
            && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError
            && error <= QNetworkReply::UnknownServerError);
    return isStatus && (!length.isValid() || length.toLongLong() == body.size());
}

} // namespace

QtHttpClient::~QtHttpClient()
{
    while (!m_waiting.isEmpty())
        (*m_waiting.begin())->happen();
}

QCoro::Task<HttpReply> QtHttpClient::get(HttpRequest request)
{
    HttpReply result;
    // Qt would open files as well.
    if (request.url.scheme() != QStringLiteral("http")
        && request.url.scheme() != QStringLiteral("https"))
        co_return result;

    auto *body = new OnceOnly(&m_manager);
    const std::unique_ptr<QNetworkReply, QScopedPointerDeleteLater> reply(
        m_manager.sendCustomRequest(networkRequest(request), "GET", body));
    body->setParent(reply.get());
    // A timer of our own: Qt's measures inactivity, so a body that trickles would evade it.
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, reply.get(), &QNetworkReply::abort);
    bool isTooLarge = false;
    const auto readBody = [&] {
        result.body += reply->read(largestHttpBody + 1 - result.body.size());
        isTooLarge = result.body.size() > largestHttpBody;
        if (isTooLarge)
            reply->abort();
    };
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &deadline, readBody);
    Wakeup finished;
    // Queued, so that it never happens inside one of the calls above.
    QObject::connect(
        reply.get(), &QNetworkReply::finished, &deadline, [&finished] { finished.happen(); },
        Qt::QueuedConnection);
    deadline.start(request.timeout);
    m_waiting.insert(&finished);
    co_await finished;
    m_waiting.remove(&finished);

    if (isTooLarge)
        result.body.clear();
    else if (!reply->isFinished() || !isWhole(*reply, result.body))
        co_return HttpReply{};
    result.status = statusOf(*reply);
    if (!result.status || !hasSensibleHead(*reply))
        co_return HttpReply{};
    co_return result;
}

} // namespace tallyglass
