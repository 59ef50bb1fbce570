// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFrame>
#include <QStringList>

class QLineEdit;

namespace plexa
{

/// Edits a list of keywords: each is a pill with a button that removes it, and a line takes new ones. Return,
/// a comma and leaving the line add what it contains. Main thread.
class KeywordsField final : public QFrame
{
    Q_OBJECT

public:
    explicit KeywordsField(QWidget *parent = nullptr);
    ~KeywordsField() override;

    /// Shows these; the line keeps its text.
    void setKeywords(const QStringList &keywords);
    const QStringList &keywords() const { return m_keywords; }

    /// Beside the pills, while the line is empty.
    void setPlaceholderText(const QString &text);
    /// The words that the line offers.
    void setCompletions(const QStringList &words);

    /// Adds the words in the line.
    void commit();

Q_SIGNALS:
    /// The user has added or removed keywords.
    void edited(const QStringList &keywords);
    /// The line is entered: the completions are needed.
    void entered();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void change(const QStringList &keywords);
    void remove(const QString &keyword);

    QStringList m_keywords;
    QLineEdit *const m_line;
    QWidget *const m_pills;
};

} // namespace plexa
