// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/tokenmenu.h"

#include <QWidget>

namespace plexa
{

class TokenFieldWithInsertPopup;

/// A token field, and below it the button that inserts tokens. Main thread.
class TokenEditor final : public QWidget
{
    Q_OBJECT

public:
    /// @param name           of the field's object, without "Field"
    /// @param purpose        the field's accessible name
    /// @param insertToolTip  of the button
    TokenEditor(const QString &name, const QString &purpose, const QString &insertToolTip,
                const TokenGroups &vocabulary, QWidget *parent = nullptr);

    TokenFieldWithInsertPopup &field() { return *m_field; }

private:
    TokenFieldWithInsertPopup *const m_field;
};

} // namespace plexa
