// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/presetpictures.h"

#include <QIcon>

namespace plexa
{

class AppController;
class PresetListView;
template<class Preset>
class PresetListModelOf;

/// The pictures of the presets in one list, as they look on the shown photo. Main thread.
class PresetIcons final : public QObject
{
public:
    /// Shows them in the list from now on. The arguments outlive this object.
    PresetIcons(AppController &controller, PresetListModelOf<WPreset> &model, PresetListView &view);

private:
    QIcon pictureOf(const std::shared_ptr<WPreset> &preset);

    PresetListView &m_view;
    PresetPictures m_pictures;
};

} // namespace plexa
