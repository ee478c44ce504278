#pragma once

#include "support/Machine.h"
#include "ui/PanelViewModel.h"
#include "update/AppUpdater.h"

#include <QColor>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

namespace tallyglass::test {

/// Everything that stands behind the panel, on a machine of fakes.
struct PanelMachine : Machine
{
    explicit PanelMachine(const QString &homeFolder = {}, const QString &publicKey = {})
        : Machine(homeFolder)
        , updater(published(publicKey), &engine)
    {
    }

    FakeUpdaterEngine engine;
    AppUpdater updater;
    PanelViewModel viewModel{model, updater, fake.defaults, fake.clock};

private:
    const Host &published(const QString &publicKey)
    {
        ports.host.feedUrl = QStringLiteral("https://feed.example/appcast.xml");
        ports.host.publicKey = publicKey;
        return ports.host;
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
