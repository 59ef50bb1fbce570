// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/savingpresetview.h"

#include "ui/editors/editorform.h"
#include "ui/editors/tokeneditor.h"
#include "ui/widgets/look.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QSlider>

namespace plexa
{

SavingPresetView::SavingPresetView(QWidget *parent)
    : QWidget(parent)
    , m_layout(new QFormLayout(this))
    , m_tokens(new TokenEditor(QStringLiteral("filenameTokens"), tr("File name of the copies"),
                               tr("Insert a value that each copy has for itself, as its number"),
                               fileNameTokenGroups()))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setHorizontalSpacing(look::kLargeGap);
    m_layout->setVerticalSpacing(look::kGap);
    m_layout->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    addFileName();
    addFormat();
    setEnabled(false);
    m_binder.setEdited([this](const std::shared_ptr<SavingPreset> &preset, SavingField field,
                              const FieldValue &before,
                              const FieldValue &now) { Q_EMIT edited(preset, field, before, now); });
}

void SavingPresetView::setPreset(const std::shared_ptr<SavingPreset> &preset)
{
    m_binder.setPreset(preset);
    setEnabled(preset != nullptr);
}

void SavingPresetView::setValueOnPhoto(const TokenValue &value)
{
    m_tokens->field().setValueOnPhoto(value);
}

QWidget *SavingPresetView::popUp(SavingField field, const QString &purpose)
{
    auto *const box = new QComboBox;
    box->setObjectName(savingPresetField(field).name + QLatin1String("PopUp"));
    box->setAccessibleName(purpose);
    box->setToolTip(purpose);
    EditorForm::guard(*box);
    m_binder.bind(field, *box);
    return box;
}

void SavingPresetView::addFileName()
{
    m_tokens->field().setAcceptsLineBreaks(false);
    m_binder.bind(SavingField::FilenameTokens, m_tokens->field());
    m_layout->addRow(tr("File name"), m_tokens);

    auto *const letters = new QHBoxLayout;
    letters->setSpacing(look::kGap);
    letters->addWidget(popUp(SavingField::FileBaseNameCase, tr("Letters of the name")));
    letters->addWidget(popUp(SavingField::FileExtensionCase, tr("Letters of the extension")));
    letters->addStretch();
    m_layout->addRow(tr("Letters, extension"), letters);
}

void SavingPresetView::addFormat()
{
    m_layout->addRow(tr("Format"), popUp(SavingField::ImageFormat, tr("Format of the copies")));
    QWidget *const alternative = popUp(SavingField::AlternativeImageFormat,
                                       tr("Format of copies whose original has one that cannot be written"));
    m_layout->addRow(tr("Otherwise"), alternative);
    showWhile(alternative, &SavingPresetValues::hideAlternativeFormat);

    auto *const quality = new QWidget;
    auto *const row = new QHBoxLayout(quality);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(look::kGap);
    auto *const slider = new QSlider(Qt::Horizontal);
    auto *const box = new QSpinBox;
    slider->setObjectName(QStringLiteral("jpegQualitySlider"));
    box->setObjectName(QStringLiteral("jpegQualityTextField"));
    box->setSuffix(QStringLiteral(" %"));
    for (QWidget *const control : std::initializer_list<QWidget *>{slider, box}) {
        control->setAccessibleName(tr("Quality"));
        control->setToolTip(tr("A higher quality makes larger files"));
        EditorForm::guard(*control);
    }
    m_binder.bind(SavingField::JpegQuality, *slider);
    m_binder.bind(SavingField::JpegQuality, *box);
    row->addWidget(slider, 1);
    row->addWidget(box);
    m_layout->addRow(tr("Quality"), quality);
    showWhile(quality, &SavingPresetValues::hideJPEGQuality);

    auto *const compression = new QCheckBox(tr("Compress without loss (LZW)"));
    compression->setObjectName(QStringLiteral("tiffCompressionLZWCheckBox"));
    compression->setToolTip(tr("Makes smaller files of the same quality"));
    m_binder.bind(SavingField::TiffCompressionLZW, *compression);
    m_layout->addRow(QString(), compression);
    showWhile(compression, &SavingPresetValues::hideTiffCompression);
}

void SavingPresetView::showWhile(QWidget *row, bool (SavingPresetValues::*isHidden)() const)
{
    m_binder.apply([isHidden](const SavingPresetValues &values) { return !(values.*isHidden)(); },
                   [this, row](bool isShown) { m_layout->setRowVisible(row, isShown); });
}

} // namespace plexa
