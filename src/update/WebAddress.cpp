#include "update/WebAddress.h"

namespace tallyglass {

std::optional<QUrl> webAddress(const QString &text)
{
    QUrl url(text.trimmed());
    const bool isWeb =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !isWeb || url.host().isEmpty())
        return std::nullopt;
    return url;
}

} // namespace tallyglass
