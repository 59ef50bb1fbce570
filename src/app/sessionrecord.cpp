// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/sessionrecord.h"

#include "app/appcontroller.h"
#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/atomicfile.h"
#include "presets/presetsstore.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr qint64 kMaxBytes = 100'000'000;
constexpr int kQuickPreset = -1; // in the place of a row

const QString kPhotos = QStringLiteral("photos");
const QString kApplied = QStringLiteral("applied");
const QString kTemporary = QStringLiteral("temporary"); // received files, to be deleted
const QString kPath = QStringLiteral("path");
const QString kReadFrom = QStringLiteral("readFrom");
const QString kTurns = QStringLiteral("turns");
const QString kPlaces = QStringLiteral("places");
const QString kMetadata = QStringLiteral("metadata");
const QString kCleared = QStringLiteral("cleared");

/// A preset as [row, name].
QJsonArray referenceTo(int row, const WPreset &preset)
{
    return {row, preset.name()};
}

/// The presets as a record refers to them.
class Presets
{
public:
    explicit Presets(const PresetsStore &store)
        : m_store(store)
    {
    }

    /// The preset at that row, or the first one of that name if the list has changed; null if there is none.
    std::shared_ptr<WPreset> at(const QJsonValue &reference) const
    {
        const int row = reference[0].toInt(kQuickPreset - 1);
        const QString name = reference[1].toString();
        const WPresetList &all = m_store.wPresets();
        if (row == kQuickPreset)
            return m_store.quickWPreset();
        if (row >= 0 && row < static_cast<int>(all.size()) &&
            all[static_cast<std::size_t>(row)]->name() == name)
            return all[static_cast<std::size_t>(row)];
        const auto found =
            std::find_if(all.begin(), all.end(), [&](const auto &preset) { return preset->name() == name; });
        return found == all.end() ? nullptr : *found;
    }

    QJsonArray references(const WPresetList &presets) const
    {
        QJsonArray rows;
        const WPresetList &all = m_store.wPresets();
        for (const std::shared_ptr<WPreset> &preset : presets) {
            const auto row = std::find(all.begin(), all.end(), preset) - all.begin();
            rows.append(referenceTo(static_cast<int>(row), *preset));
        }
        return rows;
    }

    /// The places of a photo: [row, name, x, y] each.
    QJsonArray places(ImageObject &image) const
    {
        if (image.customWatermarkRectOrigins() == CustomOrigins()) // most photos
            return {};
        QJsonArray places;
        const auto add = [&](int row, const WPreset &preset) {
            const std::optional<QPointF> origin = image.customWatermarkRectOriginForWPreset(&preset);
            if (!origin)
                return;
            QJsonArray place = referenceTo(row, preset);
            place.append(origin->x());
            place.append(origin->y());
            places.append(place);
        };
        add(kQuickPreset, *m_store.quickWPreset());
        for (std::size_t row = 0; row < m_store.wPresets().size(); ++row)
            add(static_cast<int>(row), *m_store.wPresets()[row]);
        return places;
    }

private:
    const PresetsStore &m_store;
};

/// An empty object if there is no such file, or a damaged one.
QJsonObject readSession(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxBytes)
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

QJsonObject withMetadata(QJsonObject session, const std::map<qsizetype, ImageMetadata> &edited)
{
    QJsonArray photos = session[kPhotos].toArray();
    for (const auto &[place, metadata] : edited) {
        QJsonObject photo = photos[place].toObject();
        photo[kMetadata] = QJsonObject::fromVariantMap(metadata.imagePropertiesDictionary());
        photo[kCleared] = metadata.clearedGroups().toInt();
        photos[place] = photo;
    }
    session[kPhotos] = photos;
    return session;
}

bool writeSession(const QString &path, const QByteArray &bytes)
{
    AtomicFile file(path, AtomicFile::IfExists::Replace);
    Result<void> written = file.open();
    if (written) {
        file.device().write(bytes);
        written = file.commit();
    }
    if (!written)
        qWarning("%s: %s", qUtf8Printable(path), qUtf8Printable(written.error().text));
    return written.has_value();
}

} // namespace

SessionRecord::SessionRecord(AppController &controller, Alerts &alerts, std::chrono::milliseconds delay)
    : m_controller(controller)
    , m_alerts(alerts)
    , m_lock(path() + QStringLiteral(".lock"))
{
    m_lock.setStaleLockTime(0); // only the end of its process makes a lock stale
    m_timer.setSingleShot(true);
    m_timer.setInterval(delay);
    connect(&m_timer, &QTimer::timeout, this, &SessionRecord::write);
}

SessionRecord::~SessionRecord() = default;

QString SessionRecord::path()
{
    return applicationSupportSubdirectory() + QStringLiteral("/session.json");
}

void SessionRecord::begin()
{
    if (!m_lock.tryLock(0))
        return;
    const QJsonObject session = readSession(path());
    const qsizetype photoCount = session[kPhotos].toArray().size();
    const bool isWanted =
        (photoCount > 0 || !session[kApplied].toArray().isEmpty()) && mayRestore(photoCount);
    if (m_hasEnded) // without an answer: the next start asks again
        return;
    m_isRecording = true;
    m_controller.companionExchange().adoptTemporaryFiles(session[kTemporary].toVariant().toStringList());
    if (isWanted)
        restore(session);
    else
        QFile::remove(path());
    const auto changed = [this] {
        if (m_isRecording && !m_timer.isActive())
            m_timer.start();
    };
    connect(&m_controller, &AppController::commandStateChanged, this, changed);
    connect(&m_controller.imageSet(), &ImageSet::orderChanged, this, changed);
    changed();
}

bool SessionRecord::mayRestore(qsizetype photoCount)
{
    Alert alert;
    alert.style = Alert::Style::Informational;
    alert.title = tr("%1 did not quit properly").arg(applicationName());
    alert.text =
        photoCount == 0 ? tr("The list had no photos. Do you want the applied presets back?")
        : photoCount == 1
            ? tr("The list had one photo. Do you want it back, with its rotation, positions and "
                 "edited metadata, and the applied presets?")
            : tr("The list had %n photos. Do you want them back, with their rotations, positions and "
                 "edited metadata, and the applied presets?",
                 nullptr, static_cast<int>(photoCount));
    alert.buttons = {tr("Restore"), tr("Start Empty")};
    alert.escapeButton = 1;
    return m_alerts.run(alert).button == 0;
}

QJsonObject SessionRecord::record() const
{
    const Presets presets(m_controller.presetsStore());
    QJsonArray photos;
    for (const std::shared_ptr<ImageObject> &image : *m_controller.imageSet().images()) {
        QJsonObject photo{{kPath, image->path()}};
        if (const QString from = image->pathToImportFrom(); !from.isEmpty())
            photo[kReadFrom] = from;
        if (const int turns = image->turns(); turns != 1)
            photo[kTurns] = turns;
        if (const QJsonArray places = presets.places(*image); !places.isEmpty())
            photo[kPlaces] = places;
        photos.append(photo);
    }
    return {{kPhotos, photos},
            {kApplied, presets.references(m_controller.appliedPresets().wPresetsApplied())},
            {kTemporary, QJsonArray::fromStringList(m_controller.companionExchange().temporaryFiles())}};
}

/// By the place of the photo in the record. Kept apart from it, because the conversion is work for the
/// writer.
std::map<qsizetype, ImageMetadata> SessionRecord::editedMetadata() const
{
    std::map<qsizetype, ImageMetadata> edited;
    qsizetype place = 0;
    for (const std::shared_ptr<ImageObject> &image : *m_controller.imageSet().images()) {
        if (const std::optional<ImageMetadata> metadata = image->editedMetadata())
            edited.emplace(place, *metadata);
        ++place;
    }
    return edited;
}

void SessionRecord::restore(const QJsonObject &session)
{
    const Presets presets(m_controller.presetsStore());
    WPresetList applied;
    for (const QJsonValue reference : session[kApplied].toArray()) {
        const std::shared_ptr<WPreset> preset = presets.at(reference);
        if (preset && std::find(applied.begin(), applied.end(), preset) == applied.end())
            applied.push_back(preset);
    }
    m_controller.appliedPresets().startWith(applied);
    ImageList images;
    for (const QJsonValue photo : session[kPhotos].toArray()) {
        const QString path = photo[kPath].toString();
        if (!QDir::isAbsolutePath(path))
            continue;
        const auto image = std::make_shared<ImageObject>(path, m_controller.photoServices());
        image->setPathToImportFrom(photo[kReadFrom].toString());
        image->restoreTurns(photo[kTurns].toInt(1));
        if (photo[kMetadata].isObject())
            image->setMetadata(ImageMetadata(photo[kMetadata].toObject().toVariantMap(),
                                             ClearedGroups(photo[kCleared].toInt())));
        for (const QJsonValue place : photo[kPlaces].toArray()) {
            if (const std::shared_ptr<WPreset> preset = presets.at(place))
                image->setCustomWatermarkRectOrigin({place[2].toDouble(), place[3].toDouble()}, preset);
        }
        images.push_back(image);
    }
    if (!images.empty())
        m_controller.gathering().addImages(images);
}

void SessionRecord::write()
{
    const bool isStarted =
        m_writer.start([this, session = record(), edited = editedMetadata(), path = path()] {
            const QByteArray bytes =
                QJsonDocument(withMetadata(session, edited)).toJson(QJsonDocument::Compact);
            if (bytes != m_written && writeSession(path, bytes))
                m_written = bytes;
            return true;
        });
    if (!isStarted) // the disk is slow
        m_timer.start();
}

void SessionRecord::end()
{
    m_hasEnded = true;
    if (!std::exchange(m_isRecording, false))
        return;
    m_timer.stop();
    m_writer.finish();
    QFile::remove(path());
    m_lock.unlock();
}

} // namespace plexa
