// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/wpresetvalues.h"

#include "platform/applicationname.h"
#include "platform/fontcatalog.h"

#include <QDate>

namespace plexa
{

WPresetValues WPresetValues::forNewPreset(const FontCatalog &fonts)
{
    WPresetValues values;
    values.font = fonts.defaultFontName();
    values.textTokens = {
        QStringLiteral("\u00a9 %1 %2").arg(QString::number(QDate::currentDate().year()), fullUserName())};
    return values;
}

} // namespace plexa
