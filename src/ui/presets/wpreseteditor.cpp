// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/wpreseteditor.h"

#include "app/appcontroller.h"
#include "ui/editors/tokenfieldwithinsertpopup.h"
#include "ui/editors/wtextpresetviewcontroller.h"

namespace plexa
{

TokenValue valueOnShownPhoto(AppController &controller)
{
    return [&set = controller.imageSet()](const QString &token) -> std::optional<QString> {
        const std::shared_ptr<ImageObject> image = set.shownImage();
        return image ? image->facts().stringForInfoToken(token) : std::nullopt;
    };
}

WPresetViewController *makeWPresetEditor(AppController &controller, UserDefaults &defaults)
{
    auto *const editor =
        new WPresetViewController({controller.presetsStore(), controller.photoServices().fonts, defaults},
                                  WPresetViewController::SavingPresetRow::Shown);
    editor->textEditor().tokenField().setValueOnPhoto(valueOnShownPhoto(controller));
    return editor;
}

} // namespace plexa
