#pragma once

#include <QElapsedTimer>
#include <QQuickView>
#include <QRect>

namespace tallyglass {

/// The window of the panel. At an icon it is a panel that drops down and goes when the user turns
/// to something else; without an icon it is an ordinary window.
class PanelWindow : public QQuickView
{
    Q_OBJECT

public:
    /// \a content is what the window shows. Its "largestHeight" and "radius" are told to it at each
    /// opening.
    PanelWindow(QQmlEngine &engine, const QUrl &content, const QVariantMap &properties);

    void openAt(const QRect &icon);
    void openAsWindow();

    /// Whether a click elsewhere has closed it so recently that it was this very click.
    bool hasJustGone() const;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void open(Qt::WindowFlags flags, int margin);
    void fitContent(int largestHeight);
    void goWhenInactive();

    QRect m_icon;
    QRect m_available; ///< the screen that it opens on, without its bars
    bool m_dropsDown = false;
    QElapsedTimer m_sinceGone;
};

} // namespace tallyglass
