// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/sectiontitle.h"

#include <QLabel>

namespace plexa
{

QLabel *sectionTitle(const QString &text, QWidget *buddy)
{
    auto *const label = new QLabel(text);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    label->setBuddy(buddy);
    return label;
}

} // namespace plexa
