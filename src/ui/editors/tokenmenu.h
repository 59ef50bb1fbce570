// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QMenu>
#include <QStringList>

#include <functional>
#include <optional>

namespace plexa
{

/// Some tokens of a vocabulary under one title.
struct TokenGroup {
    QString title; ///< translated; empty: the names are not in a submenu
    QStringList names;
};

using TokenGroups = QList<TokenGroup>;

/// The tokens of watermarks: each of tokenNames() once.
TokenGroups watermarkTokenGroups();

/// The tokens of the names of copies: those of watermarks, and each of namingTokenNames() once.
TokenGroups fileNameTokenGroups();

/// The value of a token on the current photo. @return none if the photo lacks it
using TokenValue = std::function<std::optional<QString>(const QString &name)>;

/// The value as one short line; "–" if the photo lacks it, empty while there is no photo.
QString shownValue(const TokenValue &value, const QString &name);

/// A menu of tokens with a submenu for each group. The titles of its items are the names of the tokens; while
/// it is open, the value on the current photo follows each name.
class TokenMenu final : public QMenu
{
    Q_OBJECT

public:
    explicit TokenMenu(QWidget *parent = nullptr);

    void setGroups(const TokenGroups &groups);

    /// @param value  asked each time a submenu opens; empty: no values are shown
    void setValueOnPhoto(TokenValue value) { m_value = std::move(value); }

Q_SIGNALS:
    void tokenChosen(const QString &name);

private:
    void addNames(QMenu &menu, const QStringList &names);
    void showValues(QMenu &menu) const;

    TokenValue m_value;
};

} // namespace plexa
