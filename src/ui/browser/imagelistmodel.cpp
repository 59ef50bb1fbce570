// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagelistmodel.h"

#include "app/imageset.h"
#include "ui/widgets/plaintooltip.h"

namespace plexa
{

ImageListModel::ImageListModel(ImageSet &set, QObject *parent)
    : QAbstractListModel(parent)
    , m_set(set)
{
    connect(&m_set, &ImageSet::imagesAboutToBeInserted, this, [this](int first, int last) {
        m_isChanging = true;
        beginInsertRows({}, first, last);
    });
    connect(&m_set, &ImageSet::imagesInserted, this, [this] {
        endInsertRows();
        settle();
    });
    connect(&m_set, &ImageSet::imagesAboutToBeRemoved, this, [this](int first, int last) {
        m_isChanging = true;
        beginRemoveRows({}, first, last);
    });
    connect(&m_set, &ImageSet::imagesRemoved, this, [this] {
        endRemoveRows();
        settle();
    });
    // The set keeps the selection, so a new order is handled like a new list.
    for (const auto begin : {&ImageSet::orderAboutToChange, &ImageSet::listAboutToBeReset}) {
        connect(&m_set, begin, this, [this] {
            m_isChanging = true;
            beginResetModel();
        });
    }
    for (const auto end : {&ImageSet::orderChanged, &ImageSet::listReset}) {
        connect(&m_set, end, this, [this] {
            endResetModel();
            settle();
        });
    }
}

void ImageListModel::settle()
{
    m_isChanging = false;
    Q_EMIT settled();
}

int ImageListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_set.imagesFiltered()->size());
}

QVariant ImageListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ImageObject &image = *(*m_set.imagesFiltered())[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return image.path();
    case Qt::ToolTipRole:
        return plainToolTip(image.path());
    case Qt::EditRole:
        return image.filename();
    default:
        return {};
    }
}

bool ImageListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QString name = value.toString().trimmed();
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid) || name.isEmpty() ||
        name == QLatin1String(".") || name == QLatin1String("..") || name.contains(QLatin1Char('/')))
        return false;
    ImageObject &image = *(*m_set.imagesFiltered())[static_cast<std::size_t>(index.row())];
    if (name == image.filename())
        return false;
    // Renames the photo and its future copies, not its file.
    if (image.pathToImportFrom().isEmpty())
        image.setPathToImportFrom(image.path());
    image.setFilename(name);
    Q_EMIT dataChanged(index, index);
    return true;
}

Qt::ItemFlags ImageListModel::flags(const QModelIndex &index) const
{
    return index.isValid()
               ? Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable | Qt::ItemNeverHasChildren
               : Qt::NoItemFlags;
}

} // namespace plexa
