// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAbstractListModel>

namespace plexa
{

class ImageSet;

/// The paths of the shown photos, read from the working set. Main thread.
class ImageListModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    /// @param set  outlives the model
    explicit ImageListModel(ImageSet &set, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    /// The path; for editing, the file's name without folder and suffix.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Renames the photo.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Whether the set is changing, so that its rows are not valid.
    bool isChanging() const { return m_isChanging; }

Q_SIGNALS:
    /// The change is complete.
    void settled();

private:
    void settle();

    ImageSet &m_set;
    bool m_isChanging = false;
};

} // namespace plexa
