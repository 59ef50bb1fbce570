// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/translations.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace plexa
{

namespace
{

const QString kPlace = QStringLiteral(":/translations/");
const QString kPrefix = QStringLiteral("plexa_");

void install(const QString &catalog, const QString &folder)
{
    auto *const translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(catalog, folder))
        QCoreApplication::installTranslator(translator);
    else
        delete translator;
}

} // namespace

QString catalogFor(const QStringList &languages)
{
    for (QString language : languages) {
        // "C" is the language of a system without one.
        if (const auto known = QLocale(language).language(); known == QLocale::English || known == QLocale::C)
            break;
        language.replace(u'-', u'_');
        // "de_AT" is read from the catalog "de" if it has none of its own.
        for (; !language.isEmpty(); language.truncate(qMax<qsizetype>(0, language.lastIndexOf(u'_'))))
            if (QFileInfo::exists(kPlace + kPrefix + language + QStringLiteral(".qm")))
                return kPrefix + language;
    }
    return {};
}

void installTranslations(const QStringList &languages)
{
    const QString catalog = catalogFor(languages);
    if (catalog.isEmpty())
        return;
    install(QStringLiteral("qtbase_") + catalog.sliced(kPrefix.size()),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(catalog, kPlace);
}

} // namespace plexa
