// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/wtextpresetviewcontroller.h"

#include "platform/fontcatalog.h"
#include "ui/editors/tokeneditor.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/colorwell.h"
#include "ui/widgets/look.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSpinBox>
#include <QStringListModel>
#include <QVBoxLayout>

#include <algorithm>

namespace plexa
{
namespace
{

/// Families, each shown in its own face if that has letters.
class FontFamilies final : public QStringListModel
{
public:
    using QStringListModel::QStringListModel;
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::SizeHintRole)
            return QSize(0, m_rowHeight); // one height for all faces, without loading them
        if (role != Qt::FontRole)
            return QStringListModel::data(index, role);
        const QString family = QStringListModel::data(index, Qt::DisplayRole).toString();
        const QList<QFontDatabase::WritingSystem> systems = QFontDatabase::writingSystems(family);
        const bool hasLetters =
            systems.contains(QFontDatabase::Latin) && !systems.contains(QFontDatabase::Symbol);
        return hasLetters ? QFont(family, m_pointSize) : QVariant();
    }

private:
    const int m_pointSize = std::max(12, QGuiApplication::font().pointSize() + 1);
    const int m_rowHeight = QFontMetrics(QFont(QString(), m_pointSize)).height() + look::kGap;
};

// Of a family's name, in letters.
constexpr int kLongestFamily = 40;

} // namespace

WTextPresetViewController::WTextPresetViewController(PresetBinder &binder, const EditorServices &services,
                                                     QWidget *parent)
    : QWidget(parent)
    , m_binder(binder)
    , m_services(services)
    , m_tokens(new TokenEditor(QStringLiteral("textTokens"), tr("Text of the watermark"),
                               tr("Insert a value that each photo has for itself, as its date"),
                               watermarkTokenGroups()))
    , m_fontFamilyPopUp(new QComboBox)
    , m_fontStylePopUp(new QComboBox)
{
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_tokens);
    m_binder.bind(FieldId::TextTokens, m_tokens->field());
    layout->addWidget(makeFont());
    layout->addWidget(makeColors());
    m_binder.bind(FieldId::Font,
                  [this](const FieldValue &value) { updateFontFromWPreset(std::get<QString>(value)); });
}

TokenFieldWithInsertPopup &WTextPresetViewController::tokenField()
{
    return m_tokens->field();
}

QWidget *WTextPresetViewController::makeFont()
{
    auto *const form = new EditorForm(m_binder);
    m_fontFamilyPopUp->setObjectName(QStringLiteral("fontFamilyPopUp"));
    m_fontFamilyPopUp->setAccessibleName(tr("Font"));
    m_fontFamilyPopUp->setToolTip(tr("The font; type a part of its name to find it"));
    m_fontFamilyPopUp->setModel(new FontFamilies(m_services.fonts.families(), m_fontFamilyPopUp));
    m_fontFamilyPopUp->setEditable(true);
    m_fontFamilyPopUp->setInsertPolicy(QComboBox::NoInsert);
    m_fontFamilyPopUp->completer()->setCompletionMode(QCompleter::PopupCompletion);
    m_fontFamilyPopUp->completer()->setFilterMode(Qt::MatchContains);
    m_fontFamilyPopUp->completer()->popup()->installEventFilter(this);
    m_fontFamilyPopUp->view()->setMinimumWidth(kLongestFamily * fontMetrics().averageCharWidth());
    m_fontStylePopUp->setObjectName(QStringLiteral("fontStylePopUp"));
    m_fontStylePopUp->setAccessibleName(tr("Style of the font"));
    m_fontStylePopUp->setToolTip(tr("The style of the font"));
    for (QComboBox *const box : {m_fontFamilyPopUp, m_fontStylePopUp}) {
        box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        box->setMinimumContentsLength(8);
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        EditorForm::guard(*box);
    }
    connect(m_fontFamilyPopUp, &QComboBox::activated, this,
            [this](int index) { setFontFamily(m_fontFamilyPopUp->itemText(index)); });
    connect(m_fontFamilyPopUp->lineEdit(), &QLineEdit::editingFinished, this,
            [this] { m_fontFamilyPopUp->setEditText(m_fontFamily); }); // what is no family's name is dropped
    connect(m_fontStylePopUp, &QComboBox::activated, this,
            [this](int index) { setFontData(m_availableFonts.value(index)); });
    form->addRow(tr("Font"), m_fontFamilyPopUp);
    form->addRow(tr("Style"), m_fontStylePopUp);
    form->addRow(tr("Size"), {form->number(FieldId::FontSize, tr("Size of the text")),
                              form->unit(FieldId::FontSizeUnit, tr("Unit of the size"))});
    auto *const alignment = new ChoiceButtons(tr("Alignment of the lines"), ChoiceButtons::Look::Icons);
    alignment->setObjectName(QStringLiteral("textAlignmentSegments"));
    for (const auto &[text, name] : {std::pair(tr("Left"), "align-left"),
                                     {tr("Centered"), "align-center"},
                                     {tr("Right"), "align-right"}})
        alignment->addChoice(text, QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name))));
    m_binder.bind(FieldId::TextAlignment, *alignment);
    form->addRow(tr("Alignment"), alignment);
    return form;
}

QWidget *WTextPresetViewController::makeColors()
{
    auto *const form = new EditorForm(m_binder);
    const auto well = [this](FieldId field, const QString &purpose) {
        auto *const color = new ColorWell(purpose, ColorWell::Alpha::Chosen, m_services.defaults);
        color->setObjectName(wPresetField(field).name + QLatin1String("Well"));
        m_binder.bind(field, *color);
        return color;
    };
    form->addRow(tr("Color"), well(FieldId::FillColor, tr("Color of the text")));
    QWidget *const color = well(FieldId::StrokeColor, tr("Color of the outline"));
    QWidget *const width = form->number(FieldId::StrokeWidth,
                                        tr("Width of the outline, in percent of the size of the text; "
                                           "below 0: the outline alone"),
                                        QStringLiteral(" %"));
    form->addLabeledRow(form->check(FieldId::Stroke, tr("Outline")), {color, width});
    m_binder.apply([](const WPresetValues &values) { return values.stroke; },
                   [color, width](bool isShown) {
                       color->setVisible(isShown);
                       width->setVisible(isShown);
                   });
    return form;
}

/// Return takes the first of the families found, unless another one is selected.
bool WTextPresetViewController::eventFilter(QObject *watched, QEvent *event)
{
    auto *const popUp = m_fontFamilyPopUp->completer()->popup();
    if (watched != popUp || event->type() != QEvent::KeyPress || popUp->currentIndex().isValid())
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    const QString family = m_fontFamilyPopUp->completer()->currentCompletion();
    popUp->hide();
    setFontFamily(family);
    m_fontFamilyPopUp->setEditText(family);
    return true;
}

void WTextPresetViewController::setFontFamily(const QString &family)
{
    m_fontFamily = family;
    updateAvailableFontStyles(family);
    if (!m_availableFonts.isEmpty())
        setFontData(m_availableFonts.front());
}

void WTextPresetViewController::setFontData(const FontData &font)
{
    if (!font.fullName.isEmpty())
        m_binder.write(FieldId::Font, font.fullName);
}

void WTextPresetViewController::updateFontFromWPreset(const QString &fontName)
{
    const FontCatalog::Face face = m_services.fonts.face(fontName);
    m_fontFamily = face.family;
    m_fontFamilyPopUp->setCurrentIndex(m_fontFamilyPopUp->findText(face.family, Qt::MatchExactly));
    m_fontFamilyPopUp->setEditText(face.family);
    m_fontFamilyPopUp->lineEdit()->setPlaceholderText(
        face.family.isEmpty() ? tr("%1 is not installed").arg(fontName) : QString());
    updateAvailableFontStyles(face.family);
    int index = 0;
    for (; index < m_availableFonts.size(); ++index) {
        if (m_availableFonts[index].fullName == fontName)
            break;
    }
    m_fontStylePopUp->setCurrentIndex(index < m_availableFonts.size() ? index : -1);
}

void WTextPresetViewController::updateAvailableFontStyles(const QString &family)
{
    m_availableFonts.clear();
    m_fontStylePopUp->clear();
    if (!family.isEmpty()) {
        for (const QString &style : m_services.fonts.styles(family)) {
            m_availableFonts.append({m_services.fonts.postScriptName(family, style), family, style});
            m_fontStylePopUp->addItem(style);
            m_fontStylePopUp->setItemData(
                m_fontStylePopUp->count() - 1,
                QFontDatabase::font(family, style, m_fontStylePopUp->font().pointSize()), Qt::FontRole);
        }
    }
    m_fontStylePopUp->setEnabled(!m_availableFonts.isEmpty());
}

} // namespace plexa
