// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/wpresetviewcontroller.h"

#include "presets/presetsstore.h"
#include "ui/editors/wimagepresetviewcontroller.h"
#include "ui/editors/wtextpresetviewcontroller.h"
#include "ui/widgets/anglewheel.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/colorwell.h"
#include "ui/widgets/foldingsection.h"
#include "ui/widgets/helpbutton.h"
#include "ui/widgets/look.h"
#include "watermark/watermarklayout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QtMath>

#include <cmath>

namespace plexa
{
namespace
{

QIcon icon(const char *name)
{
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

/// Blend modes as other programs group them.
void fillBlendModes(QComboBox &popUp)
{
    for (const std::initializer_list<const char *> group : {std::initializer_list<const char *>{"Normal"},
                                                            {"Darken", "Multiply", "Color Burn"},
                                                            {"Lighten", "Screen", "Color Dodge"},
                                                            {"Overlay", "Soft Light", "Hard Light"},
                                                            {"Difference", "Exclusion"},
                                                            {"Hue", "Saturation", "Color", "Luminosity"}}) {
        if (popUp.count() > 0)
            popUp.insertSeparator(popUp.count());
        for (const char *name : group)
            popUp.addItem(shownChoice(QLatin1String(name)), QLatin1String(name));
    }
}

/// What the turned watermark takes of the photo's width, in percent, apart from its own height.
double widthAcross(const WPresetValues &values)
{
    const bool isOnItsSide = values.rotation == 1 || values.rotation == 2;
    const double degrees = double(values.angle.value_or(0)) + (isOnItsSide ? 90 : 0);
    return std::abs(values.width.value_or(0) * std::cos(qDegreesToRadians(degrees)));
}

} // namespace

WPresetViewController::WPresetViewController(const EditorServices &services, SavingPresetRow savingPreset,
                                             QWidget *parent)
    : QScrollArea(parent)
    , m_services(services)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // its controls have it
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *const content = new QWidget;
    auto *const layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 4, 0);
    layout->setSpacing(4);
    layout->addWidget(makeType());
    m_text = new WTextPresetViewController(m_binder, services);
    addSection(*layout, tr("Text"), "text", m_text, false);
    m_textSection = m_text->parentWidget();
    m_image = new WImagePresetViewController(m_binder);
    addSection(*layout, tr("Picture"), "picture", m_image, false);
    m_imageSection = m_image->parentWidget();
    addSection(*layout, tr("Size and Position"), "position", makeSizeAndPosition(), false);
    // Folded at first, so that a small window shows what is needed most.
    addSection(*layout, tr("Angle and Tiling"), "angle", makeAngleAndTiling(), true);
    addSection(*layout, tr("Look"), "look", makeLook(), true);
    addSection(*layout, tr("Shadow"), "shadow", makeShadow(), true);
    addSection(*layout, tr("Box"), "box", makeBox(), true);
    if (savingPreset == SavingPresetRow::Shown)
        addSection(*layout, tr("Saving"), "saving", makeSaving(), true);
    layout->addStretch();
    EditorForm::alignLabels(*content);
    setWidget(content);
    m_binder.bind(FieldId::Type, [this](const FieldValue &) { updateTypeSubview(); });
    m_binder.setEdited([this](const std::shared_ptr<WPreset> &preset, FieldId field, const FieldValue &before,
                              const FieldValue &now) { Q_EMIT edited(preset, field, before, now); });
    widget()->setEnabled(false);
    updateTypeSubview();
}

/// Wide enough for its controls, since it does not scroll sideways.
QSize WPresetViewController::minimumSizeHint() const
{
    const int width = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
    return {width, QScrollArea::minimumSizeHint().height()};
}

void WPresetViewController::setPreset(const std::shared_ptr<WPreset> &preset)
{
    m_binder.setPreset(preset);
    widget()->setEnabled(preset != nullptr);
    updateTypeSubview();
}

void WPresetViewController::addSection(QVBoxLayout &layout, const QString &title, const char *name,
                                       QWidget *content, bool isFoldedAtFirst)
{
    const QString key = QStringLiteral("editorSectionFolded.") + QLatin1String(name);
    layout.addWidget(new FoldingSection(title, {key, isFoldedAtFirst}, content, m_services.defaults));
}

void WPresetViewController::updateTypeSubview()
{
    const bool isImage = preset() && preset()->type() == QLatin1String("Image");
    m_imageSection->setVisible(preset() && isImage);
    m_textSection->setVisible(preset() && !isImage);
}

QWidget *WPresetViewController::makeType()
{
    auto *const form = new EditorForm(m_binder);
    auto *const type = new ChoiceButtons(tr("Kind of watermark"), ChoiceButtons::Look::RadioButtons);
    type->setObjectName(QStringLiteral("typeRadioButtons"));
    type->addChoice(tr("Text"));
    type->addChoice(tr("Picture"));
    m_binder.bind(FieldId::Type, *type);
    form->addRow(tr("Kind"), type);
    return form;
}

QWidget *WPresetViewController::makeSizeAndPosition()
{
    auto *const form = new EditorForm(m_binder);
    form->addRow(tr("Width"), {form->number(FieldId::Width, tr("Width of the watermark")),
                               form->unit(FieldId::WidthUnit, tr("Unit of the width"))});
    auto *const anchor = new ChoiceButtons(tr("Position"), ChoiceButtons::Look::RadioButtons, 3);
    anchor->setObjectName(QStringLiteral("anchorPointRadioButtons"));
    for (const QString &place :
         {tr("Top left"), tr("Top center"), tr("Top right"), tr("Middle left"), tr("Center"),
          tr("Middle right"), tr("Bottom left"), tr("Bottom center"), tr("Bottom right")})
        anchor->addChoice(place);
    m_binder.bind(FieldId::AnchorPoint, *anchor);
    form->addRow(tr("Position"), {anchor, offsetHelpButton()});
    QWidget *const across = form->addRow(
        tr("From side"), {form->number(FieldId::OffsetHorizontal, tr("Distance from the side of the photo")),
                          form->unit(FieldId::OffsetHorizontalUnit, tr("Unit of the distance"))});
    QWidget *const down = form->addRow(
        tr("From edge"),
        {form->number(FieldId::OffsetVertical, tr("Distance from the upper or lower edge of the photo")),
         form->unit(FieldId::OffsetVerticalUnit, tr("Unit of the distance"))});
    form->showWhile({across}, [this](const WPresetValues &) { return !preset()->offsetHorizontalHidden(); });
    form->showWhile({down}, [this](const WPresetValues &) { return !preset()->offsetVerticalHidden(); });
    return form;
}

/// Explains the distances, while there are any.
QWidget *WPresetViewController::offsetHelpButton()
{
    auto *const help = new HelpButton(QStringLiteral("watermark.html#distances"), tr("About the distances"),
                                      tr("Explain the distances"));
    help->setObjectName(QStringLiteral("offsetLabelHelpButton"));
    help->setWhatsThis(tr("The distances are between the watermark and the nearest sides of the photo. "
                          "Below 0, the watermark reaches beyond the photo.\n\nTo move the watermark of "
                          "one photo only, drag it in the preview."));
    m_binder.apply([this](const WPresetValues &) { return !preset()->offsetHidden(); },
                   [help](bool isShown) { help->setVisible(isShown); });
    return help;
}

/// A wheel and a field for the same angle.
QWidget *WPresetViewController::angleRow(EditorForm &form, FieldId field, const QString &purpose)
{
    const QString name = wPresetField(field).name;
    auto *const wheel = new AngleWheel(purpose);
    wheel->setObjectName(name + QLatin1String("Slider"));
    EditorForm::guard(*wheel);
    connect(wheel, &QAbstractSlider::valueChanged, this, [this, field](int position) {
        m_binder.write(field, FloatNumber(float(AngleWheel::degreesAt(position))));
    });
    m_binder.bind(field, [wheel](const FieldValue &value) {
        const double degrees = double(std::get<FloatNumber>(value).value_or(0.0F));
        wheel->setValue(AngleWheel::nearestPosition(degrees));
    });
    return form.addRow(tr("Angle"), {wheel, form.angle(field, purpose)});
}

QWidget *WPresetViewController::makeAngleAndTiling()
{
    auto *const form = new EditorForm(m_binder);
    angleRow(*form, FieldId::Angle, tr("Angle of the watermark, counter-clockwise"));
    auto *const rotation = new ChoiceButtons(tr("Quarter turns"), ChoiceButtons::Look::Icons);
    rotation->setObjectName(QStringLiteral("rotationSegments"));
    rotation->addChoice(tr("Not turned"), icon("letter-upright"));
    rotation->addChoice(tr("A quarter to the left"), icon("letter-left"));
    rotation->addChoice(tr("A quarter to the right"), icon("letter-right"));
    rotation->addChoice(tr("Upside down"), icon("letter-down"));
    m_binder.bind(FieldId::Rotation, *rotation);
    form->addRow(tr("Turn"), rotation);
    auto *const flip = new ChoiceButtons(tr("Mirroring"), ChoiceButtons::Look::Icons);
    flip->setObjectName(QStringLiteral("flipSegments"));
    flip->addChoice(tr("Not mirrored"), icon("letter-upright"));
    flip->addChoice(tr("Left to right"), icon("letter-mirrored"));
    flip->addChoice(tr("Top to bottom"), icon("letter-flipped"));
    flip->addChoice(tr("Both"), icon("letter-down"));
    m_binder.bind(FieldId::Flip, *flip);
    form->addRow(tr("Mirror"), flip);

    form->addRow({}, form->check(FieldId::ReplicateHorizontal, tr("Repeat across the photo")));
    QWidget *const across = form->addRow(
        tr("Gap"), {form->number(FieldId::ReplicateHorizontalDistance, tr("Gap between the columns")),
                    form->unit(FieldId::ReplicateHorizontalDistanceUnit, tr("Unit of the gap"))});
    auto *const tooWide = new QLabel(tr("For several columns, make the watermark narrower."));
    tooWide->setWordWrap(true);
    tooWide->setForegroundRole(QPalette::PlaceholderText);
    QWidget *const tooWideRow = form->addRow({}, tooWide);
    form->addRow({}, form->check(FieldId::ReplicateVertical, tr("Repeat down the photo")));
    QWidget *const down =
        form->addRow(tr("Gap"), {form->number(FieldId::ReplicateVerticalDistance, tr("Gap between the rows")),
                                 form->unit(FieldId::ReplicateVerticalDistanceUnit, tr("Unit of the gap"))});
    form->showWhile({across}, [](const WPresetValues &values) { return values.replicateHorizontal; });
    form->showWhile({down}, [](const WPresetValues &values) { return values.replicateVertical; });
    form->showWhile({tooWideRow}, [](const WPresetValues &values) {
        const bool isRelative = baseLength(values.widthUnit, QSize(1, 1)).has_value();
        return values.replicateHorizontal && isRelative && widthAcross(values) > 66;
    });
    return form;
}

QWidget *WPresetViewController::makeLook()
{
    auto *const form = new EditorForm(m_binder);
    auto *const opacity = new QSlider(Qt::Horizontal);
    opacity->setObjectName(QStringLiteral("opacitySlider"));
    opacity->setAccessibleName(tr("Opacity"));
    opacity->setToolTip(tr("How much of the photo the watermark covers"));
    opacity->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    EditorForm::guard(*opacity);
    m_binder.bind(FieldId::Opacity, *opacity);
    form->addRow(tr("Opacity"),
                 {opacity, form->number(FieldId::Opacity, tr("Opacity"), QStringLiteral(" %"))});
    auto *const mode = new QComboBox;
    mode->setObjectName(QStringLiteral("blendModePopUp"));
    mode->setAccessibleName(tr("Blend mode"));
    mode->setToolTip(tr("How the colors of watermark and photo are mixed"));
    mode->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    fillBlendModes(*mode);
    EditorForm::guard(*mode);
    m_binder.bind(FieldId::BlendMode, *mode);
    form->addRow(tr("Blending"), mode);
    return form;
}

QWidget *WPresetViewController::makeShadow()
{
    auto *const form = new EditorForm(m_binder);
    form->addRow({}, form->check(FieldId::Shadow, tr("Draw a shadow")));
    QWidget *const blur =
        form->addRow(tr("Blur"), form->number(FieldId::ShadowBlur, tr("Blur of the shadow"), tr(" px")));
    QWidget *const offset =
        form->addRow(tr("Distance"), {form->number(FieldId::ShadowOffset, tr("Distance of the shadow")),
                                      form->unit(FieldId::ShadowOffsetUnit, tr("Unit of the distance"))});
    QWidget *const angle = angleRow(*form, FieldId::ShadowAngle,
                                    tr("Direction of the shadow, counter-clockwise from the right"));
    form->showWhile({blur, offset, angle}, [](const WPresetValues &values) { return values.shadow; });
    return form;
}

QWidget *WPresetViewController::makeBox()
{
    auto *const form = new EditorForm(m_binder);
    form->addRow({}, form->check(FieldId::Background, tr("Draw a box behind the watermark")));
    auto *const color = new ColorWell(tr("Color of the box"), ColorWell::Alpha::None, m_services.defaults);
    color->setObjectName(QStringLiteral("backgroundColorWell"));
    m_binder.bind(FieldId::BackgroundColor, *color);
    QWidget *const look = form->addRow(
        tr("Color"),
        {color, form->number(FieldId::BackgroundOpacity, tr("Opacity of the box"), QStringLiteral(" %"))});
    QWidget *const width =
        form->addRow({}, form->check(FieldId::BackgroundFullWidth, tr("As wide as the photo")));
    QWidget *const unit =
        form->addRow(tr("Padding in"), form->unit(FieldId::BackgroundPaddingUnit, tr("Unit of the padding")));
    QWidget *const down = form->addRow(
        tr("Top, bottom"), {form->number(FieldId::BackgroundPaddingTop, tr("Padding at the top")),
                            form->number(FieldId::BackgroundPaddingBottom, tr("Padding at the bottom"))});
    QWidget *const across = form->addRow(
        tr("Left, right"), {form->number(FieldId::BackgroundPaddingLeft, tr("Padding at the left")),
                            form->number(FieldId::BackgroundPaddingRight, tr("Padding at the right"))});
    form->showWhile({look, width, unit, down}, [](const WPresetValues &values) { return values.background; });
    form->showWhile({across}, [](const WPresetValues &values) {
        return values.background && !values.backgroundFullWidth;
    });
    return form;
}

QWidget *WPresetViewController::makeSaving()
{
    auto *const form = new EditorForm(m_binder);
    auto *const popUp = new QComboBox;
    popUp->setObjectName(QStringLiteral("savingPresetPopUp"));
    popUp->setAccessibleName(tr("Saving preset"));
    popUp->setToolTip(tr("The saving preset for photos with this watermark"));
    popUp->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    popUp->setMinimumContentsLength(8);
    popUp->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon); // of any name
    EditorForm::guard(*popUp);
    form->addRow(tr("Save with"), popUp);

    PresetList<SavingPreset> &list = m_services.store.savingPresetList();
    const auto fill = [this, popUp] { fillSavingPresets(*popUp); };
    for (const auto signal :
         {&PresetListSignals::inserted, &PresetListSignals::removed, &PresetListSignals::moved})
        connect(&list, signal, this, fill);
    connect(&list, &PresetListSignals::edited, this, fill);
    m_binder.bind(FieldId::AssignedSavingPreset, [fill](const FieldValue &) { fill(); });
    connect(popUp, &QComboBox::activated, this, [this](int index) {
        const SavingPresetList &presets = m_services.store.savingPresets();
        const SavingPresetPtr chosen =
            index > 0 ? SavingPresetPtr(presets[static_cast<std::size_t>(index) - 1]) : nullptr;
        m_binder.write(FieldId::AssignedSavingPreset, chosen);
    });
    fill();
    return form;
}

void WPresetViewController::fillSavingPresets(QComboBox &popUp)
{
    const SavingPresetPtr assigned = preset() ? preset()->assignedSavingPreset() : nullptr;
    const SavingPresetList &presets = m_services.store.savingPresets();
    popUp.clear();
    popUp.addItem(tr("None"));
    for (const std::shared_ptr<SavingPreset> &savingPreset : presets) {
        popUp.addItem(savingPreset->name());
        if (savingPreset == assigned)
            popUp.setCurrentIndex(popUp.count() - 1);
    }
    popUp.setEnabled(!presets.empty());
}

} // namespace plexa
