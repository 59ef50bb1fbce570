// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagelistmodel.h"

#include "app/imageset.h"
#include "ui/widgets/plaintooltip.h"

#include <algorithm>
#include <unordered_set>

namespace plexa
{
namespace
{

constexpr std::size_t kKeptPictures = 500;

} // namespace

ImageListModel::ImageListModel(ImageSet &set, const FontCatalog &fonts, int threads, QObject *parent)
    : QAbstractListModel(parent)
    , m_set(set)
    , m_thumbnails(fonts, threads, Thumbnails::Photos::LoadedForThis)
{
    connect(&m_thumbnails, &Thumbnails::changed, this, &ImageListModel::showPicture);
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

void ImageListModel::setVisibleRows(int first, int end, int side)
{
    const ImageList &list = *m_set.imagesFiltered();
    const auto at = [&](int row) { return list.begin() + std::clamp(row, 0, static_cast<int>(list.size())); };
    ImageList visible(at(first), at(std::max(first, end)));
    m_firstVisible = first;
    if (visible == m_visible)
        return;
    const std::unordered_set<std::shared_ptr<ImageObject>> shown(visible.begin(), visible.end());
    m_seen.insert(m_seen.begin(), m_visible.begin(), m_visible.end());
    std::unordered_set<std::shared_ptr<ImageObject>> known(shown);
    std::erase_if(m_seen, [&known](const auto &image) { return !known.insert(image).second; });
    m_seen.resize(std::min(m_seen.size(), kKeptPictures));
    m_visible = std::move(visible);
    m_thumbnails.setWanted({m_visible, m_seen, side});
}

void ImageListModel::showPicture(const ImageObject *image)
{
    const auto found = std::find_if(m_visible.begin(), m_visible.end(),
                                    [image](const auto &one) { return one.get() == image; });
    if (m_isChanging || found == m_visible.end())
        return;
    if (!m_thumbnails.thumbnail(*image).isNull())
        m_set.forgetThumbnail(**found); // of which this is a small copy
    const int row = m_firstVisible + static_cast<int>(found - m_visible.begin());
    if (row < rowCount())
        Q_EMIT pictureChanged(index(row));
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
    case Qt::DecorationRole: {
        const QImage picture = m_thumbnails.thumbnail(image);
        return picture.isNull() ? QVariant() : picture.mirrored();
    }
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
