// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/preferencesdialog.h"

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "ui/widgets/helpbutton.h"
#include "ui/widgets/look.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <vector>

namespace plexa
{

namespace
{

struct Preference {
    QLatin1String key;
    const char *text;
    const char *toolTip;
};

struct Group {
    const char *title;
    std::vector<Preference> preferences;
};

#define TEXT(text) QT_TRANSLATE_NOOP("plexa::PreferencesDialog", text)

const std::vector<Group> &groups()
{
    using namespace settings;
    static const std::vector<Group> all = {
        {TEXT("Watermarks"),
         {{rememberWPresetsAppliedLastTime, TEXT("&Apply the presets of the last time at start"),
           TEXT("The presets that are applied when the window closes are applied again at the next start")},
          {combineAllAppliedPresetsInImage, TEXT("&Draw all applied presets on one copy"),
           TEXT("One copy with all watermarks, instead of one copy for each of them")}}},
        {TEXT("Copies"),
         {{ignoreSavingPresetsInSizePresets, TEXT("Save all copies with the &same saving preset"),
           TEXT("Saving presets that are assigned to watermark presets are ignored")},
          {exportPreserveOriginalFileCreationDate, TEXT("&Keep the date of the original file"),
           TEXT("A copy gets the date of the photo's file instead of today's")}}},
        {TEXT("Window"),
         {{browserShowOriginalOnMouseOver, TEXT("Show a thumbnail without watermarks &under the pointer"),
           TEXT("The thumbnail under the pointer is shown as the original is")},
          {askForFeedback, TEXT("Ask for &feedback now and then"),
           TEXT("Every seventh time when Plexa quits")},
          {checksForUpdates, TEXT("Check for updates &once a day"),
           TEXT("Asks the web server of the maker for the newest version; sends nothing about you")}}},
    };
    return all;
}

#undef TEXT

} // namespace

PreferencesDialog::PreferencesDialog(UserDefaults &defaults, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("preferences"));
    setWindowTitle(tr("Preferences"));
    setWindowModality(Qt::WindowModal);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(2 * look::kGap, 2 * look::kGap, 2 * look::kGap, 2 * look::kGap);
    layout->setSpacing(look::kLargeGap);
    for (const Group &group : groups()) {
        auto *const box = new QGroupBox(tr(group.title));
        auto *const boxLayout = new QVBoxLayout(box);
        boxLayout->setContentsMargins(look::kLargeGap, look::kGap, look::kLargeGap, look::kGap);
        boxLayout->setSpacing(look::kGap);
        for (const Preference &preference : group.preferences) {
            auto *const check = new QCheckBox(tr(preference.text));
            check->setObjectName(preference.key);
            check->setToolTip(tr(preference.toolTip));
            check->setWhatsThis(check->toolTip());
            check->setChecked(defaults.boolForKey(preference.key));
            connect(check, &QCheckBox::toggled, this, [this, &defaults, key = preference.key](bool isOn) {
                defaults.setObject(key, isOn);
                Q_EMIT settingChanged(key);
            });
            boxLayout->addWidget(check);
        }
        layout->addWidget(box);
    }
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const help = new HelpButton(QStringLiteral("preferences.html"), tr("Help on preferences"),
                                      tr("Explain the preferences (F1)"));
    auto *const bottom = new QHBoxLayout;
    bottom->addWidget(help->withKey());
    bottom->addWidget(buttons);
    layout->addLayout(bottom);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

} // namespace plexa
