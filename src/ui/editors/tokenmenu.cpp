// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokenmenu.h"

#include "saving/namingtokens.h"

#include <QCoreApplication>

namespace plexa
{
namespace
{

constexpr int kLongestValue = 40; // characters

QString translated(const char *text)
{
    return QCoreApplication::translate("TokenMenu", text);
}

/// @param names  separated by "|"
TokenGroup group(const char *title, const char *names)
{
    return {translated(title), QString::fromLatin1(names).split(u'|')};
}

/// A title of an item that shows `text` as it is.
QString itemTitle(QString text)
{
    return text.replace(u'&', QLatin1String("&&"));
}

/// A value as one short line.
QString shortened(const QString &value)
{
    const QString line = value.left(4 * kLongestValue).simplified();
    return line.size() > kLongestValue ? line.left(kLongestValue - 1) + QChar(0x2026) : line;
}

} // namespace

QString shownValue(const TokenValue &value, const QString &name)
{
    return value ? shortened(value(name).value_or(QStringLiteral("–"))) : QString();
}

TokenGroups watermarkTokenGroups()
{
    return {
        group(QT_TRANSLATE_NOOP("TokenMenu", "Description"),
              "copyright|headline|title|caption|writer/editor|EXIF user comment"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "Creator"),
              "creator|creator title|creator e-mail|creator website|creator phone|creator address|"
              "creator postal code|creator city|creator state|creator country"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "Date"),
              "date (full)|date (long)|date (medium)|date (short)|date (YYYY-MM-DD)|date (DD.MM.YYYY)|"
              "date (MM/DD/YYYY)"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "Time"),
              "time (long)|time (medium)|time (short)|time (hh:mm)|time (hh:mm:ss)|subsecond time"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "Place"),
              "sublocation|city|state|country|latitude|longitude|altitude"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "Exposure"),
              "exposure time|F-number|ISO speed|focal length|focal length 35mm|exposure program|"
              "exposure bias|metering mode|flash"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "Camera"),
              "camera make|camera model|camera serial #|lens|lens ID|image number|software"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "Image"),
              "dimensions|width|height|DPI width|DPI height|bit depth|color model|ICC profile"),
        group(QT_TRANSLATE_NOOP("TokenMenu", "File"), "filename|file extension"),
    };
}

TokenGroups fileNameTokenGroups()
{
    return TokenGroups{{translated(QT_TRANSLATE_NOOP("TokenMenu", "Saving")), namingTokenNames()}} +
           watermarkTokenGroups();
}

TokenMenu::TokenMenu(QWidget *parent)
    : QMenu(parent)
{
}

void TokenMenu::setGroups(const TokenGroups &groups)
{
    clear();
    for (const TokenGroup &group : groups)
        addNames(group.title.isEmpty() ? *this : *addMenu(itemTitle(group.title)), group.names);
}

void TokenMenu::addNames(QMenu &menu, const QStringList &names)
{
    for (const QString &name : names) {
        QAction *const action = menu.addAction(itemTitle(name));
        action->setData(name);
        connect(action, &QAction::triggered, this, [this, name] { Q_EMIT tokenChosen(name); });
    }
    connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { showValues(menu); });
}

void TokenMenu::showValues(QMenu &menu) const
{
    const QList<QAction *> actions = menu.actions();
    for (QAction *const action : actions) {
        const QString name = action->data().toString();
        if (name.isEmpty())
            continue; // a submenu
        QString title = itemTitle(name);
        if (m_value)
            title += u'\t' + itemTitle(shownValue(m_value, name));
        action->setText(title);
    }
}

} // namespace plexa
