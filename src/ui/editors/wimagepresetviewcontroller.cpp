// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/wimagepresetviewcontroller.h"

#include "images/strips.h"
#include "ui/widgets/imagechooser.h"
#include "ui/widgets/imagewell.h"
#include "ui/widgets/linebreaks.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace plexa
{

WImagePresetViewController::WImagePresetViewController(PresetBinder &binder, QWidget *parent)
    : QWidget(parent)
    , m_binder(binder)
    , m_well(new ImageWell(tr("Picture of the watermark")))
    , m_facts(new QLabel)
{
    m_well->setObjectName(QStringLiteral("imageWell"));
    m_well->setToolTip(tr("Drop or paste a picture here, or click to choose a file"));
    m_facts->setObjectName(QStringLiteral("pictureFacts"));
    m_facts->setWordWrap(true);
    m_facts->setTextFormat(Qt::PlainText);
    auto *const browse = new QPushButton(tr("Choose…"));
    browse->setObjectName(QStringLiteral("browseButton"));
    browse->setToolTip(tr("Choose a picture file"));
    auto *const row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_facts, 1);
    row->addWidget(browse);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 0, 0, 8);
    layout->setSpacing(8);
    layout->addWidget(m_well);
    layout->addLayout(row);

    connect(browse, &QAbstractButton::clicked, this, &WImagePresetViewController::browseButtonClicked);
    connect(m_well, &ImageWell::clicked, this, &WImagePresetViewController::browseButtonClicked);
    connect(m_well, &ImageWell::fileChosen, this, [this](const QString &path) {
        readFile({path, m_binder.preset()});
    });
    connect(m_well, &ImageWell::imagePasted, this, [this](const QImage &image) {
        m_binder.write(FieldId::Image, WatermarkPicture::fromImage(image));
    });
    connect(&m_reading, &BackgroundJob::ended, this, [this] {
        if (m_files.empty())
            return;
        const File next = m_files.front();
        m_files.pop_front();
        readFile(next);
    });
    connect(&m_drawing, &BackgroundJob::ended, this, [this] {
        if (m_next)
            startShowing(*std::exchange(m_next, std::nullopt));
    });
    m_binder.bind(FieldId::Image,
                  [this](const FieldValue &value) { startShowing(std::get<WatermarkPicture>(value)); });
}

void WImagePresetViewController::browseButtonClicked()
{
    chooseImages(ChooserKind::Picture, window(),
                 [this, preset = std::weak_ptr(m_binder.preset())](const QStringList &paths) {
                     readFile({paths.value(0), preset});
                 });
}

void WImagePresetViewController::readFile(const File &file)
{
    if (m_reading.isRunning()) {
        m_files.push_back(file);
        return;
    }
    m_facts->setText(tr("Reading…"));
    m_reading.start([this, file] {
        Result<WatermarkPicture> picture = fail(outOfMemoryText());
        try {
            picture = WatermarkPicture::load(file.path);
        } catch (const std::bad_alloc &) {
        }
        m_reading.post([=, this] { take(file, picture); });
        return true;
    });
}

void WImagePresetViewController::take(const File &file, const Result<WatermarkPicture> &picture)
{
    const std::shared_ptr<WPreset> preset = file.preset.lock();
    if (!picture) {
        m_facts->setText(withLineBreaks(picture.error().text));
    } else if (preset) {
        m_binder.write(preset, FieldId::Image, *picture);
        if (preset == m_binder.preset()) // the picture may be the one that it had
            startShowing(*picture);
    }
}

/// Makes the small picture for the well.
void WImagePresetViewController::startShowing(const WatermarkPicture &picture)
{
    if (m_drawing.isRunning()) {
        m_next = picture;
        m_drawing.cancel();
        return;
    }
    m_drawing.start([this, picture, room = m_well->pixelSize()] {
        QImage image;
        try {
            if (!picture.size().isEmpty()) {
                const QSize size = picture.size().scaled(room, Qt::KeepAspectRatio).toSize();
                image =
                    picture.imageOfSize(size.expandedTo({1, 1}), [this] { return m_drawing.isCanceled(); });
            }
        } catch (const std::bad_alloc &) {
        }
        m_drawing.post([=, this] { show(picture, image); });
        return true;
    });
}

void WImagePresetViewController::show(const WatermarkPicture &picture, const QImage &image)
{
    if (m_next)
        return; // about a picture that is no longer wanted
    m_well->setImage(image);
    m_well->setHint(picture.isNull() ? tr("Drop a picture here") : tr("The picture cannot be shown"));
    showFacts(picture);
}

void WImagePresetViewController::showFacts(const WatermarkPicture &picture)
{
    const QSize size = picture.size().toSize();
    if (!picture.fault().isEmpty())
        m_facts->setText(withLineBreaks(tr("The picture cannot be read: %1").arg(picture.fault())));
    else if (picture.isNull())
        m_facts->setText(tr("No picture yet"));
    else if (picture.svg().isEmpty())
        m_facts->setText(tr("%1 x %2 pixels").arg(size.width()).arg(size.height()));
    else
        m_facts->setText(tr("Drawing, sharp at any size"));
}

} // namespace plexa
