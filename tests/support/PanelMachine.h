#pragma once

#include "services/ClaudeUsageAPI.h"
#include "services/UsageModel.h"
#include "support/FakePorts.h"
#include "ui/PanelViewModel.h"
#include "update/AppUpdateChecker.h"
#include "update/AppUpdater.h"

#include <QColor>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

namespace tallyglass::test {

/// An updater that is always ready, and counts how often it was asked.
class FakeUpdaterEngine final : public UpdaterEngine
{
public:
    void start() override { }
    bool canCheckForUpdates() const override { return true; }
    void checkForUpdates() override { ++checks; }

    int checks = 0;
};

/// Everything that stands behind the panel, on a machine of fakes.
struct PanelMachine
{
    explicit PanelMachine(const QString &homeFolder, const QString &publicKey = {})
        : fake(portsFor(homeFolder, publicKey))
    {
    }

    FakePorts fake;
    FakeUpdaterEngine engine;
    ClaudeUsageAPI api{fake.ports.host, fake.clock, fake.http, fake.keychain};
    AppUpdateChecker updates{fake.clock, fake.http, fake.ports.host};
    UsageModel model{fake.ports, api, updates};
    AppUpdater updater{fake.ports.host, &engine};
    PanelViewModel viewModel{model, updater, fake.defaults, fake.clock};

private:
    static FakePorts portsFor(const QString &homeFolder, const QString &publicKey)
    {
        FakePorts fake(homeFolder);
        fake.ports.host.feedUrl = QStringLiteral("https://feed.example/appcast.xml");
        fake.ports.host.publicKey = publicKey;
        return fake;
    }
};

inline void usePalette(bool isDark)
{
    QPalette palette;
    const QColor window(isDark ? 0x26 : 0xf3, isDark ? 0x27 : 0xf3, isDark ? 0x2a : 0xf5);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText,
                     isDark ? QColor(0xee, 0xee, 0xf0) : QColor(0x1c, 0x1c, 0x1e));
    palette.setColor(QPalette::Base, isDark ? QColor(0x1c, 0x1c, 0x1f) : QColor(Qt::white));
    palette.setColor(QPalette::Highlight, QColor(0x1f, 0x6f, 0xd6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QGuiApplication::setPalette(palette);
}

/// A window that shows the panel, and nothing else, as large as the panel wants to be.
class PanelView : public QQuickView
{
public:
    explicit PanelView(PanelViewModel &viewModel)
    {
        engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
        setResizeMode(SizeRootObjectToView);
        setColor(QGuiApplication::palette().color(QPalette::Window));
        setInitialProperties({{QStringLiteral("viewModel"), QVariant::fromValue(&viewModel)}});
        setSource(QUrl(QStringLiteral("qrc:/qt/qml/Tallyglass/qml/MenuBarPanel.qml")));
        fit();
    }

    /// Resizes to what the panel wants, once everything has found its place.
    void fit()
    {
        for (int i = 0; i < 2; ++i) {
            resize(qRound(rootObject()->implicitWidth()), qRound(rootObject()->implicitHeight()));
            show();
            grabWindow();
        }
        // The platform tells a new window that the pointer has entered it.
        if (!QTest::qWaitForWindowExposed(this))
            qFatal("the panel's window does not show");
        QCoreApplication::processEvents();
    }
};

} // namespace tallyglass::test
