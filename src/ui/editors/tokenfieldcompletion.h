// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/tokenmenu.h"

#include <QCompleter>
#include <QStringListModel>
#include <QTextCursor>

class QKeyEvent;
class QTextEdit;

namespace plexa
{

/// The list of token names that opens when "{" is typed in a text field. What is typed after the brace
/// filters it.
class TokenFieldCompletion final : public QObject
{
    Q_OBJECT

public:
    /// @param field  the owner
    explicit TokenFieldCompletion(QTextEdit &field);

    void setNames(const QStringList &names) { m_names = names; }

    /// Shown beside the names.
    void setValueOnPhoto(const TokenValue &value) { m_offered.value = value; }

    bool isOpen() const;

    /// Handles a key of the field while the list is open. @return whether the field must ignore the key
    bool keyPressed(const QKeyEvent &event);

    /// The field has handled a key or an input method. Opens the list if a brace was typed, or filters it.
    /// @param isText  it may have inserted text
    void keyHandled(bool isText);

    /// Closes the list. The text stays.
    void close();

Q_SIGNALS:
    /// A name was chosen. The field has selected the text that it replaces.
    void chosen(const QString &name);

private:
    /// Names, with their values for Qt::UserRole and for screen readers.
    class Offered final : public QStringListModel
    {
    public:
        QVariant data(const QModelIndex &index, int role) const override;

        TokenValue value;
    };

    void update();
    void show(const QString &typed);
    void choose(const QString &name);

    QTextEdit &m_field;
    QStringList m_names;
    Offered m_offered;
    QCompleter m_completer;
    QTextCursor m_brace; // before the brace; null while closed
};

} // namespace plexa
