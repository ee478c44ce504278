#include "app/Language.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include <memory>

namespace tallyglass {

namespace {

/// The tag in the form of file names, in which the loader drops one part after the other: "en_GB",
/// then "en".
bool installCatalogue(QString tag)
{
    auto catalogue = std::make_unique<QTranslator>(QCoreApplication::instance());
    return catalogue->load(QStringLiteral("tallyglass_") + tag.replace(u'-', u'_'),
                           QStringLiteral(":/i18n"))
        && QCoreApplication::installTranslator(catalogue.release());
}

} // namespace

void chooseLanguage(const QStringList &preferred)
{
    QLocale locale(QLocale::Japanese, QLocale::Japan);
    for (const QString &tag : preferred) {
        const QLocale candidate(tag);
        if (candidate.language() == locale.language())
            break;
        if (candidate.language() != QLocale::C && installCatalogue(tag)) {
            locale = candidate;
            break;
        }
    }
    // The system's own forms of dates go before those of its language.
    if (QLocale::system().language() != locale.language())
        QLocale::setDefault(locale);
}

} // namespace tallyglass
