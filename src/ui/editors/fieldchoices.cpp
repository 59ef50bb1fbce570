// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/fieldchoices.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace plexa
{
namespace
{

#define TEXT(text) QT_TRANSLATE_NOOP("FieldChoices", text)
constexpr const char *kChoices[] = {
    TEXT("% of width"),      TEXT("% of height"), TEXT("% of long edge"),
    TEXT("% of short edge"), TEXT("Pixels"),      TEXT("Points"),
    TEXT("do not change"),   TEXT("lower case"),  TEXT("upper case"),
    TEXT("Original"),        TEXT("Normal"),      TEXT("Darken"),
    TEXT("Multiply"),        TEXT("Color Burn"),  TEXT("Lighten"),
    TEXT("Screen"),          TEXT("Color Dodge"), TEXT("Overlay"),
    TEXT("Soft Light"),      TEXT("Hard Light"),  TEXT("Difference"),
    TEXT("Exclusion"),       TEXT("Hue"),         TEXT("Saturation"),
    TEXT("Color"),           TEXT("Luminosity"),
};
#undef TEXT

} // namespace

QString shownChoice(const QString &choice)
{
    const auto *const text = std::find_if(std::begin(kChoices), std::end(kChoices), [&](const char *each) {
        return choice == QLatin1StringView(each);
    });
    return text == std::end(kChoices) ? choice : QCoreApplication::translate("FieldChoices", *text);
}

} // namespace plexa
