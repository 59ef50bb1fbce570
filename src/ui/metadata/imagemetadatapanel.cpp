// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/metadata/imagemetadatapanel.h"

#include "app/appcontroller.h"
#include "platform/identity.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/helpbutton.h"
#include "ui/widgets/look.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTabWidget>
#include <QToolButton>
#include <QUrlQuery>

#include <algorithm>

namespace plexa
{
namespace
{

constexpr QSize kFirstSize(480, 640);

// No other class reads this setting.
const QString kGeometryKey = QStringLiteral("imageMetadataPanelGeometry");

/// A clearing in the menu and on its button, for so many photos.
QString clearingText(MetadataClearing clearing, int count)
{
    const QString photos =
        count == 1 ? ImageMetadataPanel::tr("1 Photo") : ImageMetadataPanel::tr("%n Photos", nullptr, count);
    switch (clearing) {
    case MetadataClearing::All:
        return ImageMetadataPanel::tr("Clear All Metadata of %1").arg(photos);
    case MetadataClearing::AllButCopyright:
        return ImageMetadataPanel::tr("Clear All but Copyright of %1").arg(photos);
    case MetadataClearing::AllButCopyrightAndContact:
        return ImageMetadataPanel::tr("Clear All but Copyright and Contact of %1").arg(photos);
    case MetadataClearing::Gps:
        return ImageMetadataPanel::tr("Clear GPS Data of %1").arg(photos);
    case MetadataClearing::Iptc:
        return ImageMetadataPanel::tr("Clear IPTC Data of %1").arg(photos);
    case MetadataClearing::Exif:
        break;
    }
    return ImageMetadataPanel::tr("Clear EXIF Data of %1").arg(photos);
}

QString clearingToolTip(MetadataClearing clearing)
{
    switch (clearing) {
    case MetadataClearing::All:
        return ImageMetadataPanel::tr("Copies get no metadata of the photos");
    case MetadataClearing::AllButCopyright:
        return ImageMetadataPanel::tr("Copies keep the copyright notice alone");
    case MetadataClearing::AllButCopyrightAndContact:
        return ImageMetadataPanel::tr("Copies keep copyright, creator and contact");
    case MetadataClearing::Gps:
        return ImageMetadataPanel::tr("Copies do not tell where the photos were taken");
    case MetadataClearing::Iptc:
        return ImageMetadataPanel::tr("Copies get no title, caption, keywords, creator or copyright of IPTC");
    case MetadataClearing::Exif:
        break;
    }
    return ImageMetadataPanel::tr("Copies get no facts of camera, lens and exposure");
}

/// The shortest text that reads back as the same number.
QString plainNumber(const QVariant &number)
{
    return QString::number(number.toDouble(), 'f', QLocale::FloatingPointShortest);
}

} // namespace

ImageMetadataPanel::ImageMetadataPanel(const Services &services)
    : QWidget(nullptr, Qt::Window)
    , m_services(services)
    , m_editing(services.controller.metadataEditing())
    , m_photosLabel(new QLabel)
    , m_tabs(new QTabWidget)
    , m_messageLabel(new QLabel)
{
    setObjectName(QStringLiteral("ImageMetadataPanel"));
    setWindowTitle(tr("Image Metadata"));
    m_photosLabel->setObjectName(QStringLiteral("photosLabel"));
    m_photosLabel->setTextFormat(Qt::PlainText);
    m_tabs->setObjectName(QStringLiteral("tabView"));
    m_tabs->setDocumentMode(true);
    addClearActions();
    for (const MetadataPage &page : metadataPages())
        m_tabs->addTab(makePage(page), QCoreApplication::translate("MetadataPages", page.title));
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(look::kLargeGap, look::kLargeGap, look::kLargeGap, look::kLargeGap);
    layout->setSpacing(look::kGap);
    layout->addWidget(m_photosLabel);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(makeBottomBar());

    const auto &pages = metadataPages();
    const QString last = services.defaults.stringForKey(settings::lastMetadataPanelTabID);
    const auto page = std::find_if(pages.begin(), pages.end(), [&last](const MetadataPage &candidate) {
        return last == QLatin1StringView(candidate.id);
    });
    m_tabs->setCurrentIndex(page == pages.end() ? 0 : static_cast<int>(page - pages.begin()));
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
        m_services.defaults.setObject(settings::lastMetadataPanelTabID,
                                      QLatin1StringView(metadataPages()[static_cast<std::size_t>(index)].id));
        refresh();
    });
    connect(&m_editing, &MetadataEditing::changed, this, &ImageMetadataPanel::refresh);
    ImageSet &set = services.controller.imageSet();
    connect(&set.selection(), &ImageSelection::selectionChanged, this, &ImageMetadataPanel::followSelection);
    connect(&set, &ImageSet::imageListModeChanged, this, &ImageMetadataPanel::followSelection);
    BatchSave &save = services.controller.batchSave();
    connect(&save, &BatchSave::started, this, [this] { setSaving(true); });
    connect(&save, &BatchSave::finished, this, [this] { setSaving(false); });
    m_isSaving = save.isSavingInProgress();
    updateExifFieldsState();
    restoreGeometryFromSettings();
}

ImageMetadataPanel::~ImageMetadataPanel() = default;

void ImageMetadataPanel::addClearActions()
{
    for (const MetadataClearingRow &row : metadataClearings()) {
        auto *const action = new QAction(this);
        action->setObjectName(QStringLiteral("clear-") + row.name);
        action->setToolTip(clearingToolTip(row.clearing));
        connect(action, &QAction::triggered, this, [this, clearing = row.clearing] { clear(clearing); });
        m_clearActions.emplace_back(row.clearing, action);
    }
}

QWidget *ImageMetadataPanel::makePage(const MetadataPage &page)
{
    const QLatin1StringView id(page.id);
    auto *const content = new QWidget;
    auto *const layout = new QVBoxLayout(content);
    layout->setContentsMargins(look::kGap, look::kLargeGap, look::kGap, look::kLargeGap);
    layout->setSpacing(look::kLargeGap);
    if (id == QLatin1StringView("EXIF"))
        layout->addWidget(makeExifCheckBox());
    auto *const form = new QFormLayout;
    form->setHorizontalSpacing(look::kLargeGap);
    form->setVerticalSpacing(look::kGap);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows); // with large fonts
    addRows(*form, page);
    layout->addLayout(form);
    if (id == QLatin1StringView("GPS"))
        layout->addWidget(makeMapRow());
    layout->addStretch();
    for (const auto &[tab, clearing] : {std::pair("EXIF", MetadataClearing::Exif),
                                        {"IPTC", MetadataClearing::Iptc},
                                        {"GPS", MetadataClearing::Gps}}) {
        if (id == QLatin1StringView(tab))
            layout->addWidget(makeClearButton(clearing), 0, Qt::AlignLeft);
    }
    auto *const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(content);
    return area;
}

void ImageMetadataPanel::addRows(QFormLayout &form, const MetadataPage &page)
{
    auto &rows = m_rows.emplace_back();
    for (const MetadataPageRow &spec : page.rows) {
        auto row = MetadataFieldRow::make(spec, m_editing);
        connect(row.get(), &MetadataFieldRow::refused, m_messageLabel, &QLabel::setText);
        auto *const label = new QLabel(spec.shownLabel());
        label->setBuddy(row->widget());
        // Beside the first line of a field that has several.
        label->setFixedHeight(QLineEdit().sizeHint().height());
        form.addRow(label, row->widget());
        rows.push_back(std::move(row));
    }
}

QWidget *ImageMetadataPanel::makeExifCheckBox()
{
    m_exifCheckBox = new QCheckBox(tr("&Edit EXIF fields"));
    m_exifCheckBox->setObjectName(QStringLiteral("enableExifEditingCheckbox"));
    m_exifCheckBox->setToolTip(tr("Protects what the camera has written from being changed by mistake"));
    m_exifCheckBox->setChecked(m_services.defaults.boolForKey(settings::enableExifDataEditing));
    connect(m_exifCheckBox, &QCheckBox::toggled, this, [this](bool isOn) {
        commitEditing();
        m_services.defaults.setObject(settings::enableExifDataEditing, isOn);
        updateExifFieldsState();
    });
    return m_exifCheckBox;
}

QWidget *ImageMetadataPanel::makeMapRow()
{
    m_mapButton = new QPushButton(tr("Show on &Map"));
    m_mapButton->setObjectName(QStringLiteral("showInMapsButton"));
    connect(m_mapButton, &QAbstractButton::clicked, this, &ImageMetadataPanel::showOnMap);
    m_mapLabel = new QLabel;
    m_mapLabel->setObjectName(QStringLiteral("mapDescriptionLabel"));
    m_mapLabel->setTextFormat(Qt::PlainText);
    m_mapLabel->setWordWrap(true);
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(m_mapButton, 0, Qt::AlignTop);
    layout->addWidget(m_mapLabel, 1);
    return row;
}

QPushButton *ImageMetadataPanel::makeClearButton(MetadataClearing clearing)
{
    const auto found = std::find_if(m_clearActions.begin(), m_clearActions.end(),
                                    [clearing](const auto &entry) { return entry.first == clearing; });
    QAction *const action = found->second;
    auto *const button = new QPushButton;
    button->setObjectName(action->objectName() + QStringLiteral("Button"));
    button->setToolTip(action->toolTip());
    connect(button, &QAbstractButton::clicked, action, &QAction::trigger);
    connect(action, &QAction::changed, button, [button, action] {
        button->setText(action->text());
        button->setEnabled(action->isEnabled());
    });
    return button;
}

/// The message, the menu of clearings, and undo.
QWidget *ImageMetadataPanel::makeBottomBar()
{
    m_messageLabel->setObjectName(QStringLiteral("messageLabel"));
    m_messageLabel->setTextFormat(Qt::PlainText);
    m_messageLabel->setWordWrap(true);
    QPalette palette = m_messageLabel->palette();
    palette.setColor(QPalette::WindowText, look::kWarningText);
    m_messageLabel->setPalette(palette);
    auto *const menu = new QMenu(this);
    menu->setToolTipsVisible(true);
    for (const auto &[clearing, action] : m_clearActions) {
        if (clearing == MetadataClearing::Gps)
            menu->addSeparator();
        menu->addAction(action);
    }
    auto *const clearButton = new QPushButton(tr("&Clear"));
    clearButton->setObjectName(QStringLiteral("clearMetadataButton"));
    clearButton->setToolTip(tr("Remove metadata from the selected photos; this can be undone"));
    clearButton->setMenu(menu);
    auto *const bar = new QWidget;
    auto *const layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kSmallGap);
    layout->addWidget(clearButton);
    layout->addWidget(m_messageLabel, 1);
    for (const ActionId id : {ActionId::Undo, ActionId::Redo}) {
        layout->addWidget(m_services.actions.makeButton(id, bar));
        addAction(m_services.actions.action(id));
    }
    layout->addWidget(
        (new HelpButton(QStringLiteral("metadata.html"), tr("Help on metadata"), tr("Explain metadata (F1)")))
            ->withKey());
    auto *const close = new QAction(tr("Close"), this);
    close->setShortcut({Qt::CTRL | Qt::Key_W});
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
    addAction(m_services.actions.action(ActionId::ToggleMetadata));
    return bar;
}

void ImageMetadataPanel::restoreGeometryFromSettings()
{
    resize(kFirstSize.boundedTo(screen()->availableSize()));
    restoreGeometry(QByteArray::fromBase64(m_services.defaults.stringForKey(kGeometryKey).toLatin1()));
}

void ImageMetadataPanel::toggle()
{
    if (isVisible()) {
        close();
        return;
    }
    if (m_services.controller.imageSet().selection().selectedIndexes().isEmpty())
        return;
    show();
    raise();
    activateWindow();
}

void ImageMetadataPanel::commitEditing()
{
    for (const auto &page : m_rows) {
        for (const auto &row : page)
            row->commit();
    }
}

void ImageMetadataPanel::followSelection()
{
    if (!isVisible())
        return;
    commitEditing();
    const ImageSet &set = m_services.controller.imageSet();
    if (set.selection().selectedIndexes().isEmpty() || !set.imageListIsInBrowserMode())
        close();
    else
        m_editing.setImages(set.selectedImages());
}

void ImageMetadataPanel::setSaving(bool isSaving)
{
    commitEditing();
    m_isSaving = isSaving;
    refresh();
}

void ImageMetadataPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    m_editing.setImages(m_services.controller.imageSet().selectedImages());
    refresh();
    Q_EMIT shownChanged();
}

void ImageMetadataPanel::closeEvent(QCloseEvent *event)
{
    commitEditing();
    m_services.defaults.setObject(kGeometryKey, QString::fromLatin1(saveGeometry().toBase64()));
    QWidget::closeEvent(event);
}

void ImageMetadataPanel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous()) // minimized
        return;
    m_editing.setImages({});
    Q_EMIT shownChanged();
}

void ImageMetadataPanel::refresh()
{
    if (!isVisible() || m_editing.images().empty())
        return;
    const ImageList &images = m_editing.images();
    const bool isReady = m_editing.isReady();
    const auto count = static_cast<int>(images.size());
    const QString photos =
        count == 1 ? QFileInfo(images.front()->path()).fileName() : tr("%n photos", nullptr, count);
    m_photosLabel->setText(isReady ? photos : tr("%1 (still being read)").arg(photos));
    m_messageLabel->clear();
    m_tabs->setEnabled(isReady && !m_isSaving);
    for (const auto &row : m_rows[static_cast<std::size_t>(m_tabs->currentIndex())])
        row->refresh();
    refreshClearings();
    refreshMap();
}

void ImageMetadataPanel::refreshClearings()
{
    for (const auto &[clearing, action] : m_clearActions) {
        action->setText(clearingText(clearing, static_cast<int>(m_editing.images().size())));
        action->setEnabled(m_tabs->isEnabled());
    }
}

void ImageMetadataPanel::refreshMap()
{
    const MetadataEditing::Common latitude = m_editing.common(MetadataProperty::gpsLatitude);
    const MetadataEditing::Common longitude = m_editing.common(MetadataProperty::gpsLongitude);
    const bool isOnePosition = latitude.value.isValid() && longitude.value.isValid();
    m_mapButton->setEnabled(isOnePosition);
    if (!isOnePosition) {
        m_mapButton->setToolTip(tr("Select photos that were taken at one known position"));
        m_mapLabel->setText(latitude.isMultiple || longitude.isMultiple
                                ? tr("The photos were taken at several positions.")
                                : tr("The position is not known."));
        return;
    }
    m_mapButton->setToolTip(
        tr("Open %1 in the browser").arg(mapPage(latitude.value, longitude.value).toString()));
    const auto text = [this](MetadataEditing::Reader reader) {
        return m_editing.common(reader).value.toString();
    };
    QStringList lines{text(&ImageMetadata::gpsLatitudeFull) + QStringLiteral(", ") +
                      text(&ImageMetadata::gpsLongitudeFull)};
    if (const QString altitude = text(&ImageMetadata::gpsAltitudeString); !altitude.isEmpty())
        lines.append(altitude);
    m_mapLabel->setText(lines.join(u'\n'));
}

void ImageMetadataPanel::updateExifFieldsState()
{
    const bool isEditable = m_services.defaults.boolForKey(settings::enableExifDataEditing);
    for (const auto &page : m_rows) {
        for (const auto &row : page) {
            const MetadataGroup group = metadataProperty(row->row().property).group;
            const bool isExif = group == MetadataGroup::Exif || group == MetadataGroup::ExifAux ||
                                group == MetadataGroup::Tiff;
            if (isExif && row->row().control != MetadataControl::Readout)
                row->setEditable(isEditable);
        }
    }
}

QUrl ImageMetadataPanel::mapPage(const QVariant &latitude, const QVariant &longitude)
{
    QUrl page(QString::fromUtf8(identity::kWebSite) + QStringLiteral("/map"));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("ll"), plainNumber(latitude) + u',' + plainNumber(longitude));
    page.setQuery(query);
    return page;
}

void ImageMetadataPanel::showOnMap()
{
    const QVariant latitude = m_editing.common(MetadataProperty::gpsLatitude).value;
    const QVariant longitude = m_editing.common(MetadataProperty::gpsLongitude).value;
    if (latitude.isValid() && longitude.isValid())
        m_services.openUrl(mapPage(latitude, longitude));
}

void ImageMetadataPanel::clear(MetadataClearing clearing)
{
    commitEditing();
    m_editing.clear(clearing);
}

} // namespace plexa
