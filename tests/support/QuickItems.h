#pragma once

#include <QQuickItem>

namespace tallyglass::test {

/// The items of that objectName below \a root, in the order in which they are drawn. Unlike
/// QObject::findChildren() it finds what a Repeater made.
inline QList<QQuickItem *> itemsNamed(const QString &name, const QQuickItem &root)
{
    QList<QQuickItem *> found;
    for (QQuickItem *child : root.childItems()) {
        if (child->objectName() == name)
            found += child;
        found += itemsNamed(name, *child);
    }
    return found;
}

} // namespace tallyglass::test
