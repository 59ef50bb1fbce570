// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpreset.h"
#include "saving/saving.h"
#include "support/files.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "support/testservices.h"

#include <QDir>

#include <functional>
#include <memory>

namespace plexa::test
{

/// Keeps all that it hears.
class Listener final : public SavingObserver
{
public:
    void begun(qint64 maximum, const QString &message) override { began = {maximum, message}; }
    void pictureBegun(const QImage &picture) override { pictures.append(picture); }
    void copyBegun(qint64 value, const QString &message) override
    {
        values.append(value);
        messages.append(message);
        if (onCopyBegun)
            onCopyBegun(value);
    }
    void copyFinished(const SavingOutput &output) override { outputs.append(output); }

    QStringList names() const
    {
        QStringList names;
        for (const SavingOutput &output : outputs)
            names.append(QFileInfo(output.path).fileName());
        return names;
    }

    std::pair<qint64, QString> began;
    QList<QImage> pictures;
    QList<qint64> values;
    QStringList messages;
    QList<SavingOutput> outputs;
    std::function<void(qint64)> onCopyBegun;
};

/// Runs over photos made by the test, with all that they need.
class SavingRuns
{
protected:
    void startAnew()
    {
        m_folder = std::make_unique<TestFolder>();
        m_listener = {};
    }

    QString path(const QString &name) const { return m_folder->path(name); }

    /// Makes a photo below "in". @return its path
    QString photo(const QString &name, QSize size = {40, 30}) const
    {
        const QString file = path(QStringLiteral("in/") + name);
        if (!QDir().mkpath(QFileInfo(file).path()) || !smoothPicture(size).save(file))
            qFatal("no photo can be made");
        return file;
    }

    AppliedPreset mark(const QString &name, SavingPresetPtr assigned = {}) const
    {
        WPresetValues values = WPresetValues::forNewPreset(m_services.fonts);
        values.name = name;
        values.textTokens = {name};
        values.assignedSavingPreset = std::move(assigned);
        return {std::make_shared<WPreset>(values), values};
    }

    /// Into "out", as PNG, named by number.
    SavingRun runFor(const QStringList &photos, const std::vector<AppliedPreset> &presets)
    {
        SavingRun run;
        run.photoCount = static_cast<std::size_t>(photos.size());
        run.photoAt = [this, photos](std::size_t index) -> SavingPhoto {
            const QString &photo = photos[static_cast<qsizetype>(index)];
            return {photo, std::make_shared<ImageObject>(photo, m_services.all), {}};
        };
        run.effectivePresets = presetsToSave(presets);
        run.defaultSavingPreset.imageFormat = QStringLiteral("PNG");
        run.defaultSavingPreset.filenameTokens = {QStringLiteral("img"), QStringLiteral("sequence ##")};
        run.folders.destDirectory = path(QStringLiteral("out"));
        run.jobs = 3;
        return run;
    }

    QStringList copies() const
    {
        return QDir(path(QStringLiteral("out"))).entryList(QDir::Files, QDir::Name);
    }

    TestPhotoServices m_services;
    std::unique_ptr<TestFolder> m_folder;
    Listener m_listener;
    ScriptedAlerts m_noAlerts;
};

} // namespace plexa::test
