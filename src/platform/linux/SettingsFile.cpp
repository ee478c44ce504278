#include "platform/Folders.h"
#include "platform/linux/LinuxPorts.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QUrl>

namespace tallyglass {

namespace {

const QByteArray section = "[General]\n";

bool read(QIODevice &device, QSettings::SettingsMap &settings)
{
    while (!device.atEnd()) {
        const QByteArray line = device.readLine().trimmed();
        const qsizetype sign = line.indexOf('=');
        if (sign > 0 && !line.startsWith(';'))
            settings.insert(QUrl::fromPercentEncoding(line.first(sign).trimmed()),
                            QUrl::fromPercentEncoding(line.sliced(sign + 1).trimmed()));
    }
    return true;
}

bool write(QIODevice &device, const QSettings::SettingsMap &settings)
{
    QByteArray text = section;
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        text += QUrl::toPercentEncoding(setting.key()) + '='
            + QUrl::toPercentEncoding(setting.value().toString()) + '\n';
    // Qt's own writer looks at neither: on a full disk it put half a file instead of a whole
    // one and called that a success.
    auto &file = static_cast<QFileDevice &>(device);
    return file.write(text) == text.size() && file.flush() && file.size() == text.size();
}

QSettings::Format checkedFormat()
{
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("conf"), read, write, Qt::CaseSensitive);
    return format;
}

class SettingsFile final : public UserDefaults
{
public:
    explicit SettingsFile(const QString &path);

    QVariant value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;

private:
    QSettings m_settings;
};

SettingsFile::SettingsFile(const QString &path)
    : m_settings(path, checkedFormat())
{
}

QVariant SettingsFile::value(const QString &key) const
{
    return m_settings.value(key);
}

void SettingsFile::setValue(const QString &key, const QVariant &value)
{
    // Made here, because Qt would make both readable for everybody.
    QFile file(m_settings.fileName());
    if (makePrivateFolder(QFileInfo(file).path()))
        file.open(QIODevice::WriteOnly | QIODevice::NewOnly,
                  QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    m_settings.setValue(key, value);
    m_settings.sync();
}

} // namespace

std::unique_ptr<UserDefaults> makeSettingsFile(const QString &path)
{
    return std::make_unique<SettingsFile>(path);
}

} // namespace tallyglass
