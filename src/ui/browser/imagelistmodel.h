// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAbstractTableModel>

namespace plexa
{

class ImageSet;

/// The shown photos as a table of one column, their paths. Says what the working set says and keeps nothing
/// itself, so that a hundred thousand photos cost what one does. Main thread.
class ImageListModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// @param set  outlives the model
    explicit ImageListModel(ImageSet &set, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    /// The path; as what is edited, the file's name without folder and extension.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Renames the photo.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// The set and the rows do not agree at this moment.
    bool isChanging() const { return m_isChanging; }

Q_SIGNALS:
    /// They agree again.
    void settled();

private:
    void connectAll();
    void settle();

    ImageSet &m_set;
    bool m_isChanging = false;
};

} // namespace plexa
