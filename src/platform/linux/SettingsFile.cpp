#include "platform/Files.h"
#include "platform/linux/LinuxPorts.h"

#include <QFileInfo>
#include <QMap>
#include <QUrl>

#include <cerrno>

namespace tallyglass {

namespace {

constexpr qint64 largestFile = qint64{1024} * 1024; // bytes; real ones have a few hundred

using Settings = QMap<QString, QString>;

Settings settingsIn(const QByteArray &text)
{
    Settings settings;
    for (const QByteArray &line : text.split('\n')) {
        const qsizetype sign = line.indexOf('=');
        if (sign > 0 && !line.trimmed().startsWith(';'))
            settings.insert(QUrl::fromPercentEncoding(line.first(sign).trimmed()),
                            QUrl::fromPercentEncoding(line.sliced(sign + 1).trimmed()));
    }
    return settings;
}

QByteArray textOf(const Settings &settings)
{
    QByteArray text = "[General]\n";
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        text += QUrl::toPercentEncoding(setting.key()) + '='
            + QUrl::toPercentEncoding(setting.value()) + '\n';
    return text;
}

/// Nothing when there is something that cannot be read. A file that is missing is empty.
std::optional<Settings> readSettings(const QString &path)
{
    const auto text = readWholeFile(path, largestFile);
    if (!text && errno != ENOENT)
        return std::nullopt;
    return settingsIn(text.value_or(QByteArray()));
}

// Not QSettings: its lock waits without end when something else has the lock's name, and on a full
// disk it puts half a file in the place of a whole one and calls that a success.
class SettingsFile final : public UserDefaults
{
public:
    explicit SettingsFile(const QString &path)
        : m_path(path)
        , m_stored(readSettings(path).value_or(Settings()))
    {
    }

    QVariant value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;

private:
    QString m_path;
    Settings m_stored;
    Settings m_unsaved; ///< what could not be written yet
};

QVariant SettingsFile::value(const QString &key) const
{
    for (const Settings *settings : {&m_unsaved, &m_stored}) {
        if (settings->contains(key))
            return settings->value(key);
    }
    return {};
}

void SettingsFile::setValue(const QString &key, const QVariant &value)
{
    m_unsaved.insert(key, value.toString());
    // Read again, for others may have written to it; what cannot be read is not written over.
    auto settings = readSettings(m_path);
    if (!settings)
        return;
    settings->insert(m_unsaved);
    const QString target = QFileInfo(m_path).canonicalFilePath(); // A link stays one.
    if (!writeFileAtomically(target.isEmpty() ? m_path : target, textOf(*settings)))
        return;
    m_stored = *settings;
    m_unsaved.clear();
}

} // namespace

std::unique_ptr<UserDefaults> makeSettingsFile(const QString &path)
{
    return std::make_unique<SettingsFile>(path);
}

} // namespace tallyglass
