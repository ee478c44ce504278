#include "app/Output.h"

#include "model/DisplayTexts.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tallyglass {

int print(const QByteArray &text)
{
    // A full disk shows in the first for long texts, in the second for short ones.
    const auto size = static_cast<std::size_t>(text.size());
    if (std::fwrite(text.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return 0;
    complain(formatText("command.cannotWrite.format", {qt_error_string(errno)}));
    return 1;
}

void complain(const QString &message)
{
    std::fprintf(stderr, "tallyglass: %s\n", message.toUtf8().constData());
}

void reserveStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Open the wrong way round, so that using it still fails.
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

} // namespace tallyglass
