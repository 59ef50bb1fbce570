// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QWidget>

namespace plexa
{

/// A plain area that takes dropped files.
class EmptyFrame final : public QWidget
{
    Q_OBJECT

public:
    /// @param background  role of the palette that the area is filled with
    explicit EmptyFrame(QPalette::ColorRole background, QWidget *parent = nullptr);

    /// Written in the middle; empty: nothing.
    void setHint(const QString &hint);

Q_SIGNALS:
    void filesDropped(const QStringList &paths);

protected:
    void paintEvent(QPaintEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QString m_hint;
};

} // namespace plexa
