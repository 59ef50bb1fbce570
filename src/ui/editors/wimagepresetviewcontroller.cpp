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
        start({path, {}, m_binder.preset()});
    });
    connect(m_well, &ImageWell::imagePasted, this, [this](const QImage &image) {
        m_binder.write(FieldId::Image, WatermarkPicture::fromImage(image));
    });
    connect(&m_job, &BackgroundJob::ended, this, [this] {
        if (m_next)
            start(*std::exchange(m_next, std::nullopt));
    });
    m_binder.bind(FieldId::Image, [this](const FieldValue &value) {
        start({{}, std::get<WatermarkPicture>(value), m_binder.preset()});
    });
}

void WImagePresetViewController::browseButtonClicked()
{
    chooseImages(ChooserKind::Picture, window(),
                 [this, preset = std::weak_ptr(m_binder.preset())](const QStringList &paths) {
                     start({paths.value(0), {}, preset});
                 });
}

/// Reads the file, if there is one, and makes the small picture for the well.
void WImagePresetViewController::start(const Task &task)
{
    if (m_job.isRunning()) {
        m_next = task;
        m_job.cancel();
        return;
    }
    if (!task.path.isEmpty())
        m_facts->setText(tr("Reading…"));
    m_job.start([this, task, room = m_well->pixelSize()] {
        try {
            const Result<WatermarkPicture> picture = task.path.isEmpty()
                                                         ? Result<WatermarkPicture>(task.picture)
                                                         : WatermarkPicture::load(task.path);
            QImage image;
            if (picture && !picture->size().isEmpty()) {
                const QSize size = picture->size().scaled(room, Qt::KeepAspectRatio).toSize();
                image = picture->imageOfSize(size.expandedTo({1, 1}), [this] { return m_job.isCanceled(); });
            }
            m_job.post([=, this] { show(task, picture, image); });
        } catch (const std::bad_alloc &) {
            m_job.post([=, this] { show(task, fail(outOfMemoryText()), {}); });
        }
        return true;
    });
}

void WImagePresetViewController::show(const Task &task, const Result<WatermarkPicture> &picture,
                                      const QImage &image)
{
    if (m_next || task.preset.lock() != m_binder.preset())
        return; // about a picture that is no longer wanted
    if (!picture) {
        m_facts->setText(withLineBreaks(picture.error().text));
        return;
    }
    if (!task.path.isEmpty()) {
        m_binder.write(FieldId::Image, *picture); // comes back here to be shown
        return;
    }
    m_well->setImage(image);
    m_well->setHint(picture->isNull() ? tr("Drop a picture here") : tr("The picture cannot be shown"));
    showFacts(*picture);
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
