// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/editorform.h"

#include <QScrollArea>

class QComboBox;
class QVBoxLayout;

namespace plexa
{

class WImagePresetViewController;
class WTextPresetViewController;

/// The editor of one watermark preset: its type, what belongs to the type, and what all watermarks have, in
/// sections that fold. All controls write to the preset at once. Main thread.
class WPresetViewController final : public QScrollArea
{
    Q_OBJECT

public:
    enum class SavingPresetRow { Shown, Hidden };

    WPresetViewController(const EditorServices &services, SavingPresetRow savingPreset,
                          QWidget *parent = nullptr);

    const std::shared_ptr<WPreset> &preset() const { return m_binder.preset(); }
    /// Null: the editor is disabled and empty.
    void setPreset(const std::shared_ptr<WPreset> &preset);

    WTextPresetViewController &textEditor() { return *m_text; }

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user has changed a field.
    void edited(const std::shared_ptr<plexa::WPreset> &preset, plexa::FieldId field,
                const plexa::FieldValue &before, const plexa::FieldValue &now);

private:
    QWidget *makeType();
    QWidget *makeSizeAndPosition();
    QWidget *offsetHelpButton();
    QWidget *makeAngleAndTiling();
    QWidget *angleRow(EditorForm &form, FieldId field, const QString &purpose);
    QWidget *makeLook();
    QWidget *makeShadow();
    QWidget *makeBox();
    QWidget *makeSaving();
    void addSection(QVBoxLayout &layout, const QString &title, const char *name, QWidget *content,
                    bool isFoldedAtFirst);
    void updateTypeSubview();
    void fillSavingPresets(QComboBox &popUp);

    const EditorServices m_services;
    PresetBinder m_binder;
    WTextPresetViewController *m_text = nullptr;
    WImagePresetViewController *m_image = nullptr;
    QWidget *m_textSection = nullptr;
    QWidget *m_imageSection = nullptr;
};

} // namespace plexa
