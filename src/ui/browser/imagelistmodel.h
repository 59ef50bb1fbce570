// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/thumbnails.h"

#include <QAbstractListModel>

namespace plexa
{

class ImageSet;

/// The paths and small pictures of the shown photos, read from the working set. Main thread.
class ImageListModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    /// @param set, fonts  outlive the model
    /// @param threads     photos that are loaded at a time for their pictures
    ImageListModel(ImageSet &set, const FontCatalog &fonts, int threads, QObject *parent = nullptr);

    /// The rows that have pictures, [first, end); further ones are kept for a while.
    /// @param side  of a picture, in device pixels
    void setVisibleRows(int first, int end, int side);
    /// The picture of a photo has changed.
    void outdatePicture(const ImageObject *image) { m_thumbnails.outdate(image); }

    int rowCount(const QModelIndex &parent = {}) const override;
    /// The path; for editing, the file's name without folder and suffix; as decoration a QImage, upright,
    /// invalid until there is one.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Renames the photo.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Whether the set is changing, so that its rows are not valid.
    bool isChanging() const { return m_isChanging; }

Q_SIGNALS:
    /// The decoration. Not as dataChanged(), at which a view reads the name again that is just being edited.
    void pictureChanged(const QModelIndex &index);
    /// The change is complete.
    void settled();

private:
    void settle();
    void showPicture(const ImageObject *image);

    ImageSet &m_set;
    int m_firstVisible = 0;
    ImageList m_visible;
    ImageList m_seen; // before; their pictures are kept
    Thumbnails m_thumbnails;
    bool m_isChanging = false;
};

} // namespace plexa
