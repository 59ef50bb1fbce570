// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/preseticons.h"

#include "app/appcontroller.h"
#include "ui/widgets/presetlistmodel.h"
#include "ui/widgets/presetlistview.h"

#include <QPixmap>

namespace plexa
{
namespace
{

constexpr QSize kPicture(66, 44); // points

} // namespace

PresetIcons::PresetIcons(AppController &controller, PresetListModel &model, PresetListView &view)
    : m_view(view)
    , m_pictures(controller.photoServices())
{
    view.setPictureSize(kPicture);
    model.setPicture([this](const std::shared_ptr<WPreset> &preset) { return pictureOf(preset); });
    connect(&m_pictures, &PresetPictures::changed, &model, &PresetListModel::refresh);
    m_pictures.setPhoto(controller.imageSet().shownImage());
    connect(&controller.imageSet(), &ImageSet::shownImageChanged, &m_pictures, &PresetPictures::setPhoto);
    connect(&controller, &AppController::imageOutdated, this,
            [this](const std::shared_ptr<ImageObject> &photo) {
                if (photo == m_pictures.photo())
                    m_pictures.outdatePhoto();
            });
}

/// Of a painted row. The room is kept until there is a picture.
QIcon PresetIcons::pictureOf(const std::shared_ptr<WPreset> &preset)
{
    const double ratio = m_view.devicePixelRatioF();
    const QSize room = kPicture * ratio;
    m_pictures.setRoom(room);
    QImage picture = m_pictures.picture(preset);
    if (picture.isNull()) {
        picture = QImage(room, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
    }
    QPixmap pixmap = QPixmap::fromImage(picture);
    pixmap.setDevicePixelRatio(ratio);
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected); // its colors stay
    return icon;
}

} // namespace plexa
