// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

namespace plexa
{

/// One line of plain text, shortened to the available width. Screen readers read all of it.
class ElidedLabel final : public QWidget
{
    Q_OBJECT

public:
    /// @param mode  where the text is shortened
    explicit ElidedLabel(Qt::TextElideMode mode = Qt::ElideRight, QWidget *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Qt::TextElideMode m_mode;
    QString m_text;
};

} // namespace plexa
