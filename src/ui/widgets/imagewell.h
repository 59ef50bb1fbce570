// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAbstractButton>
#include <QImage>

class QMimeData;

namespace plexa
{

/// A button with one picture, which takes picture files and pictures that are dropped or pasted; a click, or
/// the Enter or space key, asks for another. Checks show through transparent pixels. The owner reads the
/// files and sets the picture. Main thread.
class ImageWell final : public QAbstractButton
{
    Q_OBJECT

public:
    /// @param purpose  accessible name
    explicit ImageWell(const QString &purpose, QWidget *parent = nullptr);

    /// @param image  fitted into the frame; null: the hint is shown
    void setImage(const QImage &image);
    void setHint(const QString &hint);
    /// Pixels of the screen in which an image is sharp.
    QSize pixelSize() const;

Q_SIGNALS:
    void fileChosen(const QString &path);
    void imagePasted(const QImage &image);

protected:
    void paintEvent(QPaintEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    bool take(const QMimeData *data);
    void paste();

    QImage m_image;
    QString m_hint;
    bool m_isDropTarget = false;
};

} // namespace plexa
