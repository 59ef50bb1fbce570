// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/presetbinder.h"
#include "ui/editors/tokenmenu.h"

#include <QWidget>

class QFormLayout;

namespace plexa
{

class TokenEditor;

/// The editor of one saving preset: the name of the copies, their format, and what the format has. All
/// controls write to the preset at once. Main thread.
class SavingPresetView final : public QWidget
{
    Q_OBJECT

public:
    explicit SavingPresetView(QWidget *parent = nullptr);

    const std::shared_ptr<SavingPreset> &preset() const { return m_binder.preset(); }
    /// Null: the editor is disabled.
    void setPreset(const std::shared_ptr<SavingPreset> &preset);

    /// As TokenFieldWithInsertPopup has it.
    void setValueOnPhoto(const TokenValue &value);

Q_SIGNALS:
    /// The user has changed a field.
    void edited(const std::shared_ptr<plexa::SavingPreset> &preset, plexa::SavingField field,
                const plexa::FieldValue &before, const plexa::FieldValue &now);

private:
    void addFileName();
    void addFormat();
    void showWhile(QWidget *row, bool (SavingPresetValues::*isHidden)() const);
    QWidget *popUp(SavingField field, const QString &purpose);

    SavingPresetBinder m_binder;
    QFormLayout *const m_layout;
    TokenEditor *const m_tokens;
};

} // namespace plexa
