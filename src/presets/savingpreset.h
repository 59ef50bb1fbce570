// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpresetvalues.h"
#include "presets/xmlfile.h"
#include "watermark/savingpresetreference.h"

#include <QObject>

#include <atomic>

namespace plexa
{

/// The fields by number, in declaration order.
enum class SavingField {
#define PLEXA_ENUMERATE_FIELD(name, Name, Type, initial) Name,
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_ENUMERATE_FIELD)
#undef PLEXA_ENUMERATE_FIELD
};

/// One saving preset of a list: an identity with change signals around its values. Watermark presets that it
/// is assigned to refer to it, and files name it by its ID. Lives on one thread; work elsewhere takes a copy
/// of values(). The static functions, and making presets, may be called from any thread.
class SavingPreset final : public QObject, public XMLFile, public SavingPresetReference
{
    Q_OBJECT
    Q_PROPERTY(bool hideJPEGQuality READ hideJPEGQuality NOTIFY hideJPEGQualityChanged)
    Q_PROPERTY(bool hideTiffCompression READ hideTiffCompression NOTIFY hideTiffCompressionChanged)
    Q_PROPERTY(bool hideAlternativeFormat READ hideAlternativeFormat NOTIFY hideAlternativeFormatChanged)

public:
    /// A new preset with these values and a new ID.
    explicit SavingPreset(SavingPresetValues values = {});

    /// A new preset that belongs to no list; its ID is 0.
    static std::unique_ptr<SavingPreset> initWithoutNewID();

    /// Another preset with the same values, the name included, and an ID of its own.
    std::unique_ptr<SavingPreset> copy() const;

    /// Takes over every value, in declaration order; not the ID.
    void copyFrom(const SavingPreset &other) { setValues(other.values()); }

    /// Positive, unless a file said otherwise. No two presets that were made in one run, or read before the
    /// other was made, share it.
    qint64 presetID() const override { return m_presetID; }
    void selfAssignNewID();

    /// The highest ID that was given or read so far.
    static qint64 lastUsedPresetID() { return s_lastUsedPresetID; }
    static void setLastUsedPresetID(qint64 presetID) { s_lastUsedPresetID = presetID; }

    const SavingPresetValues &values() const { return m_values; }
    void setValues(const SavingPresetValues &values);

    // Setting the value that is there already does nothing.
#define PLEXA_FIELD_ACCESSORS(name, Name, Type, initial)                                                     \
    const Type &name() const                                                                                 \
    {                                                                                                        \
        return m_values.name;                                                                                \
    }                                                                                                        \
    void set##Name(const Type &value)                                                                        \
    {                                                                                                        \
        change(m_values.name, value, SavingField::Name);                                                     \
    }
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_FIELD_ACCESSORS)
#undef PLEXA_FIELD_ACCESSORS

    // As SavingPresetValues says.
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

    // As savingformats.h says.
    static QStringList supportedFileFormats();
    static QStringList supportedFileFormatsWithoutOriginal();
    static QString utiForFileExtension(const QString &extension);
    static bool supportedUTI(const QString &type);

    /// Appends a `preset` element. Tokens go into it as they are, but for their first character: one with "&"
    /// or "<" in it makes an element that cannot be read, or says something else.
    void appendObjectToXML(QString &xml) const override;

    /// Can a file hold it, so that it is read again as it is? A failure names the preset and what of it
    /// cannot be held, without a full stop.
    [[nodiscard]] Result<void> checkWritable() const;

    /// The preset that a `preset` element of a file of that version stands for; null, with an error line
    /// where the element itself does not show why, when anything that it must have is missing or makes no
    /// sense.
    static std::shared_ptr<SavingPreset> initWithXMLData(const XMLParser::Element &element,
                                                         double fileVersion);

    /// As XMLFile's of the same names, for files of saving presets. What could not be read again as it is is
    /// not written. A failure to write is a sentence that names the file.
    static std::optional<std::vector<std::shared_ptr<SavingPreset>>>
    readObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode,
                        const XMLParser::ErrorSink &errors = XMLParser::writeErrorLine,
                        bool *isLater = nullptr);
    [[nodiscard]] static Result<void> writeObjects(const std::vector<std::shared_ptr<SavingPreset>> &presets,
                                                   const QString &path, const QString &appID);

Q_SIGNALS:
    void fieldChanged(plexa::SavingField field);
    void hideJPEGQualityChanged();
    void hideTiffCompressionChanged();
    void hideAlternativeFormatChanged();

private:
    struct WithoutID {
    };
    explicit SavingPreset(WithoutID) {}

    template<class T>
    void change(T &member, const T &value, SavingField field)
    {
        if (member == value)
            return;
        member = value;
        announce(field);
    }
    void announce(SavingField field);

    static std::atomic<qint64> s_lastUsedPresetID;

    SavingPresetValues m_values;
    qint64 m_presetID = 0;
};

} // namespace plexa
