// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/editorform.h"

#include <QStringList>

class QComboBox;

namespace plexa
{

class TokenEditor;
class TokenFieldWithInsertPopup;

/// What a text watermark has beside the rest: its text with tokens, font, size, alignment and colors. Main
/// thread.
class WTextPresetViewController final : public QWidget
{
    Q_OBJECT

public:
    /// A style of a family. An archive knows the font by its full name.
    struct FontData {
        QString fullName; ///< the PostScript name, as presets have it
        QString family;
        QString style;
    };

    /// @param binder  outlives the editor, like the services
    WTextPresetViewController(PresetBinder &binder, const EditorServices &services,
                              QWidget *parent = nullptr);

    TokenFieldWithInsertPopup &tokenField();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *makeFont();
    QWidget *makeColors();
    void setFontFamily(const QString &family);
    void setFontData(const FontData &font);
    void updateFontFromWPreset(const QString &fontName);
    void updateAvailableFontStyles(const QString &family);

    PresetBinder &m_binder;
    const EditorServices m_services;
    TokenEditor *const m_tokens;
    QComboBox *const m_fontFamilyPopUp;
    QComboBox *const m_fontStylePopUp;
    QString m_fontFamily;
    QList<FontData> m_availableFonts;
};

} // namespace plexa
