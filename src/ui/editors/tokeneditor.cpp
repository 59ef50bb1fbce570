// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokeneditor.h"

#include "ui/editors/tokenfieldwithinsertpopup.h"
#include "ui/widgets/look.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace plexa
{

TokenEditor::TokenEditor(const QString &name, const QString &purpose, const QString &insertToolTip,
                         const TokenGroups &vocabulary, QWidget *parent)
    : QWidget(parent)
    , m_field(new TokenFieldWithInsertPopup)
{
    m_field->setObjectName(name + QLatin1String("Field"));
    m_field->setAccessibleName(purpose);
    m_field->setVocabulary(vocabulary);
    auto *const insert = new QPushButton(tr("Insert from Photo"));
    insert->setObjectName(name + QLatin1String("InsertPopUpButton"));
    insert->setToolTip(insertToolTip);
    insert->setAutoDefault(false); // in a dialog, Enter presses its own button
    m_field->setInsertPopUpButton(insert);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kSmallGap);
    layout->addWidget(m_field);
    layout->addWidget(insert, 0, Qt::AlignLeft);
    setFocusProxy(m_field); // of a label
}

} // namespace plexa
