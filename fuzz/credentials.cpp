// Whatever stands in the file of credentials, a token is given only while it can be sent.

#include "Fuzz.h"
#include "services/ClaudeCredentials.h"

using namespace tallyglass;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    fuzz::write(QStringLiteral(".claude/.credentials.json"),
                QByteArray(data, static_cast<qsizetype>(size)));
    const Instant now = fromUnixNumber(1'767'225'600);
    const Host host{.homeFolder = fuzz::home()};
    const auto found = findClaudeCredentials(host, nullptr, now);
    if (!found)
        return 0;
    require(found->isExpired == (found->expiryDate && *found->expiryDate <= now),
            "a token has expired when its date has passed");
    require(found->isExpired != found->accessToken.has_value(), "what has expired is not given");
    require(!found->accessToken || !found->accessToken->isEmpty(), "a token is not empty");
    return 0;
}
