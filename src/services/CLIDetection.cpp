#include "services/CLIDetection.h"

#include "model/DisplayTexts.h"
#include "store/JsonFile.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QJsonObject>

#include <array>

namespace tallyglass {

namespace {

/// Where the installers put the tools; relative paths are below the home folder.
QStringList candidatePaths(const ProviderFacts &facts)
{
    constexpr std::array folders{".local/bin/",    ".volta/bin/",      ".asdf/shims/",
                                 ".bun/bin/",      ".npm-global/bin/", "/opt/homebrew/bin/",
                                 "/usr/local/bin/"};
    QStringList paths;
    for (const char *folder : folders)
        paths += QString::fromLatin1(folder) + QLatin1String(facts.executable);
    for (const std::string_view path : facts.otherPaths)
        paths += QString::fromUtf8(path.data(), static_cast<qsizetype>(path.size()));
    return paths;
}

bool isExecutableFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

std::optional<QString> firstExecutable(const QStringList &paths)
{
    for (const QString &path : paths) {
        if (isExecutableFile(path))
            return path;
    }
    return std::nullopt;
}

} // namespace

std::vector<CLIInstallStatus> detectAll(const Host &host)
{
    std::vector<CLIInstallStatus> statuses;
    for (const UsageProvider provider : allProviders) {
        const ProviderFacts &facts = factsOf(provider);
        const QString name = QString::fromLatin1(facts.executable);
        CLIInstallStatus status{
            .provider = provider,
            .executableName = name,
            .detectedPath = resolveExecutable(host, name, candidatePaths(facts)),
            .dataPath = host.homeFolder + u'/' + QLatin1String(facts.dataFolder),
            .installHint = displayText(facts.installHint),
        };
        if (provider == UsageProvider::Claude) {
            status.integrationHint = claudeBridgeConfigured(host)
                ? displayText("cli.claude.bridgeReady")
                : displayText("cli.claude.bridgeMissing");
        }
        statuses.push_back(std::move(status));
    }
    return statuses;
}

std::optional<QString> resolveExecutable(const Host &host, const QString &name,
                                         const QStringList &candidates)
{
    QStringList paths;
    for (const QString &candidate : candidates)
        paths += candidate.startsWith(u'/') ? candidate : host.homeFolder + u'/' + candidate;
    for (const QString &folder : searchPathDirectories(host))
        paths += folder + u'/' + name;
    if (const auto found = firstExecutable(paths))
        return found;
    return firstExecutable(versionManagerCandidates(host, name));
}

QStringList searchPathDirectories(const Host &host)
{
    const QString fixedPath =
        QStringLiteral("/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin");
    QStringList folders = host.searchPath + fixedPath.split(u':');
    // A relative one depends on where we were started, which may be anybody's folder.
    folders.removeIf([](const QString &folder) { return QDir::isRelativePath(folder); });
    folders.removeDuplicates();
    return folders;
}

QStringList versionManagerCandidates(const Host &host, const QString &name)
{
    struct VersionManager
    {
        const char *versions; ///< the folder that has one folder for each version
        const char *executables; ///< where each version keeps them
    };
    constexpr std::array managers{
        VersionManager{"/.nvm/versions/node", "/bin/"},
        VersionManager{"/.nodenv/versions", "/bin/"},
        VersionManager{"/.fnm/node-versions", "/installation/bin/"},
    };
    QStringList paths;
    for (const VersionManager &manager : managers) {
        QDirIterator versions(host.homeFolder + QString::fromLatin1(manager.versions),
                              QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
        while (versions.hasNext())
            paths += versions.next() + QString::fromLatin1(manager.executables) + name;
    }
    return paths;
}

bool claudeBridgeConfigured(const Host &host)
{
    const auto settings = readJsonFile(host.homeFolder + QStringLiteral("/.claude/settings.json"));
    if (!settings)
        return false;
    const QJsonObject statusLine = settings->object().value(QLatin1String("statusLine")).toObject();
    return statusLine.value(QLatin1String("command"))
        .toString()
        .contains(QLatin1String("tallyglass-statusline-bridge.py"));
}

} // namespace tallyglass
