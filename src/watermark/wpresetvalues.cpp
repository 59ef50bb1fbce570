// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/wpresetvalues.h"

#include "platform/applicationname.h"
#include "platform/fontcatalog.h"

#include <QCoreApplication>
#include <QDate>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WPresetValues)
};

} // namespace

WPresetValues WPresetValues::forNewPreset(const FontCatalog &fonts)
{
    WPresetValues values;
    values.font = fonts.defaultFontName();
    values.textTokens = {
        QStringLiteral("\u00a9 %1 %2").arg(QString::number(QDate::currentDate().year()), fullUserName())};
    return values;
}

bool WPresetValues::validPreset() const
{
    return type != QLatin1StringView("Image") || image.fault().isEmpty();
}

QString WPresetValues::pictureFault() const
{
    const QString fault = image.fault();
    if (fault.isEmpty())
        return {};
    return Texts::tr("the picture of the watermark preset \"%1\" cannot be read: %2").arg(name, fault);
}

} // namespace plexa
