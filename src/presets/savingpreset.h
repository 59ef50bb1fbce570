// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpresetfields.h"
#include "presets/xmlfile.h"
#include "watermark/savingpresetreference.h"

#include <QObject>

#include <atomic>

namespace plexa
{

/// One saving preset of a list: an identity with change signals around its values. Files identify it by its
/// ID. An object lives on one thread; work on other threads gets a copy of values(). The static functions and
/// the constructor are thread-safe.
class SavingPreset final : public QObject, public XMLFile, public SavingPresetReference
{
    Q_OBJECT
    Q_PROPERTY(bool hideJPEGQuality READ hideJPEGQuality NOTIFY hideJPEGQualityChanged)
    Q_PROPERTY(bool hideTiffCompression READ hideTiffCompression NOTIFY hideTiffCompressionChanged)
    Q_PROPERTY(bool hideAlternativeFormat READ hideAlternativeFormat NOTIFY hideAlternativeFormatChanged)

public:
    /// A new preset with these values and a new ID.
    explicit SavingPreset(SavingPresetValues values = {});

    /// A new preset with the ID 0.
    static std::unique_ptr<SavingPreset> initWithoutNewID();

    /// Another preset with the same values, the name included, and an ID of its own.
    std::unique_ptr<SavingPreset> copy() const;

    /// Copies every value, but not the ID.
    void copyFrom(const SavingPreset &other) { setValues(other.values()); }

    /// A new preset never gets the ID of a preset that was created or read before in this run.
    qint64 presetID() const override { return m_presetID; }
    void selfAssignNewID();

    /// The highest ID that was assigned or read so far.
    static qint64 lastUsedPresetID() { return s_lastUsedPresetID; }
    static void setLastUsedPresetID(qint64 presetID) { s_lastUsedPresetID = presetID; }

    const SavingPresetValues &values() const { return m_values; }
    void setValues(const SavingPresetValues &values);

    FieldValue value(SavingField id) const { return savingPresetField(id).value(m_values); }

    /// Every setter calls this one. Setting a field to its present value does nothing.
    /// @param value  must be of the field's kind
    void setValue(SavingField id, const FieldValue &value);

#define PLEXA_FIELD_ACCESSORS(name, Name, Type, element, initial)                                            \
    const Type &name() const                                                                                 \
    {                                                                                                        \
        return m_values.name;                                                                                \
    }                                                                                                        \
    void set##Name(const Type &value)                                                                        \
    {                                                                                                        \
        setValue(SavingField::Name, FieldValue(SavingFieldAlternative<Type>(value)));                        \
    }
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_FIELD_ACCESSORS)
#undef PLEXA_FIELD_ACCESSORS

    // As in SavingPresetValues.
    bool hideJPEGQuality() const
    {
        return m_values.hideJPEGQuality();
    }
    bool hideTiffCompression() const
    {
        return m_values.hideTiffCompression();
    }
    bool hideAlternativeFormat() const
    {
        return m_values.hideAlternativeFormat();
    }
    bool validPreset() const
    {
        return m_values.validPreset();
    }
    QString imageFormatUTI(const QString &sourcePath) const
    {
        return m_values.imageFormatUTI(sourcePath);
    }
    QStringList filenameExtensions(const QString &sourcePath) const
    {
        return m_values.filenameExtensions(sourcePath);
    }

    // As in savingformats.h.
    static QStringList supportedFileFormats();
    static QStringList supportedFileFormatsWithoutOriginal();
    static QString utiForFileExtension(const QString &extension);
    static bool supportedUTI(const QString &type);

    /// Appends a `preset` element. Tokens are written without references, unless they contain "&" or "<" or
    /// begin with what the reader would treat as markup.
    void appendObjectToXML(QString &xml) const override;

    /// Would a file return the preset unchanged? A failure names the preset, without a full stop.
    [[nodiscard]] Result<void> checkWritable() const;

    /// The preset in a `preset` element; null, with an error line, if a required value is missing or invalid.
    static std::shared_ptr<SavingPreset> initWithXMLData(const XMLParser::Element &element,
                                                         double fileVersion);

    /// As in XMLFile. Presets that could not be read back unchanged are not written. The last used ID is at
    /// least that of every preset that was read.
    static std::optional<std::vector<std::shared_ptr<SavingPreset>>>
    readObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode,
                        const XMLParser::ErrorSink &errors = XMLParser::writeErrorLine,
                        bool *isLater = nullptr);
    /// The same for presets of another list, whose IDs mean nothing here. Any thread.
    static std::optional<std::vector<std::shared_ptr<SavingPreset>>>
    readForeignObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode,
                               const XMLParser::ErrorSink &errors = XMLParser::writeErrorLine,
                               bool *isLater = nullptr);
    [[nodiscard]] static Result<void> writeObjects(const std::vector<std::shared_ptr<SavingPreset>> &presets,
                                                   const QString &path, const QString &appID);

Q_SIGNALS:
    void fieldChanged(plexa::SavingField id, const plexa::FieldValue &old, const plexa::FieldValue &now);
    void hideJPEGQualityChanged();
    void hideTiffCompressionChanged();
    void hideAlternativeFormatChanged();

private:
    struct WithoutID {
    };
    explicit SavingPreset(WithoutID) {}

    static std::atomic<qint64> s_lastUsedPresetID;

    SavingPresetValues m_values;
    qint64 m_presetID = 0;
};

using SavingPresetList = std::vector<std::shared_ptr<SavingPreset>>;

} // namespace plexa
